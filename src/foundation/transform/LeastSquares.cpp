#include "LeastSquares.h"

#include <utility>

namespace Tellurion {
namespace {

constexpr int kRefinements = 2;

}  // namespace

LeastSquares::LeastSquares(Eigen::MatrixXd design) : design_(std::move(design)) {
    factors_.setThreshold(kRankTolerance);
    factors_.compute(design_);
}

/// What the unknowns leave of the observed, told in more digits than double has.
Eigen::MatrixXd LeastSquares::Left(const Eigen::MatrixXd& observed, const Eigen::MatrixXd& unknowns) const {
    Eigen::MatrixXd left(observed.rows(), observed.cols());
    for (Eigen::Index column = 0; column < observed.cols(); ++column)
        for (Eigen::Index row = 0; row < observed.rows(); ++row) {
            long double sum = observed(row, column);
            for (Eigen::Index term = 0; term < design_.cols(); ++term)
                sum -= static_cast<long double>(design_(row, term)) * unknowns(term, column);
            left(row, column) = static_cast<double>(sum);
        }
    return left;
}

Eigen::MatrixXd LeastSquares::Solve(const Eigen::MatrixXd& observed) const {
    Eigen::MatrixXd unknowns = factors_.solve(observed);
    for (int round = 0; round < kRefinements; ++round)
        unknowns += factors_.solve(Left(observed, unknowns));
    return unknowns;
}

}  // namespace Tellurion

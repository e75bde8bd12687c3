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

Eigen::MatrixXd LeastSquares::Solve(const Eigen::MatrixXd& observed) const {
    using Long = Eigen::Matrix<long double, Eigen::Dynamic, Eigen::Dynamic>;
    const Long design = design_.cast<long double>();
    Eigen::MatrixXd unknowns = factors_.solve(observed);
    for (int round = 0; round < kRefinements; ++round) {
        const Long left = observed.cast<long double>() - design * unknowns.cast<long double>();
        unknowns += factors_.solve(left.cast<double>());
    }
    return unknowns;
}

}  // namespace Tellurion

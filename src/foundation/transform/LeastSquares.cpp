#include "LeastSquares.h"

#include <algorithm>

namespace Tellurion {
namespace {

constexpr int kRefinements = 2;
/// Rows that are folded at once; they stay in the first level cache.
constexpr Eigen::Index kBlock = 128;

}  // namespace

LeastSquares::LeastSquares(const Matrix& design, const Matrix& observed)
    : design_(design), observed_(observed), triangle_(Fold()) {
    factors_.setThreshold(kRankTolerance);
    factors_.compute(triangle_.leftCols(design.cols()));
}

Eigen::MatrixXd LeastSquares::Fold() const {
    const Eigen::Index unknowns = design_.cols();
    const Eigen::Index columns = unknowns + observed_.cols();
    Eigen::MatrixXd triangle = Eigen::MatrixXd::Zero(unknowns, columns);
    for (Eigen::Index row = 0; row < design_.rows(); row += kBlock) {
        const Eigen::Index count = std::min(kBlock, design_.rows() - row);
        Eigen::MatrixXd block(unknowns + count, columns);
        block << triangle, design_.middleRows(row, count), observed_.middleRows(row, count);
        const Eigen::HouseholderQR<Eigen::Ref<Eigen::MatrixXd>> folded(block);
        triangle = block.topRows(unknowns).triangularView<Eigen::Upper>();
    }
    return triangle;
}

/// The design's transpose times what the unknowns leave of the observed, summed in more
/// digits than double has. Zero at the least squares.
Eigen::MatrixXd LeastSquares::Slope(const Eigen::MatrixXd& unknowns) const {
    using Long = long double;
    Eigen::MatrixXd slope(unknowns.rows(), unknowns.cols());
    for (Eigen::Index column = 0; column < observed_.cols(); ++column) {
        Eigen::Matrix<Long, Eigen::Dynamic, 1> sum = decltype(sum)::Zero(unknowns.rows());
        for (Eigen::Index row = 0; row < observed_.rows(); ++row) {
            Long left = observed_(row, column);
            for (Eigen::Index term = 0; term < unknowns.rows(); ++term)
                left -= Long{design_(row, term)} * unknowns(term, column);
            for (Eigen::Index term = 0; term < unknowns.rows(); ++term)
                sum[term] += design_(row, term) * left;
        }
        slope.col(column) = sum.cast<double>();
    }
    return slope;
}

Eigen::MatrixXd LeastSquares::Solve() const {
    Eigen::MatrixXd unknowns = factors_.solve(triangle_.rightCols(observed_.cols()));
    if (!Determined()) return unknowns;
    const auto upper = triangle_.leftCols(design_.cols()).triangularView<Eigen::Upper>();
    for (int round = 0; round < kRefinements; ++round)
        unknowns += upper.solve(upper.transpose().solve(Slope(unknowns)));
    return unknowns;
}

}  // namespace Tellurion

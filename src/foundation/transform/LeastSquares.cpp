#include "LeastSquares.h"

#include <algorithm>
#include <utility>

namespace Tellurion {
namespace {

constexpr int kRefinements = 2;
/// Rows that are folded at once; they stay in the first level cache.
constexpr Eigen::Index kBlock = 128;

}  // namespace

LeastSquares::LeastSquares(const Size& size, Rows rows)
    : size_(size), rows_(std::move(rows)), triangle_(Fold()) {
    factors_.setThreshold(kRankTolerance);
    factors_.compute(triangle_.leftCols(size_.unknowns));
}

template <class Visit>
void LeastSquares::ForEachBlock(Visit visit) const {
    const Eigen::Index most = std::min(kBlock, size_.rows);
    Eigen::MatrixXd design(most, size_.unknowns);
    Eigen::MatrixXd observed(most, size_.observed);
    for (Eigen::Index row = 0; row < size_.rows; row += kBlock) {
        const Eigen::Index count = std::min(kBlock, size_.rows - row);
        rows_(row, design.topRows(count), observed.topRows(count));
        visit(design.topRows(count), observed.topRows(count));
    }
}

Eigen::MatrixXd LeastSquares::Fold() const {
    const Eigen::Index columns = size_.unknowns + size_.observed;
    Eigen::MatrixXd triangle = Eigen::MatrixXd::Zero(size_.unknowns, columns);
    ForEachBlock([&](const auto& design, const auto& observed) {
        Eigen::MatrixXd block(size_.unknowns + design.rows(), columns);
        block << triangle, design, observed;
        const Eigen::HouseholderQR<Eigen::Ref<Eigen::MatrixXd>> folded(block);
        triangle = block.topRows(size_.unknowns).template triangularView<Eigen::Upper>();
    });
    return triangle;
}

Eigen::MatrixXd LeastSquares::FoldRows(Eigen::Index count, Eigen::Index columns,
                                       const std::function<void(Eigen::Index, Block)>& fill) {
    return LeastSquares({count, columns, 0},
                        [&](Eigen::Index first, Block rows, Block) { fill(first, rows); })
        .triangle_;
}

/// The design's transpose times what the unknowns leave of the observed, summed in more
/// digits than double has. Zero at the least squares.
Eigen::MatrixXd LeastSquares::Slope(const Eigen::MatrixXd& unknowns) const {
    using Long = long double;
    Eigen::Matrix<Long, Eigen::Dynamic, Eigen::Dynamic> sum =
        decltype(sum)::Zero(unknowns.rows(), unknowns.cols());
    ForEachBlock([&](const auto& design, const auto& observed) {
        for (Eigen::Index column = 0; column < observed.cols(); ++column) {
            for (Eigen::Index row = 0; row < observed.rows(); ++row) {
                Long left = observed(row, column);
                for (Eigen::Index term = 0; term < unknowns.rows(); ++term)
                    left -= Long{design(row, term)} * unknowns(term, column);
                for (Eigen::Index term = 0; term < unknowns.rows(); ++term)
                    sum(term, column) += design(row, term) * left;
            }
        }
    });
    return sum.cast<double>();
}

Eigen::MatrixXd LeastSquares::Solve() const {
    Eigen::MatrixXd unknowns = factors_.solve(triangle_.rightCols(size_.observed));
    if (!Determined()) return unknowns;
    const auto upper = triangle_.leftCols(size_.unknowns).triangularView<Eigen::Upper>();
    for (int round = 0; round < kRefinements; ++round)
        unknowns += upper.solve(upper.transpose().solve(Slope(unknowns)));
    return unknowns;
}

}  // namespace Tellurion

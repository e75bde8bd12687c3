#pragma once

#include <Eigen/Core>
#include <Eigen/QR>

#include <functional>

namespace Tellurion {

/// A part of the largest pivot that counts as zero. Pixels are whole numbers below
/// 2^31, so three of them that are no line stay above it.
constexpr double kRankTolerance = 1e-10;

/// An overdetermined (or square) system with one design and several right sides. The
/// rows are made and folded into a triangle block by block, so that a row costs the same
/// however many there are, and only one block of them is kept.
class LeastSquares {
public:
    using Block = Eigen::Ref<Eigen::MatrixXd>;
    /// Fills both blocks with as many rows as they have, the first of them row `first`.
    using Rows = std::function<void(Eigen::Index first, Block design, Block observed)>;
    struct Size {
        Eigen::Index rows;
        Eigen::Index unknowns;  ///< columns of the design, which should be of similar size
        Eigen::Index observed;  ///< right sides
    };

    LeastSquares(const Size& size, Rows rows);

    /// Any number of rows as a triangle with the same least squares, block by block.
    static Eigen::MatrixXd FoldRows(Eigen::Index count, Eigen::Index columns,
                                    const std::function<void(Eigen::Index first, Block rows)>& fill);

    /// False when the design leaves a combination of the unknowns open.
    bool Determined() const { return factors_.rank() == size_.unknowns; }
    /// One column of unknowns for each column of what was observed; exact data give the
    /// unknowns to the last digits.
    Eigen::MatrixXd Solve() const;

private:
    template <class Visit>
    void ForEachBlock(Visit visit) const;
    Eigen::MatrixXd Fold() const;
    Eigen::MatrixXd Slope(const Eigen::MatrixXd& unknowns) const;

    Size size_;
    Rows rows_;
    Eigen::MatrixXd triangle_;  ///< the design's, then what it turns the observed into
    Eigen::ColPivHouseholderQR<Eigen::MatrixXd> factors_;  ///< of the triangle
};

}  // namespace Tellurion

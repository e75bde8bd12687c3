#pragma once

#include <Eigen/Core>
#include <Eigen/QR>

namespace Tellurion {

/// A part of the largest pivot that counts as zero. Pixels are whole numbers below
/// 2^31, so three of them that are no line stay above it.
constexpr double kRankTolerance = 1e-10;

/// An overdetermined (or square) system with one design and several right sides. The
/// rows are folded into a triangle block by block, so that a row costs the same
/// however many there are.
class LeastSquares {
public:
    using Matrix = Eigen::Ref<const Eigen::MatrixXd>;

    /// The columns of `design` should be of similar size. Both must outlive this.
    LeastSquares(const Matrix& design, const Matrix& observed);

    /// False when the design leaves a combination of the unknowns open.
    bool Determined() const { return factors_.rank() == design_.cols(); }
    /// One column of unknowns for each column of what was observed; exact data give the
    /// unknowns to the last digits.
    Eigen::MatrixXd Solve() const;

private:
    Eigen::MatrixXd Fold() const;
    Eigen::MatrixXd Slope(const Eigen::MatrixXd& unknowns) const;

    Matrix design_;
    Matrix observed_;
    Eigen::MatrixXd triangle_;  ///< the design's, then what it turns the observed into
    Eigen::ColPivHouseholderQR<Eigen::MatrixXd> factors_;  ///< of the triangle
};

}  // namespace Tellurion

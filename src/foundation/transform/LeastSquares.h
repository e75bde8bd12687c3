#pragma once

#include <Eigen/Core>
#include <Eigen/QR>

namespace Tellurion {

/// A part of the largest pivot that counts as zero. Pixels are whole numbers below
/// 2^31, so three of them that are no line stay above it.
constexpr double kRankTolerance = 1e-10;

/// An overdetermined (or square) system with one design and several right sides.
class LeastSquares {
public:
    /// The columns of `design` should be of similar size.
    explicit LeastSquares(Eigen::MatrixXd design);

    /// False when the design leaves a combination of the unknowns open.
    bool Determined() const { return factors_.rank() == design_.cols(); }
    /// One column of unknowns for each column of `observed`; exact data give the
    /// unknowns to the last digits.
    Eigen::MatrixXd Solve(const Eigen::MatrixXd& observed) const;

private:
    Eigen::MatrixXd Left(const Eigen::MatrixXd& observed, const Eigen::MatrixXd& unknowns) const;

    Eigen::MatrixXd design_;
    Eigen::ColPivHouseholderQR<Eigen::MatrixXd> factors_;
};

}  // namespace Tellurion

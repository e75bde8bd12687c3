#pragma once

#include "ControlPoints.h"

#include <Eigen/Cholesky>
#include <Eigen/QR>

#include <optional>

namespace Tellurion {

/// The system of a thin plate spline: weights w and plane terms p with
/// bending * w + plane * p = values and plane^T * w = 0. On the weights that meet the second
/// condition the bending is positive definite: a QR of the plane leads there, Cholesky solves.
///
/// `noise` is added to the diagonal of the bending: a spline that smooths instead of
/// passing through each point.
class SplineSystem {
public:
    explicit SplineSystem(const Positions& from, double noise = 0.0);

    bool Solvable() const { return !cholesky_ || cholesky_->info() == Eigen::Success; }

    /// Weights of the points, then three rows of plane terms.
    Eigen::MatrixXd Solve(const Positions& values) const;

    /// A matrix whose columns' squared lengths are the diagonal of the map from values to
    /// weights, and whose products are all of that map. It has a row for each point but three.
    Eigen::MatrixXd InverseRoot() const;
    /// Of the determinant of the system on the weights that meet the condition.
    double LogDeterminant() const;

    /// The bending of a thin plate at a squared distance from the point that bends it.
    static double Bending(double squared);

private:
    Eigen::Index free_;
    Eigen::MatrixXd bending_;
    Eigen::HouseholderQR<Eigen::MatrixXd> plane_;
    std::optional<Eigen::LLT<Eigen::Ref<Eigen::MatrixXd>>> cholesky_;  ///< in a corner of bending_
};

}  // namespace Tellurion

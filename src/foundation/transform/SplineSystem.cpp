#include "SplineSystem.h"

#include <cmath>

namespace Tellurion {
namespace {

Eigen::MatrixXd BendingOf(const Positions& from) {
    const Eigen::Index count = from.rows();
    Eigen::MatrixXd bending(count, count);
    for (Eigen::Index j = 0; j < count; ++j) {
        bending(j, j) = 0.0;
        for (Eigen::Index i = 0; i < j; ++i)
            bending(i, j) = bending(j, i) = SplineSystem::Bending((from.row(i) - from.row(j)).squaredNorm());
    }
    return bending;
}

Eigen::MatrixXd PlaneOf(const Positions& from) {
    Eigen::MatrixXd plane(from.rows(), 3);
    plane << from, Eigen::VectorXd::Ones(from.rows());
    return plane;
}

}  // namespace

double SplineSystem::Bending(double squared) {
    return squared > 0 ? squared * std::log(squared) : 0.0;
}

SplineSystem::SplineSystem(const Positions& from, double noise)
    : free_(from.rows() - 3), bending_(BendingOf(from)), plane_(PlaneOf(from)) {
    bending_.diagonal().array() += noise;
    bending_.applyOnTheLeft(plane_.householderQ().adjoint());
    bending_.applyOnTheRight(plane_.householderQ());
    if (free_ == 0) return;
    Eigen::Ref<Eigen::MatrixXd> corner = bending_.bottomRightCorner(free_, free_);
    cholesky_.emplace(corner);
}

Eigen::MatrixXd SplineSystem::Solve(const Positions& values) const {
    const Eigen::Index count = values.rows();
    Eigen::MatrixXd turned = values;
    turned.applyOnTheLeft(plane_.householderQ().adjoint());
    Eigen::MatrixXd weights = Eigen::MatrixXd::Zero(count, 2);
    Eigen::MatrixXd plane_side = turned.topRows<3>();
    if (cholesky_) {
        weights.bottomRows(free_) = cholesky_->solve(turned.bottomRows(free_));
        plane_side -= bending_.topRightCorner(3, free_) * weights.bottomRows(free_);
        weights.applyOnTheLeft(plane_.householderQ());
    }
    Eigen::MatrixXd solution(count + 3, 2);
    solution << weights, plane_.matrixQR().topRows<3>().triangularView<Eigen::Upper>().solve(plane_side);
    return solution;
}

Eigen::MatrixXd SplineSystem::InverseRoot() const {
    Eigen::MatrixXd turn = Eigen::MatrixXd::Identity(free_ + 3, free_ + 3);
    turn.applyOnTheLeft(plane_.householderQ().adjoint());
    Eigen::MatrixXd root = turn.bottomRows(free_);
    if (cholesky_) cholesky_->matrixL().solveInPlace(root);
    return root;
}

double SplineSystem::LogDeterminant() const {
    return cholesky_ ? 2 * cholesky_->matrixLLT().diagonal().array().log().sum() : 0.0;
}

}  // namespace Tellurion

#include "CurvedModel.h"

#include "LeastSquares.h"

#include <Eigen/LU>

#include <cmath>
#include <limits>

namespace Tellurion {
namespace {

constexpr int kIterations = 40;
constexpr int kHalvings = 10;
/// A step so small, in the unit of half a raster, is the last: the next one would be
/// its square.
constexpr double kLastStep = 1e-10;
/// A slope this far below its terms is none.
constexpr double kFlat = 1e-13;
constexpr int kStartsPerAxis = 5;
/// The net on which the raster is searched for folds.
constexpr int kNodesPerAxis = 9;
/// No more points than this are asked whether the fit has an inverse.
constexpr Eigen::Index kSlopeSamples = 64;

Eigen::AlignedBox2d UnitRaster(const FitSpace& space, RasterSize raster) {
    Eigen::AlignedBox2d box(space.from.colwise().minCoeff().transpose(),
                            space.from.colwise().maxCoeff().transpose());
    if (raster.width == 0 || raster.height == 0) return box;
    return {space.source.ToUnit(Eigen::Vector2d::Zero()),
            space.source.ToUnit(Eigen::Vector2d(raster.width, raster.height))};
}

bool IsFlat(const Eigen::Matrix2d& slope) {
    return !(std::abs(slope.determinant()) > kFlat * slope.squaredNorm());
}

}  // namespace

CurvedModel::CurvedModel(EMathTransformType type, const FitSpace& space, RasterSize raster)
    : TransformModel(type), source_(space.source), target_(space.target), raster_(UnitRaster(space, raster)) {
    const auto rows = [&](Eigen::Index first, auto design, auto observed) {
        design << space.from.middleRows(first, design.rows()), Eigen::VectorXd::Ones(design.rows());
        observed = space.to.middleRows(first, design.rows());
    };
    const Eigen::Matrix<double, 3, 2> terms = LeastSquares({space.from.rows(), 3, 2}, rows).Solve();
    const Eigen::Matrix2d matrix = terms.topRows<2>().transpose();
    mirrored_ = matrix.determinant() < 0;
    guess_.setZero();
    guess_.col(2) = raster_.center();
    if (IsFlat(matrix)) return;
    guess_.leftCols<2>() = matrix.inverse();
    guess_.col(2) = -guess_.leftCols<2>() * terms.row(2).transpose();
}

void CurvedModel::Examine(const FitSpace& space, const FitRule& rule) {
    const Eigen::Index count = space.from.rows();
    const Eigen::Index step = 1 + (count - 1) / kSlopeSamples;
    bool invertible = false;
    for (Eigen::Index i = 0; i < count && !invertible; i += step) {
        const Eigen::Matrix2d slope = Evaluate(space.from.row(i).transpose()).slope;
        invertible = std::abs(slope.determinant()) > kRankTolerance * slope.squaredNorm();
    }
    if (!invertible)
        RefuseFit("The %s fit through the %td enabled points cannot be inverted", rule.name, count);
    for (int k = 0; k < kNodesPerAxis * kNodesPerAxis && !folded_; ++k) {
        const Eigen::Array2d place(k % kNodesPerAxis, k / kNodesPerAxis);
        folded_ =
            !IsUnfolded(raster_.min() + (raster_.sizes().array() * place / (kNodesPerAxis - 1)).matrix());
    }
}

bool CurvedModel::ToTarget(double& x, double& y) const {
    const Eigen::Vector2d to = target_.FromUnit(Evaluate(source_.ToUnit({x, y})).value);
    return AssignFinite(to.x(), to.y(), x, y);
}

bool CurvedModel::ToSource(double& x, double& y) const {
    const Eigen::Vector2d to = target_.ToUnit({x, y});
    Eigen::Vector2d nearest = Eigen::Vector2d::Constant(std::numeric_limits<double>::quiet_NaN());
    double nearest_distance = std::numeric_limits<double>::infinity();
    // The guess comes first; then places all over the raster, until one leads into it.
    for (int k = -1; k < kStartsPerAxis * kStartsPerAxis && nearest_distance > 0; ++k) {
        Eigen::Vector2d from = k < 0 ? Eigen::Vector2d(guess_ * to.homogeneous()) : StartPlace(k);
        if (!Descend(to, from)) continue;
        if (k < 0 && !folded_ && IsUnfolded(from)) return Assign(from, x, y);
        const double distance = raster_.exteriorDistance(from);
        if (distance < nearest_distance) {
            nearest = from;
            nearest_distance = distance;
        }
    }
    return Assign(nearest, x, y);
}

bool CurvedModel::SlopesAt(double x, double y, BMathTransform::Slopes& slopes) const {
    const Eigen::Matrix2d unit = Evaluate(source_.ToUnit({x, y})).slope;
    return AssignFinite(SlopesFromUnit(unit, source_, target_), slopes);
}

Eigen::Vector2d CurvedModel::StartPlace(int k) const {
    const int row = k / kStartsPerAxis;
    const Eigen::Array2d place(k % kStartsPerAxis + 0.5, row + 0.5);
    return raster_.min() + (raster_.sizes().array() * place / kStartsPerAxis).matrix();
}

/// True where the plane has the same side up as in the affine transform.
bool CurvedModel::IsUnfolded(const Eigen::Vector2d& from) const {
    return (Evaluate(from).slope.determinant() < 0) == mirrored_;
}

bool CurvedModel::Assign(const Eigen::Vector2d& from, double& x, double& y) const {
    const Eigen::Vector2d pixel = source_.FromUnit(from);
    return AssignFinite(pixel.x(), pixel.y(), x, y);
}

/// Newton's method from `from` to a place with the value `to`.
bool CurvedModel::Descend(const Eigen::Vector2d& to, Eigen::Vector2d& from) const {
    Jet jet = Evaluate(from);
    for (int i = 0; i < kIterations; ++i) {
        if (IsFlat(jet.slope)) return false;
        const Eigen::Vector2d step = jet.slope.inverse() * (to - jet.value);
        const double length = step.norm();
        if (!std::isfinite(length)) return false;
        if (length <= kLastStep * (1 + from.norm())) {
            from += step;
            return true;
        }
        if (!Halve(to, step, from, jet)) return false;
    }
    return false;
}

/// Goes the largest part of `step` that brings the value nearer to `to`.
bool CurvedModel::Halve(const Eigen::Vector2d& to, const Eigen::Vector2d& step, Eigen::Vector2d& from,
                        Jet& jet) const {
    const double distance = (to - jet.value).norm();
    double part = 1.0;
    for (int i = 0; i < kHalvings; ++i, part /= 2) {
        const Jet next = Evaluate(from + part * step);
        if ((to - next.value).norm() < distance * (1 - part / 4)) {
            from += part * step;
            jet = next;
            return true;
        }
    }
    return false;
}

}  // namespace Tellurion

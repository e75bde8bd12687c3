#include "FitSpace.h"

#include <algorithm>
#include <cmath>

namespace Tellurion {
namespace {

/// The power of two above `value`.
double PowerAbove(double value) {
    if (value == 0.0) return 1.0;
    int exponent = 0;
    std::frexp(value, &exponent);
    return std::ldexp(1.0, exponent);
}

/// `value` with the digits dropped that are far below `scale`.
double WithFewDigits(double value, double scale) {
    const double step = scale / 1024;
    const double rounded = std::rint(value / step) * step;
    return std::isfinite(rounded) ? rounded : value;
}

}  // namespace

PlaneFrame::PlaneFrame(const Positions& positions, Scaling scaling) {
    const double count = static_cast<double>(positions.rows());
    for (Eigen::Index axis = 0; axis < 2; ++axis) {
        const auto values = positions.col(axis);
        const double spread = PowerAbove(values.maxCoeff() - values.minCoeff());
        centre[axis] = WithFewDigits((values / count).sum(), spread);
        scale[axis] = PowerAbove((values.array() - centre[axis]).abs().maxCoeff());
    }
    if (scaling == Scaling::Common) scale.setConstant(scale.maxCoeff());
}

void PlaneFrame::AllToUnit(const Eigen::Ref<const Positions>& positions,
                           Eigen::Ref<Eigen::MatrixXd> unit) const {
    for (Eigen::Index axis = 0; axis < 2; ++axis)
        unit.col(axis) = (positions.col(axis).array() - centre[axis]) / scale[axis];
}

BMathTransform::Slopes SlopesFromUnit(const Eigen::Matrix2d& unit, const PlaneFrame& source,
                                      const PlaneFrame& target) {
    const auto slope = [&](Eigen::Index i, Eigen::Index j) {
        return unit(i, j) * target.scale[i] / source.scale[j];
    };
    return {slope(0, 0), slope(0, 1), slope(1, 0), slope(1, 1)};
}

FitFrames::FitFrames(const ControlPoints& points, Scaling source_scaling, Scaling target_scaling)
    : source(points.pixels, source_scaling), target(points.world, target_scaling) {}

FitSpace::FitSpace(const ControlPoints& points, Scaling source_scaling, Scaling target_scaling)
    : FitFrames(points, source_scaling, target_scaling), from(points.Count(), 2), to(points.Count(), 2) {
    source.AllToUnit(points.pixels, from);
    target.AllToUnit(points.world, to);
}

}  // namespace Tellurion

#include "TransformModel.h"

#include <cmath>

namespace Tellurion {
namespace {

bool Distance(double x, double y, double from_x, double from_y, double& length) {
    length = std::hypot(x - from_x, y - from_y);
    return std::isfinite(length);
}

}  // namespace

TransformModel::~TransformModel() = default;

bool TransformModel::LengthInTarget(double x, double y, double dx, double dy, double& length) const {
    double end_x = x + dx;
    double end_y = y + dy;
    return ToTarget(x, y) && ToTarget(end_x, end_y) && Distance(end_x, end_y, x, y, length);
}

bool TransformModel::LengthInSource(double x, double y, double dx, double dy, double& length) const {
    double end_x = x + dx;
    double end_y = y + dy;
    return ToSource(x, y) && ToSource(end_x, end_y) && Distance(end_x, end_y, x, y, length);
}

const AffineTerms* TransformModel::Affine() const {
    return nullptr;
}

bool AssignFinite(const BMathTransform::Slopes& values, BMathTransform::Slopes& slopes) {
    if (!std::isfinite(values.XByColumn) || !std::isfinite(values.XByRow) ||
        !std::isfinite(values.YByColumn) || !std::isfinite(values.YByRow))
        return false;
    slopes = values;
    return true;
}

bool AssignFinite(double x_value, double y_value, double& x, double& y) {
    if (!std::isfinite(x_value) || !std::isfinite(y_value)) return false;
    x = x_value;
    y = y_value;
    return true;
}

}  // namespace Tellurion

#include <Tellurion/BMathTransform.h>

#include "AffineModel.h"
#include "Fits.h"

#include <Tellurion/BException.h>
#include <Tellurion/BGeoCalcException.h>

#include <cmath>
#include <utility>

namespace Tellurion {
namespace {

template <class Point>
ModelPointer FitModel(EMathTransformType type, const std::vector<Point>& pairs, RasterSize raster) {
    if (type == EMathTransformType::None) return nullptr;
    const FitRule rule = RuleOf(type);
    const ControlPoints points(pairs, rule);
    switch (type) {
        case EMathTransformType::Affine:
            return FitAffine(points, rule);
        case EMathTransformType::Conformal:
            return FitConformal(points, rule);
        case EMathTransformType::Projective:
            return FitProjective(points, rule);
        case EMathTransformType::ThinPlateSpline:
            return FitSpline(points, rule, raster);
        default:
            return FitPolynomial(points, rule, type, raster);
    }
}

[[noreturn]] void ThrowNoValue(const char* source, const BPoint& point) {
    throw BGeoCalcException("The position cannot be converted.", source,
                            BString::Format("There is no value at (%.12g, %.12g)", point.x, point.y));
}

bool IsFinite(double x, double y) {
    return std::isfinite(x) && std::isfinite(y);
}

using Length = bool (TransformModel::*)(double, double, double, double, double&) const;

double LengthOf(const TransformModel* model, Length length_of, const char* source, const BPoint& at,
                double dx, double dy) {
    double length = 0.0;
    if (!model || !IsFinite(at.x, at.y) || !IsFinite(dx, dy) ||
        !(model->*length_of)(at.x, at.y, dx, dy, length))
        ThrowNoValue(source, at);
    return length;
}

}  // namespace

BMathTransform::BMathTransform(EMathTransformType type, const std::vector<BPointPair>& pairs,
                               unsigned int width, unsigned int height, bool optimizeFor2D)
    : model_(FitModel(type, pairs, {width, height})), optimize_for_2d_(optimizeFor2D) {}

BMathTransform::BMathTransform(std::shared_ptr<const TransformModel> model, bool optimizeFor2D)
    : model_(std::move(model)), optimize_for_2d_(optimizeFor2D) {}

BMathTransform BMathTransform::Fit(EMathTransformType type, const std::vector<BControlPoint>& points,
                                   unsigned int width, unsigned int height) {
    constexpr bool kOptimizeFor2D = true;
    return BMathTransform(FitModel(type, points, {width, height}), kOptimizeFor2D);
}

BMathTransform::BMathTransform(const BMathTransform&) = default;
BMathTransform& BMathTransform::operator=(const BMathTransform&) = default;
BMathTransform::~BMathTransform() = default;

BMathTransform* BMathTransform::CreateAffine(double a, double b, double c, double d, double e, double f,
                                             bool optimizeFor2D) {
    auto model = AffineModel::Make({a, b, c, d, e, f}, EMathTransformType::Affine);
    return model ? new BMathTransform(std::move(model), optimizeFor2D) : nullptr;
}

ETransformType BMathTransform::GetType() const {
    return ETransformType::Math;
}
bool BMathTransform::IsValid() const {
    return model_ != nullptr;
}
bool BMathTransform::GetOptimizeFor2D() const {
    return optimize_for_2d_;
}
EMathTransformType BMathTransform::GetMathTransformType() const {
    return model_ ? model_->Type() : EMathTransformType::None;
}

bool BMathTransform::ConvertSourceToTarget(double& x, double& y) const {
    return model_ && IsFinite(x, y) && model_->ToTarget(x, y);
}

BPoint BMathTransform::ConvertSourceToTarget(const BPoint& point) const {
    BPoint converted = point;
    if (!ConvertSourceToTarget(converted.x, converted.y))
        ThrowNoValue("BMathTransform::ConvertSourceToTarget", point);
    return converted;
}

bool BMathTransform::ConvertTargetToSource(double& x, double& y) const {
    return model_ && IsFinite(x, y) && model_->ToSource(x, y);
}

BPoint BMathTransform::ConvertTargetToSource(const BPoint& point) const {
    BPoint converted = point;
    if (!ConvertTargetToSource(converted.x, converted.y))
        ThrowNoValue("BMathTransform::ConvertTargetToSource", point);
    return converted;
}

double BMathTransform::ConvertXDistance(double distance, const BPoint& at) const {
    return LengthOf(model_.get(), &TransformModel::LengthInTarget, "BMathTransform::ConvertXDistance", at,
                    distance, 0.0);
}

double BMathTransform::ConvertYDistance(double distance, const BPoint& at) const {
    return LengthOf(model_.get(), &TransformModel::LengthInTarget, "BMathTransform::ConvertYDistance", at,
                    0.0, distance);
}

double BMathTransform::ConvertXDistanceReverse(double distance, const BPoint& at) const {
    return LengthOf(model_.get(), &TransformModel::LengthInSource, "BMathTransform::ConvertXDistanceReverse",
                    at, distance, 0.0);
}

double BMathTransform::ConvertYDistanceReverse(double distance, const BPoint& at) const {
    return LengthOf(model_.get(), &TransformModel::LengthInSource, "BMathTransform::ConvertYDistanceReverse",
                    at, 0.0, distance);
}

bool BMathTransform::GetSlopes(double column, double row, Slopes& slopes) const {
    return model_ && IsFinite(column, row) && model_->SlopesAt(column, row, slopes);
}

void BMathTransform::GetAffineParameters(double& a, double& b, double& c, double& d, double& e,
                                         double& f) const {
    const AffineTerms* terms = model_ ? model_->Affine() : nullptr;
    if (!terms)
        throw BException(
            BString("BMathTransform::GetAffineParameters"),
            model_ ? BString::Format("A %s transform has no affine terms", RuleOf(model_->Type()).name)
                   : BString("There is no transform"));
    a = terms->a;
    b = terms->b;
    c = terms->c;
    d = terms->d;
    e = terms->e;
    f = terms->f;
}

}  // namespace Tellurion

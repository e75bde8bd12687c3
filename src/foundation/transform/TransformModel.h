#pragma once

#include <Tellurion/BMathTransform.h>

namespace Tellurion {

struct AffineTerms;

/// The mathematics behind a BMathTransform. Immutable, so that copies of a transform
/// share it and threads use it at the same time. Positions given are finite.
class TransformModel {
public:
    explicit TransformModel(EMathTransformType type) : type_(type) {}
    TransformModel(const TransformModel&) = delete;
    TransformModel& operator=(const TransformModel&) = delete;
    virtual ~TransformModel();

    EMathTransformType Type() const { return type_; }

    /// In place; false, with x and y unchanged, where there is no finite value.
    virtual bool ToTarget(double& x, double& y) const = 0;
    virtual bool ToSource(double& x, double& y) const = 0;
    /// The length of the image of the step (dx, dy) from (x, y); false as above.
    virtual bool LengthInTarget(double x, double y, double dx, double dy, double& length) const;
    virtual bool LengthInSource(double x, double y, double dx, double dy, double& length) const;
    /// False as above.
    virtual bool SlopesAt(double x, double y, BMathTransform::Slopes& slopes) const = 0;
    /// The terms of what is affine, null for all else.
    virtual const AffineTerms* Affine() const;

private:
    EMathTransformType type_;
};

/// Sets x and y when both values are finite.
/// Sets the slopes when all four are finite.
bool AssignFinite(const BMathTransform::Slopes& values, BMathTransform::Slopes& slopes);
bool AssignFinite(double x_value, double y_value, double& x, double& y);

}  // namespace Tellurion

#pragma once

#include "AffineTerms.h"
#include "TransformModel.h"

#include <memory>

namespace Tellurion {

/// An affine transform; a conformal one is the same with fewer degrees of freedom.
class AffineModel : public TransformModel {
public:
    /// Of the inverse, without the shift: the pixels that a step of one unit makes.
    struct InverseTerms {
        double a, b, d, e;
    };

    /// Null when a term is not finite, when the terms are within rounding of a
    /// singular matrix, or when the inverse's terms are beyond the range of double.
    static std::shared_ptr<const AffineModel> Make(const AffineTerms& terms, EMathTransformType type);

    AffineModel(const AffineTerms& terms, const InverseTerms& inverse, EMathTransformType type)
        : TransformModel(type), terms_(terms), inverse_(inverse) {}

    bool ToTarget(double& x, double& y) const override;
    bool ToSource(double& x, double& y) const override;
    bool LengthInTarget(double x, double y, double dx, double dy, double& length) const override;
    bool LengthInSource(double x, double y, double dx, double dy, double& length) const override;
    bool SlopesAt(double, double, BMathTransform::Slopes& slopes) const override {
        slopes = {terms_.a, terms_.b, terms_.d, terms_.e};
        return true;
    }
    const AffineTerms* Affine() const override { return &terms_; }

private:
    AffineTerms terms_;
    InverseTerms inverse_;
};

}  // namespace Tellurion

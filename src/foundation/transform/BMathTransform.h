#pragma once

#include <Tellurion/BControlPoint.h>
#include <Tellurion/BPointPair.h>
#include <Tellurion/BTransform.h>
#include <Tellurion/EMathTransformType.h>
#include <Tellurion/Export.h>

#include <memory>
#include <vector>

namespace Tellurion {

class TransformModel;

/// A transform from pixels (source: x the column, y the row) to the units of a
/// coordinate system (target). Values are immutable; a copy is cheap.
///
/// Affine terms come in the order a, b, c, d, e, f of
///   x' = a * column + b * row + c
///   y' = d * column + e * row + f
class TELLURION_EXPORT BMathTransform : public BTransform {
public:
    /// Fits a transform of `type` through the enabled points, by least squares where
    /// there are more than needed. `width` and `height` are the raster's size in
    /// pixels (0 when unknown); they help the inverse of curved fits to find its
    /// start. Throws a BException that says what is wrong when the points are too
    /// few, coincide, lie on a line (or on a curve that leaves the fit open), are
    /// not finite, or when the type is unknown. The type None takes any points and
    /// gives a transform that is not valid.
    BMathTransform(EMathTransformType type, const std::vector<BPointPair>& pairs, unsigned int width,
                   unsigned int height, bool optimizeFor2D);
    BMathTransform(const BMathTransform&);
    BMathTransform& operator=(const BMathTransform&);
    ~BMathTransform() override;

    /// The same fit through points whose pixels have fractions.
    static BMathTransform Fit(EMathTransformType type, const std::vector<BControlPoint>& points,
                              unsigned int width, unsigned int height);

    /// A new transform, the caller's; null when a term is not finite or the terms
    /// cannot be inverted.
    static BMathTransform* CreateAffine(double a, double b, double c, double d, double e, double f,
                                        bool optimizeFor2D);

    ETransformType GetType() const override;  ///< Math
    bool IsValid() const override;            ///< false for the type None
    bool GetOptimizeFor2D() const override;
    bool ConvertSourceToTarget(double& x, double& y) const override;
    BPoint ConvertSourceToTarget(const BPoint& point) const override;
    bool ConvertTargetToSource(double& x, double& y) const override;   ///< curved fits: by iteration
    BPoint ConvertTargetToSource(const BPoint& point) const override;  ///< the same
    double ConvertXDistance(double distance, const BPoint& at) const override;
    double ConvertYDistance(double distance, const BPoint& at) const override;  ///< along y
    double ConvertXDistanceReverse(double distance, const BPoint& at) const override;
    double ConvertYDistanceReverse(double distance, const BPoint& at) const override;  ///< along y
    virtual EMathTransformType GetMathTransformType() const;                           ///< the kind of fit

    /// The six terms. Throws a BException for what is not affine; a conformal fit is.
    void GetAffineParameters(double& a, double& b, double& c, double& d, double& e, double& f) const;

    /// How the target changes with the source around a position in the source. False, with
    /// `slopes` unchanged, where the transform has no value.
    struct Slopes {
        double XByColumn;  ///< of x with the column
        double XByRow;     ///< of x with the row
        double YByColumn;  ///< of y with the column
        double YByRow;     ///< of y with the row
    };
    bool GetSlopes(double column, double row, Slopes& slopes) const;  ///< see above

private:
    BMathTransform(std::shared_ptr<const TransformModel> model, bool optimizeFor2D);

    std::shared_ptr<const TransformModel> model_;
    bool optimize_for_2d_;
};

}  // namespace Tellurion

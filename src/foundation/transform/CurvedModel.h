#pragma once

#include "FitSpace.h"
#include "Fits.h"
#include "TransformModel.h"

#include <Eigen/Core>
#include <Eigen/Geometry>

namespace Tellurion {

/// A smooth transform without a closed inverse: the way back is Newton's method from
/// the best affine guess, then from places all over the raster. Where several pixels
/// share a value, one in the raster wins.
class CurvedModel : public TransformModel {
public:
    bool ToTarget(double& x, double& y) const override;
    bool ToSource(double& x, double& y) const override;
    bool SlopesAt(double x, double y, BMathTransform::Slopes& slopes) const override;

protected:
    /// Both in unit space.
    struct Jet {
        Eigen::Vector2d value;
        Eigen::Matrix2d slope;  ///< of each value by each coordinate
    };

    CurvedModel(EMathTransformType type, const FitSpace& space, RasterSize raster);

    virtual Jet Evaluate(const Eigen::Vector2d& from) const = 0;
    /// The last step of a fit. Throws a BException when the slopes at the points are
    /// those of a transform that squeezes the plane into a line.
    void Examine(const FitSpace& space, const FitRule& rule);

private:
    bool Descend(const Eigen::Vector2d& to, Eigen::Vector2d& from) const;
    bool Halve(const Eigen::Vector2d& to, const Eigen::Vector2d& step, Eigen::Vector2d& from, Jet& jet) const;
    Eigen::Vector2d StartPlace(int k) const;
    bool IsUnfolded(const Eigen::Vector2d& from) const;
    bool Assign(const Eigen::Vector2d& from, double& x, double& y) const;

    PlaneFrame source_;
    PlaneFrame target_;
    Eigen::AlignedBox2d raster_;
    /// The inverse of the best affine transform through the points: from = guess_ * (to, 1).
    Eigen::Matrix<double, 2, 3> guess_;
    bool mirrored_ = false;
    /// Somewhere in the raster the other side is up. Without such a fold the first
    /// pixel found outside needs no search for one inside.
    bool folded_ = false;
};

}  // namespace Tellurion

#pragma once

#include "ControlPoints.h"

#include <Tellurion/BMathTransform.h>

#include <Eigen/Geometry>

namespace Tellurion {

enum class Scaling {
    PerAxis,
    Common,  ///< keeps angles and the ratio of distances
};

/// A shift and a scale that bring positions near the unit square around 0. The
/// scales are powers of two and the shifts have few digits, so that for all but odd
/// data the way there and back is free of rounding.
struct PlaneFrame {
    PlaneFrame(const Positions& positions, Scaling scaling);

    Eigen::Vector2d ToUnit(const Eigen::Vector2d& position) const {
        return (position - centre).cwiseQuotient(scale);
    }
    Eigen::Vector2d FromUnit(const Eigen::Vector2d& unit) const { return centre + scale.cwiseProduct(unit); }
    void AllToUnit(const Eigen::Ref<const Positions>& positions, Eigen::Ref<Eigen::MatrixXd> unit) const;

    Eigen::Vector2d centre;
    Eigen::Vector2d scale;
};

/// Slopes in unit space as those of pixels and the world.
BMathTransform::Slopes SlopesFromUnit(const Eigen::Matrix2d& unit, const PlaneFrame& source,
                                      const PlaneFrame& target);

/// The frames in which a fit computes: both sides of the points near the unit square.
struct FitFrames {
    FitFrames(const ControlPoints& points, Scaling source_scaling, Scaling target_scaling);

    PlaneFrame source;
    PlaneFrame target;
};

/// The frames and the points in them.
struct FitSpace : FitFrames {
    FitSpace(const ControlPoints& points, Scaling source_scaling, Scaling target_scaling);

    Positions from;  ///< pixels, in source units
    Positions to;    ///< world, in target units
};

}  // namespace Tellurion

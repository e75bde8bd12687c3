#pragma once

#include <Tellurion/BPoint.h>
#include <Tellurion/ETransformType.h>
#include <Tellurion/Export.h>

namespace Tellurion {

/// A conversion between two plane spaces, source and target. Const operations may
/// run in several threads on one object.
class TELLURION_EXPORT BTransform {
public:
    virtual ~BTransform();
    virtual ETransformType GetType() const = 0;  ///< what it is made of
    virtual bool IsValid() const = 0;            ///< it has values somewhere
    /// True when z is left alone.
    virtual bool GetOptimizeFor2D() const = 0;

    /// In place; false, with x and y unchanged, where the transform has no value.
    virtual bool ConvertSourceToTarget(double& x, double& y) const = 0;
    /// The same for a point, z kept; throws a BException where there is no value.
    virtual BPoint ConvertSourceToTarget(const BPoint& point) const = 0;
    virtual bool ConvertTargetToSource(double& x, double& y) const = 0;   ///< the way back
    virtual BPoint ConvertTargetToSource(const BPoint& point) const = 0;  ///< the way back

    /// The length in the target of a step of `distance` along the source's x axis
    /// (or y axis) from `at`, a position in the source. Throws as above.
    virtual double ConvertXDistance(double distance, const BPoint& at) const = 0;
    virtual double ConvertYDistance(double distance, const BPoint& at) const = 0;  ///< along y
    /// The other way round: a step in the target from `at`, a position in the target.
    virtual double ConvertXDistanceReverse(double distance, const BPoint& at) const = 0;
    virtual double ConvertYDistanceReverse(double distance, const BPoint& at) const = 0;  ///< along y
};

}  // namespace Tellurion

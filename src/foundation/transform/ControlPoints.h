#pragma once

#include <Tellurion/BControlPoint.h>
#include <Tellurion/BException.h>
#include <Tellurion/BPointPair.h>
#include <Tellurion/EMathTransformType.h>

#include <Eigen/Core>

#include <vector>

namespace Tellurion {

/// One position a row.
using Positions = Eigen::Matrix<double, Eigen::Dynamic, 2>;

/// What a fit is called in failures, and the least number of points it takes.
struct FitRule {
    const char* name;
    Eigen::Index points;
};

/// Throws a BException for a type that has no fit.
FitRule RuleOf(EMathTransformType type);

template <class... Args>
[[noreturn]] void RefuseFit(const char* format, const Args&... arguments) {
    throw BException(BString("BMathTransform::BMathTransform"), BString::Format(format, arguments...));
}

/// The enabled points of a fit: as many as it takes, at as many different pixels,
/// with finite positions in the world.
struct ControlPoints {
    /// Throws a BException when the pairs, which must outlive this, are not that.
    ControlPoints(const std::vector<BPointPair>& pairs, const FitRule& rule);
    ControlPoints(const std::vector<BControlPoint>& points, const FitRule& rule);

    Eigen::Index Count() const { return pixels.rows(); }
    /// How a failure names the point: its place among all pairs, from 1. Counts from the first.
    long Number(Eigen::Index point) const;

    Positions pixels;
    Positions world;

private:
    template <class Point>
    void Fill(const std::vector<Point>& points, const FitRule& rule);
    bool IsEnabled(std::size_t index) const {
        return pairs_ ? (*pairs_)[index].Enabled : (*points_)[index].Enabled;
    }

    /// One of the two is null.
    const std::vector<BPointPair>* pairs_ = nullptr;
    const std::vector<BControlPoint>* points_ = nullptr;
};

/// Throws a BException when the pixels or the positions in the world lie on a line,
/// or within rounding of one.
void RequireArea(const ControlPoints& points, const FitRule& rule);
/// Throws a BException when the positions in the world are one and the same.
void RequireExtent(const ControlPoints& points, const FitRule& rule);
/// Throws a BException when two points have the same pixel.
void RequireDifferentPixels(const ControlPoints& points, const FitRule& rule);

}  // namespace Tellurion

#include "common/points/SourceDistance.h"

#include <Tellurion/BCoordSysException.h>
#include <Tellurion/UnitsPerDegree.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace MapAnchor {

using Tellurion::BCoordSys;
using Tellurion::BPoint;

namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
constexpr double kDegree = 3.14159265358979323846 / 180.0;
constexpr double kDegreesOfTurn = 360.0;

struct Place {
    double x;
    double y;
    bool IsFinite() const { return std::isfinite(x) && std::isfinite(y); }
};

std::optional<Place> WorldOf(const PlacedRaster& raster, Place corner) {
    const double shift = raster.centre_anchored ? -0.5 : 0.0;
    Place place{corner.x + shift, corner.y + shift};
    if (!raster.reference.MathTransform->ConvertSourceToTarget(place.x, place.y) || !place.IsFinite())
        return std::nullopt;
    return place;
}

std::optional<Place> PixelOf(const PlacedRaster& raster, Place world) {
    const double shift = raster.centre_anchored ? 0.5 : 0.0;
    if (!raster.reference.MathTransform->ConvertTargetToSource(world.x, world.y) || !world.IsFinite())
        return std::nullopt;
    return Place{world.x + shift, world.y + shift};
}

/// The position in the system of the other reference; as it is where one has none.
std::optional<Place> Converted(const PlacedRaster& from, const PlacedRaster& to, Place place) {
    if (!from.reference.HasCoordSys() || !to.reference.HasCoordSys()) return place;
    const BCoordSys& system = *from.reference.CoordSys;
    if (system.IsSame(*to.reference.CoordSys)) return place;
    try {
        const BPoint there = system.ConvertTo(*to.reference.CoordSys, BPoint(place.x, place.y, 0.0));
        return Place{there.x, there.y};
    } catch (const Tellurion::BException&) {
        return std::nullopt;
    }
}

/// Between two places of a system, on a sphere for longitude and latitude.
double Metres(const BCoordSys& system, Place a, Place b) {
    constexpr double kRadius = 6371008.8;
    if (system.GetKind() != BCoordSys::kKindGeodetic) {
        const auto unit = system.GetUnits();
        return unit && unit->IsLinear() ? std::hypot(a.x - b.x, a.y - b.y) / unit->GetUnitsPerBase() : kNone;
    }
    const double per_degree = UnitsPerDegree(system.GetUnits());
    const double radian = kDegree / per_degree;
    const double turn = kDegreesOfTurn * per_degree;
    const double dx = std::remainder(b.x - a.x, turn) * std::cos((a.y + b.y) / 2 * radian);
    return kRadius * radian * std::hypot(dx, b.y - a.y);
}

}  // namespace

double InTheTurnOf(const BCoordSys& system, double longitude, double other) {
    if (system.GetKind() != BCoordSys::kKindGeodetic) return other;
    const double turn = kDegreesOfTurn * UnitsPerDegree(system.GetUnits());
    return other + turn * std::round((longitude - other) / turn);
}

double MetresBetween(const BCoordSys& system, const BPoint& a, const BPoint& b) {
    return Metres(system, {a.x, a.y}, {b.x, b.y});
}

SourceDistance DistanceAt(const PlacedRaster& from, const PlacedRaster& to,
                          const std::vector<BPoint>& places) {
    SourceDistance worst{kNone, kNone};
    if (!from.reference.HasMathTransform() || !to.reference.HasMathTransform()) return worst;
    for (const BPoint& point : places) {
        const Place place{point.x, point.y};
        const auto here = WorldOf(from, place);
        auto there = WorldOf(to, place);
        if (there) there = Converted(to, from, *there);
        if (!here || !there) return {kNone, kNone};
        if (from.reference.HasCoordSys()) {
            const double x = InTheTurnOf(*from.reference.CoordSys, here->x, there->x);
            worst.is_turned = worst.is_turned || x != there->x;
            there->x = x;
        }
        const auto pixel = PixelOf(from, *there);
        if (!pixel) return {kNone, kNone};
        worst.pixels = std::fmax(worst.pixels, std::hypot(pixel->x - place.x, pixel->y - place.y));
        if (from.reference.HasCoordSys())
            worst.metres = std::fmax(worst.metres, Metres(*from.reference.CoordSys, *here, *there));
    }
    return worst;
}

SourceDistance DistanceBetween(const PlacedRaster& from, const PlacedRaster& to, long width, long height) {
    const auto w = static_cast<double>(std::max(width, 0L));
    const auto h = static_cast<double>(std::max(height, 0L));
    return DistanceAt(from, to, {BPoint(0, 0, 0), BPoint(w, 0, 0), BPoint(w, h, 0), BPoint(0, h, 0)});
}

}  // namespace MapAnchor

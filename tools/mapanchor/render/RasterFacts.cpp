#include "render/RasterFacts.h"

#include "read/RasterFrame.h"

#include <Tellurion/BException.h>
#include <Tellurion/Numbers.h>

#include <cmath>
#include <memory>

namespace Tool {

using Tellurion::BCoordSys;
using Tellurion::BString;

namespace {

constexpr double kDegree = 3.14159265358979323846 / 180.0;

/// The pixel that facts are of: the raster's middle or, where its size is not known, the first.
Position MiddleOf(const ReadResult& result) {
    if (!result.width) return {0.0, 0.0};
    return FrameOf(result, *result.width, *result.height).At(0.5, 0.5);
}

/// Metres per unit along x and y at a place; empty for a system without a unit.
std::optional<Position> MetresPerUnit(const BCoordSys& system, const Position& at) {
    constexpr double kEarthRadius = 6371008.8;
    const auto unit = system.GetUnits();
    if (!unit || !(unit->GetUnitsPerBase() > 0.0)) return std::nullopt;
    const double bases = 1.0 / unit->GetUnitsPerBase();
    if (unit->IsLinear()) return Position{bases, bases};
    const double radians = bases * kDegree;
    return Position{kEarthRadius * radians * std::cos(at.y * radians), kEarthRadius * radians};
}

}  // namespace

std::optional<double> RotationOf(const ReadResult& result) {
    const Position middle = MiddleOf(result);
    const auto here = WorldAt(result, middle);
    const auto right = WorldAt(result, {middle.x + 1.0, middle.y});
    if (!here || !right) return std::nullopt;
    return std::atan2(right->y - here->y, right->x - here->x) / kDegree;
}

std::optional<PixelFacts> PixelFactsOf(const ReadResult& result) {
    if (!result.reference.HasCoordSys()) return std::nullopt;
    const Position middle = MiddleOf(result);
    const auto here = WorldAt(result, middle);
    const auto right = WorldAt(result, {middle.x + 1.0, middle.y});
    const auto below = WorldAt(result, {middle.x, middle.y + 1.0});
    if (!here || !right || !below) return std::nullopt;
    const auto metres = MetresPerUnit(*result.reference.CoordSys, *here);
    if (!metres) return std::nullopt;
    const auto length = [&](const Position& to) {
        return std::hypot((to.x - here->x) * metres->x, (to.y - here->y) * metres->y);
    };
    return PixelFacts{length(*right), length(*below), RotationOf(result).value_or(0.0)};
}

std::optional<Conversion> ToLongitudeLatitude(const ReadResult& result) {
    if (!result.reference.HasCoordSys()) return std::nullopt;
    const std::unique_ptr<BCoordSys> wgs84(BCoordSys::FromEPSGCode(BString("EPSG:4326")));
    if (!wgs84) return std::nullopt;
    try {
        Conversion conversion(*result.reference.CoordSys, *wgs84);
        return conversion.IsPossible() ? std::optional(conversion) : std::nullopt;
    } catch (const Tellurion::BException&) {
        return std::nullopt;
    }
}

std::string RoundedText(double value, const ReadResult& result) {
    constexpr int kDecimalsOfDegrees = 9;
    constexpr int kDecimals = 4;
    constexpr double kExact = 1e9;  // beyond it nothing is left to round
    const bool geodetic =
        result.reference.HasCoordSys() && result.reference.CoordSys->GetKind() == BCoordSys::kKindGeodetic;
    if (!(std::fabs(value) < kExact)) return Tellurion::PrintShortest(value);
    // Without a system small numbers are likely to be degrees.
    const bool is_small = !result.reference.HasCoordSys() && std::fabs(value) < 1000.0;
    const std::string text =
        Tellurion::PrintFixed(value, geodetic || is_small ? kDecimalsOfDegrees : kDecimals);
    return Tellurion::PrintShortest(Tellurion::ParseDouble(text) + 0.0);
}

}  // namespace Tool

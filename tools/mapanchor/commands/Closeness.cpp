#include "commands/Closeness.h"

#include <Tellurion/BException.h>

#include <algorithm>
#include <cmath>

namespace Tool {

using namespace Tellurion;

namespace {

constexpr double kRadiansPerDegree = 0.017453292519943295;
/// Of a sphere as large as the Earth, in metres; enough for a distance of pixels.
constexpr double kEarthRadius = 6371008.8;

double GroundDistance(const BPoint& a, const BPoint& b) {
    const double north = (b.y - a.y) * kRadiansPerDegree;
    const double east =
        std::remainder(b.x - a.x, 360.0) * kRadiansPerDegree * std::cos(a.y * kRadiansPerDegree);
    return kEarthRadius * std::hypot(north, east);
}

bool IsProjected(const BGeoReference& reference) {
    return reference.CoordSys->GetKind() == BCoordSys::kKindProjected;
}

BPoint GeodeticOf(const BGeoReference& reference, const BPoint& pixel) {
    const BPoint world = reference.MathTransform->ConvertSourceToTarget(pixel);
    return IsProjected(reference) ? reference.CoordSys->ConvertToGeodetic(world) : world;
}

BPoint PixelOf(const BGeoReference& reference, const BPoint& geodetic) {
    const BPoint world =
        IsProjected(reference) ? reference.CoordSys->ConvertFromGeodetic(geodetic) : geodetic;
    return reference.MathTransform->ConvertTargetToSource(world);
}

bool IsComplete(const BGeoReference& reference) {
    return reference.HasMathTransform() && reference.HasCoordSys();
}

Closeness Compare(const BGeoReference& meant, const BGeoReference& found, double right, double bottom) {
    Closeness worst;
    for (const BPoint& corner :
         {BPoint(0, 0, 0), BPoint(right, 0, 0), BPoint(right, bottom, 0), BPoint(0, bottom, 0)}) {
        const BPoint there = GeodeticOf(found, corner);
        const BPoint pixel = PixelOf(meant, there);
        worst.pixels = std::max(worst.pixels, std::hypot(pixel.x - corner.x, pixel.y - corner.y));
        worst.metres = std::max(worst.metres, GroundDistance(GeodeticOf(meant, corner), there));
    }
    return worst;
}

}  // namespace

std::optional<Closeness> CompareAtCorners(const BGeoReference& meant, const BGeoReference& found, long width,
                                          long height, std::string& fault) {
    fault = "one of the two references has no transform or no coordinate system";
    if (!IsComplete(meant) || !IsComplete(found)) return std::nullopt;
    try {
        const Closeness worst =
            Compare(meant, found, static_cast<double>(width), static_cast<double>(height));
        fault = "a corner has no place in one of the two references";
        if (std::isfinite(worst.pixels) && std::isfinite(worst.metres)) return worst;
    } catch (const BException& error) {
        fault = error.what();
    }
    return std::nullopt;
}

}  // namespace Tool

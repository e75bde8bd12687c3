#include "export/BMapAnchorGCPSampler.h"

#include <Tellurion/BException.h>

#include <cmath>

namespace MapAnchor {

using Tellurion::BException;
using Tellurion::BMathTransform;
using Tellurion::BPoint;
using Tellurion::BPointPair;
using Tellurion::EMathTransformType;
using VellumLib::CPDFPathPoint;

namespace {

/// In units of the coordinate system per pixel.
constexpr double kMostSkew = 0.01;

bool IsSuitable(const BMathTransform& transform) {
    if (transform.GetMathTransformType() != EMathTransformType::Affine) return true;
    double a, b, c, d, e, f;
    transform.GetAffineParameters(a, b, c, d, e, f);
    return !(std::abs(b - d) > kMostSkew);
}

}  // namespace

BMapAnchorGCPSampler::BMapAnchorGCPSampler(const Tellurion::BGeoReference& reference, bool to_geodetic)
    : reference_(reference),
      transform_(reference.MathTransform),
      to_geodetic_(to_geodetic),
      transform_unsuitable_(!IsSuitable(*transform_)) {}

BMapAnchorGCPSampler::~BMapAnchorGCPSampler() = default;

CPDFPathPoint BMapAnchorGCPSampler::PixelToWorld(const CPDFPathPoint& pixel) {
    CPDFPathPoint world;
    world.x = pixel.x;
    world.y = pixel.y;
    if (!transform_->ConvertSourceToTarget(world.x, world.y))
        throw BException("BMapAnchorGCPSampler::PixelToWorld", "A pixel has no place in the world.");
    if (!to_geodetic_) return world;
    const BPoint geodetic = reference_.CoordSys->ConvertToGeodetic(BPoint(world.x, world.y, 0.0));
    world.x = geodetic.x;
    world.y = geodetic.y;
    return world;
}

bool BMapAnchorGCPSampler::RejectBox() {
    if (transform_unsuitable_) return false;  // no other box would do better
    std::vector<BPointPair> pairs;
    for (std::size_t i = 0; i < GetPixelPoints().size(); ++i) {
        const CPDFPathPoint& pixel = GetPixelPoints()[i];
        const CPDFPathPoint& world = GetWorldPoints()[i];
        const BPoint place = reference_.CoordSys->ConvertFromGeodetic(BPoint(world.x, world.y, 0.0));
        pairs.emplace_back(static_cast<long>(pixel.x), static_cast<long>(pixel.y), place.x, place.y, 0.0,
                           Tellurion::BString(), true);
    }
    const BMathTransform fit(EMathTransformType::Affine, pairs, static_cast<unsigned int>(RasterWidth()),
                             static_cast<unsigned int>(RasterHeight()), true);
    return !IsSuitable(fit);
}

}  // namespace MapAnchor

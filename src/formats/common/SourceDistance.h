#pragma once

#include <Tellurion/BGeoReference.h>

namespace MapAnchor {

/// A reference and how its transform counts pixels.
struct PlacedRaster {
    const Tellurion::BGeoReference& reference;
    bool centre_anchored = false;
};

/// How far two references of one raster put its corners apart, at the worst one. Not a number
/// where they cannot be compared.
struct SourceDistance {
    double pixels;
    double metres;
};
SourceDistance DistanceBetween(const PlacedRaster& from, const PlacedRaster& to, long width, long height);

}  // namespace MapAnchor

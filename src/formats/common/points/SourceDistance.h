#pragma once

#include <MapAnchor/Internal.h>
#include <Tellurion/BGeoReference.h>

#include <vector>

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
    bool is_turned = false;  ///< their longitudes are one turn around the earth or more apart
};
MAPANCHOR_INTERNAL SourceDistance DistanceBetween(const PlacedRaster& from, const PlacedRaster& to,
                                                  long width, long height);

/// The same at these places, which are counted from the outer corner of the top left pixel; z
/// means nothing.
SourceDistance DistanceAt(const PlacedRaster& from, const PlacedRaster& to,
                          const std::vector<Tellurion::BPoint>& places);

/// The longitude `other` in the turn around the earth that `longitude` is in; `other` where the
/// first coordinate of the system is no longitude.
double InTheTurnOf(const Tellurion::BCoordSys& system, double longitude, double other);

/// Between two positions of a system, in metres, on a sphere for longitude and latitude. Not a
/// number for a system without a length or an angle.
double MetresBetween(const Tellurion::BCoordSys& system, const Tellurion::BPoint& a,
                     const Tellurion::BPoint& b);

}  // namespace MapAnchor

#pragma once

#include "crs/ProjObjects.h"

#include <Tellurion/BPoint.h>

#include <vector>

namespace Tellurion {

/// The number of the one EPSG system that is the same as `crs`, 0 when none or more
/// than one is. What counts is the datum and where positions come to lie; names and
/// the order of axes do not.
int IdentifyEpsg(PJ* crs);

/// True for two systems of one kind that share the datum and place every position
/// alike. `second` says where on the Earth that is tried.
bool IsSameSystem(PJ* first, PJ* second);

/// True when the geodetic systems that the two are or stand on are the same.
bool HasSameDatum(PJ* first, PJ* second);

/// Positions spread over the area of use, longitude and latitude in degrees.
std::vector<BPoint> PlacesOf(PJ* crs);

/// How far two systems of one kind, ellipsoid and prime meridian place the same longitude and
/// latitude apart, in metres; infinite for others.
double LargestDistance(PJ* first, PJ* second);

/// The same ellipsoid, prime meridian and projection, whatever the datum is called.
bool IsSamePlacement(PJ* first, PJ* second);

}  // namespace Tellurion

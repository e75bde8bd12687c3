#pragma once

#include "crs/ProjObjects.h"

#include <Tellurion/BString.h>

#include <string>

/// Equal area projections that EPSG defines on the sphere with the area of the ellipsoid, such as
/// that of EPSG:9311. PROJ computes them so from version 9.6 on; earlier versions compute them on
/// the ellipsoid, up to 40 km away. Well-known text 1 and ESRI's text have one name for both.
namespace Tellurion {

/// True for a projected system with such a method and an ellipsoid that is not a sphere, whatever
/// this version of PROJ makes of it.
bool IsOnAuthalicSphere(PJ* crs);

/// The steps of such a projection in PROJ's words, with the sphere stated.
std::string WithAuthalicSphere(std::string steps);

/// Well-known text 1 of such a system, with its projection in PROJ's words as an extension, which
/// all versions of PROJ and GDAL read alike. `wkt1` is the text without it; empty for one of a
/// compound system.
BString StateAuthalicSphere(PJ* crs, const BString& wkt1);

/// True for such a system that this version of PROJ computes on the ellipsoid.
bool IsComputedOnEllipsoid(PJ* crs);

/// The number of the system that a text without the sphere states, where it was made of that
/// system: it differs from it in nothing else. 0 for any other.
int NumberOnAuthalicSphere(PJ* read);

}  // namespace Tellurion

#pragma once

#include "names/ErMapperNames.h"

namespace GeoCalc::DB {

/// The EPSG number of the geodetic system that a projection name is based on when
/// nobody says a datum: that of the land whose grid it is, WGS 84 for the rest.
int OwnDatumOf(const ErMapperProjection& projection);

}  // namespace GeoCalc::DB

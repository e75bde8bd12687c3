#pragma once

#include "read/Conversion.h"

#include <vector>

namespace Tool {

/// The scales of the coastline that the tool carries; see scripts/make-coast.py.
enum class CoastScale { Of110Million, Of50Million };

/// A ring in longitude and latitude, not closed. Longitudes run on past 180 degrees; around a
/// pole the last one is a whole turn from the first.
using CoastRing = std::vector<Position>;

/// The land of the Earth by Natural Earth, which is in the public domain: shores and, inside
/// them, the shores of inland seas.
std::vector<CoastRing> ReadCoast(CoastScale scale);

}  // namespace Tool

#pragma once

#include "read/Conversion.h"
#include "read/RasterFrame.h"

#include <functional>
#include <optional>
#include <vector>

namespace Tool {

/// The longitude and latitude of a pixel; empty where there is none.
using PlaceOf = std::function<std::optional<Position>(const Position& pixel)>;

/// The edge of a raster on the Earth, as many points as its curves need, with the first
/// one again at the end. Longitudes run on past 180 degrees: first and last differ by
/// a whole turn when the edge goes around a pole. Points without a place are left out.
std::vector<Position> TraceOutline(const RasterFrame& frame, const PlaceOf& place_of);

}  // namespace Tool

#pragma once

#include "render/Footprint.h"

#include <vector>

namespace Tool {

/// A tenth of a millimetre; the noise of the conversion is not worth its digits.
double RoundedDegrees(double degrees);

/// The line, rounded, with no position twice in a row. Empty for less than a triangle.
std::vector<Position> RoundedRing(const std::vector<Position>& line);

/// The area inside a closed line that needs neither a cut nor a look for crossings, which would
/// load GDAL: within 180 degrees west and east, and seen from its middle it goes around once
/// without a turn back. Empty for all others.
std::optional<Footprint> PlainArea(const std::vector<Position>& line);

}  // namespace Tool

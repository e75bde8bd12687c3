#pragma once

#include "read/Conversion.h"
#include "read/ReadFile.h"

#include <optional>
#include <string>
#include <vector>

namespace Tool {

/// The area of a raster on the Earth, in longitude and latitude on WGS 84.
struct Footprint {
    /// Closed, counterclockwise, within 180 degrees west and east: an area that crosses
    /// the antimeridian has several.
    std::vector<std::vector<Position>> rings;
    /// `west` is larger than `east` where the area crosses the antimeridian.
    double west = 0.0;
    double south = 0.0;
    double east = 0.0;
    double north = 0.0;
};

/// Empty where there is none; the remark "no-footprint" says why.
std::optional<Footprint> FootprintOf(ReadResult& result);

/// The area between two meridians, eastward from `west`, and two parallels; empty for
/// numbers that are none.
std::optional<Footprint> FootprintOfBox(double west, double south, double east, double north);

/// To within a millimetre.
bool Contains(const Footprint& outer, const Footprint& inner);

}  // namespace Tool

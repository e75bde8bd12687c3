#pragma once

#include "read/Conversion.h"
#include "read/ReadFile.h"

#include <optional>

namespace Tool {

/// What a person asks of a raster's pixels.
struct PixelFacts {
    double width_metres = 0.0;  ///< of the pixel in the raster's centre
    double height_metres = 0.0;
    double rotation = 0.0;  ///< of its rows against the map's x axis, in degrees counterclockwise
};

/// Empty without a transform and a system with a unit.
std::optional<PixelFacts> PixelFactsOf(const ReadResult& result);

/// The angle of the rows alone, which needs no system; empty without a transform.
std::optional<double> RotationOf(const ReadResult& result);

/// To longitude and latitude on WGS 84; empty when there is no way.
std::optional<Conversion> ToLongitudeLatitude(const ReadResult& result);

/// For people: rounded to a tenth of a millimetre on the Earth, in the unit of the system.
std::string RoundedText(double value, const ReadResult& result);

}  // namespace Tool

#pragma once

#include "common/policy/ReferenceFormat.h"

#include <Tellurion/BControlPoint.h>
#include <Tellurion/BGeoReference.h>
#include <Tellurion/BString.h>

#include <optional>
#include <string>
#include <vector>

namespace MapAnchor {

/// What GDAL by itself makes of a file, without this library's readers.
struct SecondReading {
    /// Transform and system; the transform begins at the outer corner of the top left pixel.
    Tellurion::BGeoReference reference;
    std::vector<Tellurion::BControlPoint> points;
    bool states_system = true;  ///< false where GDAL's reader of the kind reads no system
    long width = 0;             ///< of the raster that GDAL sees; 0 for a kind without one
    long height = 0;
    std::string reader;  ///< GDAL's name of it, such as "GTiff"
};

/// Empty for a kind that GDAL does not read, and where it refuses the file; `refusal` is then
/// GDAL's text, empty for a kind that it does not read.
std::optional<SecondReading> ReadByGdalAlone(const ReferenceFormat& kind, const Tellurion::BString& file,
                                             std::string& refusal);

/// The reader of the raster that a sidecar is beside, with all that GDAL sees.
std::optional<SecondReading> ReadRasterByGdalAlone(const Tellurion::BString& raster, std::string& refusal);

}  // namespace MapAnchor

#pragma once

#include "raster/geotiff/RasterState.h"
#include "raster/geotiff/StagedFile.h"

#include <string>

namespace MapAnchor {

/// The pointer to a TIFF's first directory as it is on the disk; empty when it cannot be read.
std::string PointerOnDisk(const StagedFile& tiff);

/// Why the first directory of an updated TIFF must not replace the one at `old_pointer`,
/// the pointer's bytes before the update; empty when it may. Short of memory, libtiff
/// drops a tag such as the colour map and reports success.
std::string FaultOfNewDirectory(const StagedFile& tiff, const std::string& old_pointer);

/// True when the new first directory places the raster as `wanted` does and repeats all else
/// that the old one says, value by value. Then GDAL, which has opened the old one, opens the
/// new one as well. False where that is not so or not known: GDAL has to be asked.
bool ShowsWanted(const StagedFile& tiff, const RasterState& wanted);

}  // namespace MapAnchor

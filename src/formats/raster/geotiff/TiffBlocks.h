#pragma once

#include "raster/geotiff/StagedFile.h"

#include <string>

namespace MapAnchor {

/// True for a file that begins as a TIFF does, classic or BigTIFF, of either byte order.
bool IsTiff(const StagedFile& file);

/// The bytes that name a TIFF's first directory.
struct TiffPointer {
    std::uint64_t offset = 0;
    std::size_t size = 0;
};
/// The file must be a TIFF.
TiffPointer PointerOf(const StagedFile& tiff);

/// Why the first directory of a TIFF cannot be written again safely; empty when it can.
/// libtiff (4.5.0) crashes when it writes a directory whose list of strips or tiles is
/// shorter than the raster needs or of another type, although it reads the rest of such a
/// file. Of a file
/// that is cut within its pixels, what is appended would be read as the missing ones; of
/// one whose pixels overlap the header, the new pointer would be read as a pixel. Where
/// there is no fault, the lists are kept in memory: libtiff also crashes when it cannot
/// read them while it closes the file.
std::string FaultOfBlockLists(StagedFile& tiff);

/// Why the first directory of an updated TIFF must not replace the one at `old_pointer`,
/// the pointer's bytes before the update; empty when it may. Short of memory, libtiff
/// drops a tag such as the colour map and reports success.
std::string FaultOfNewDirectory(const StagedFile& tiff, const std::string& old_pointer);

}  // namespace MapAnchor

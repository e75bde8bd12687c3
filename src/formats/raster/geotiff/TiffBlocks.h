#pragma once

#include "raster/geotiff/StagedFile.h"

#include <string>

namespace MapAnchor {

/// Why the first directory of a TIFF cannot be written again safely; empty when it can.
/// libtiff (4.5.0) crashes when it writes a directory whose list of strips or tiles is
/// shorter than the raster needs or of another type, although it reads the rest of such a
/// file. Of a file
/// that is cut within its pixels, what is appended would be read as the missing ones; of
/// one whose pixels overlap the header, the new pointer would be read as a pixel. Where
/// there is no fault, the lists are kept in memory: libtiff also crashes when it cannot
/// read them while it closes the file.
std::string FaultOfBlockLists(StagedFile& tiff);

}  // namespace MapAnchor

#pragma once

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BString.h>

namespace MapAnchor {

struct ReferenceFormat;

/// A virtual raster of GDAL that places another raster, for rasters that cannot be written. It is
/// saved alone: what such a file names is not opened by its reader.
class BRefVrt {
public:
    /// `imageName` is the raster's name beside the file, or its path from there. A raster that GDAL
    /// does not open, and a reference without a place, end in a BGeoReferenceWriteException.
    static void Write(const Tellurion::BString& file, const Tellurion::BGeoReference& reference,
                      const Tellurion::BString& imageName);

    static ReferenceFormat Format();
};

}  // namespace MapAnchor

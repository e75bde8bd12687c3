#pragma once

#include "raster/gdal/GdalReference.h"

namespace MapAnchor {

/// While one lives, ReadRaster() of this thread may answer from a GeoTIFF's header:
///
///     map.tif --> GeoTiffHeader --> key --> GDAL's answer for that key --> system, flags, units
///                               --> numbers ------------------------> transform
///
/// GDAL reads the first file of each key, and every file that has anything unusual: files
/// beside it, control points, settings of GDAL, tags whose effect is not known. Where the
/// transform from the header differs from GDAL's by a bit, no header of that shape is
/// trusted again in this process.
class HeaderReads {
public:
    HeaderReads();
    ~HeaderReads();
    HeaderReads(const HeaderReads&) = delete;
    HeaderReads& operator=(const HeaderReads&) = delete;

    static bool AreOn();
    /// How many files were answered from their headers in this process, for tests.
    static long Count();
};

/// As ReadGdalReference().
std::optional<GdalReference> ReadRaster(const Tellurion::BString& file, RasterKinds kinds,
                                        Sidecars sidecars = Sidecars::Shown);

}  // namespace MapAnchor

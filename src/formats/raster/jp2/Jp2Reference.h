#pragma once

#include <Tellurion/RandomAccessFile.h>
#include "common/storing/Affine.h"
#include "raster/geotiff/GeoTiffTags.h"

#include <Tellurion/BString.h>

#include <optional>
#include <string_view>

namespace MapAnchor {

/// What a JPEG 2000 file says of its place.
struct Jp2Reference {
    /// From the outer corner of the top left pixel.
    std::optional<AffineTerms> corner;
    /// EPSG codes as stated, 32767 (user-defined) included.
    std::optional<std::uint16_t> projected;
    std::optional<std::uint16_t> geographic;
    int system = 0;    ///< the EPSG code of the whole system, 0 when there is none
    GeoTiffTags tags;  ///< of the GeoTIFF box; empty without one
};

/// True for a boxed file and for a bare code stream.
bool IsJpeg2000(std::string_view head);

/// Reads a file that IsJpeg2000 holds for one. The GeoTIFF box is read here; only
/// where it does not settle position and system, or where an auxiliary file beside the
/// raster may overrule it, is GDAL asked, which knows the GML box, the older binary
/// box, and world files.
Jp2Reference ReadJp2Reference(Tellurion::RandomAccessFile& file, const Tellurion::BString& path);

}  // namespace MapAnchor

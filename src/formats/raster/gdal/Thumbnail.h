#pragma once

#include <Tellurion/BString.h>

#include <optional>
#include <string>

namespace MapAnchor {

/// A raster's pixels, made smaller.
struct Thumbnail {
    std::string png;  ///< the bytes of a PNG file
    int width = 0;    ///< in pixels of the thumbnail
    int height = 0;
};

/// Samples the raster within a few seconds and with little memory, whatever its size. Values
/// that are no bytes are stretched between their 2nd and 98th percentile. Empty when GDAL does
/// not read it or it takes too long; `why_not` then states the reason.
std::optional<Thumbnail> MakeThumbnail(const Tellurion::BString& file, int max_width, int max_height,
                                       std::string& why_not);

}  // namespace MapAnchor

#pragma once

#include <string>

namespace Tool {

/// A thumbnail as a PNG file, or why there is none.
struct ThumbnailAnswer {
    std::string png;      ///< empty when there is a failure
    std::string failure;  ///< else empty
};

/// What BThumbnail makes of a raster, made in a process of its own: GDAL's drivers read pixels
/// of damaged files for hours, or end the process. It has a few seconds and limited memory.
ThumbnailAnswer MakeThumbnail(const std::string& raster, int max_width, int max_height);

}  // namespace Tool

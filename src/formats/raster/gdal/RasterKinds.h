#pragma once

namespace MapAnchor {

/// Who may read a file.
enum class RasterKinds {
    All,     ///< every driver for plain local rasters
    OfName,  ///< those that the file's extension can mean
};

}  // namespace MapAnchor

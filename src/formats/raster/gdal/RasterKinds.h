#pragma once

namespace MapAnchor {

/// Who may read a file.
enum class RasterKinds {
    All,     ///< every driver for plain local rasters
    OfName,  ///< those that the file's extension can mean
};

/// Which files beside a raster its driver sees.
enum class Sidecars {
    Shown,   ///< all that belong to it
    Hidden,  ///< none that is a source of its own, such as a world file
};

}  // namespace MapAnchor

#pragma once

namespace MapAnchor {

/// True when a setting of GDAL or an environment variable may change where GDAL places a
/// raster, such as GTIFF_POINT_GEO_IGNORE or GDAL_GEOREF_SOURCES.
bool HasGdalSettings();

}  // namespace MapAnchor

#pragma once

namespace MapAnchor {

/// True when the installed GDAL has the driver of that name.
bool HasGdalDriver(const char* name);

}  // namespace MapAnchor

#include <MapAnchor/BGdalAccess.h>

#include "raster/gdal/GdalDrivers.h"
#include "raster/gdal/GdalReference.h"

namespace MapAnchor {

using Tellurion::BString;

void BGdalAccess::SetDrivers(const BString& names) {
    GdalDrivers::Allow(names);
}

BString BGdalAccess::GetDrivers() {
    return GdalDrivers::AllowedNames();
}

bool BGdalAccess::GetRasterSize(const BString& file, long& width, long& height) {
    return ReadRasterSize(file, width, height);
}

}  // namespace MapAnchor

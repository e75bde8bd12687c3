#pragma once

#include "raster/gdal/GdalReference.h"

#include <Tellurion/BGeoReference.h>

namespace MapAnchor {

/// Stores what GDAL states of a raster as the read by name does; true when something places it.
bool StoreGdalReference(const Tellurion::BString& file, const GdalReference& raster, long width, long height,
                        Tellurion::BGeoReference& reference);

}  // namespace MapAnchor

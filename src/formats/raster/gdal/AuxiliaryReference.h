#pragma once

#include "raster/gdal/GdalReference.h"

#include <Tellurion/BString.h>

#include <optional>

namespace MapAnchor {

/// What an ".aux.xml" file states of a raster's place; empty for one that cannot be read or
/// states nothing of it.
std::optional<GdalReference> ReadAuxiliaryReference(const Tellurion::BString& file);

}  // namespace MapAnchor

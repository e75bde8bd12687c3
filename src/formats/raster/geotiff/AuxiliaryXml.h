#pragma once

#include "raster/geotiff/StagingFolder.h"

#include <string>

namespace MapAnchor {

/// The name that the raster's auxiliary file has, whether there is one or not.
std::string AuxiliaryXmlOf(const StagingFolder& folder);

/// Removes the transform and the control points from the staged ".aux.xml" of the
/// raster. True when there were some.
bool RemovePlaceFromAuxiliaryXml(StagingFolder& folder);
/// The same with its coordinate system.
bool RemoveSystemFromAuxiliaryXml(StagingFolder& folder);

}  // namespace MapAnchor

#pragma once

#include "raster/gdal/GdalReference.h"

#include <string>

class GDALDataset;

namespace MapAnchor {

/// "driver PNG of GDAL", for what GDAL states without saying where it is written.
std::string GdalPlace(const GDALDataset& raster);

/// Notes where the values of a raster are written, where that is asked for: the tags and keys
/// of a TIFF, else GDAL's driver.
void NoteGdalOrigins(const GDALDataset& raster, const GdalReference& stated, const Tellurion::BString& file);

}  // namespace MapAnchor

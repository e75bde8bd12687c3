#pragma once

#include <Tellurion/BString.h>

#include <ogr_spatialref.h>

#include <memory>

namespace MapAnchor {

/// The text of a system as GDAL states it, with the epoch of its coordinates around it, and of
/// version 2 where version 1 cannot describe it. Empty for none.
Tellurion::BString TextOf(const OGRSpatialReference* system);

/// GDAL's object of such a text; null when GDAL does not understand it.
std::unique_ptr<OGRSpatialReference> SystemAtEpoch(const Tellurion::BString& text, double epoch);

}  // namespace MapAnchor

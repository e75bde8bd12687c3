#pragma once

#include "coordsys/ProjObjects.h"

#include <Tellurion/BString.h>

#include <string>

/// Well-known texts in and out.
namespace Tellurion {

/// The text in UTF-8 without white space and a byte order mark around it; empty for
/// one that is too long or holds a NUL, and so cannot be a system's.
std::string CleanWkt(const BString& text);

/// Well-known text 1 in GDAL's flavour; empty when the system cannot be told in it.
BString ExportWkt(PJ* crs);

/// Well-known text 1 in ESRI's flavour; empty when the system cannot be told in it.
BString ExportPrj(PJ* crs);

/// ESRI's flavour of EPSG:3857, by the name and in the spelling that hosts look for.
BString WebMercatorPrj();

}  // namespace Tellurion

#pragma once

#include "coordsys/ProjObjects.h"

#include <Tellurion/BString.h>

#include <string>

/// Well-known texts in and out.
namespace Tellurion {

/// The text in UTF-8 without white space and a byte order mark around it; empty for
/// one that cannot be a system's: by its length, its first word, a NUL, or brackets
/// that do not close or nest too deep.
std::string CleanWkt(const BString& text);

/// Well-known text 1 in GDAL's flavour; empty when the system cannot be told in it.
BString ExportWkt(PJ* crs);

/// Well-known text 1 in ESRI's flavour; empty when the system cannot be told in it.
BString ExportPrj(PJ* crs);

/// ESRI's flavour of EPSG:3857, by the name and in the spelling that hosts look for.
BString WebMercatorPrj();

}  // namespace Tellurion

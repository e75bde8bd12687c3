#pragma once

#include "crs/ProjObjects.h"

#include <Tellurion/BString.h>

#include <string>

/// Well-known texts in and out.
namespace Tellurion {

/// The text in UTF-8 without white space and a byte order mark around it; empty for
/// one that cannot be a system's: by its length, its first word, a NUL, or brackets
/// that do not close or nest too deep. A coordinate epoch that is stated around the system
/// goes to `epoch`; which PROJ reads from version 9.2 on only.
std::string CleanWkt(const BString& text, double& epoch);

/// The text with the epoch stated around it; as it is for 0.
BString WithEpoch(const BString& wkt, double epoch);

/// Well-known text 1 in GDAL's flavour, with axes where they are not easting and northing;
/// well-known text 2 of a system that version 1 cannot describe.
BString ExportWkt(PJ* crs);

/// Well-known text 2 in its version of 2019.
BString ExportWkt2(PJ* crs);

/// Well-known text 1 in ESRI's flavour; empty when it cannot describe the system.
BString ExportPrj(PJ* crs);

/// ESRI's flavour of EPSG:3857, by the name and in the spelling that hosts look for.
BString WebMercatorPrj();

}  // namespace Tellurion

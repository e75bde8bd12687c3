#pragma once

#include "raster/jp2/Jp2Reference.h"

namespace MapAnchor {

/// Fills in what GDAL knows of the file and `out` lacks; all that it knows where `overrules`.
void AskGdalForJp2(const Tellurion::BString& path, bool overrules, Jp2Reference& out);

}  // namespace MapAnchor

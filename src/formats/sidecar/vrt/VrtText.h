#pragma once

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BString.h>

#include <string>

namespace MapAnchor {

/// The content of a virtual raster that wraps the named raster, with the reference as its place. A
/// raster that GDAL does not open ends in a BGeoReferenceWriteException.
std::string TextOfVrt(const Tellurion::BString& file, const Tellurion::BGeoReference& reference,
                      const Tellurion::BString& imageName);

}  // namespace MapAnchor

#pragma once

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BString.h>
#include <Tellurion/EMathTransformType.h>

namespace MapAnchor {

struct ReferenceFormat;

/// GDAL's auxiliary file beside a raster, "scan.tif.aux.xml". A save leaves what else is in the
/// file, such as statistics. Failures are reported by exception.
class BRefAuxXml {
public:
    static void Read(const Tellurion::BString& file, const unsigned int& flags,
                     Tellurion::BGeoReference& reference, Tellurion::EMathTransformType mathType, long width,
                     long height);
    static void Write(const Tellurion::BString& file, const Tellurion::BGeoReference& reference);

    static ReferenceFormat Format();
};

}  // namespace MapAnchor

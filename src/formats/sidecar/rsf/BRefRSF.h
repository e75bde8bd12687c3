#pragma once

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BString.h>
#include <Tellurion/EMathTransformType.h>

namespace MapAnchor {

struct ReferenceFormat;

/// RSF files: named control points and, from version 3 on, a coordinate system.
/// Versions 1 to 4 are read, 4 is written. `width` and `height` are the raster's size
/// in pixels. The overloads without flags answer by bool; those with flags report by
/// exception.
class BRefRSF {
public:
    /// False for a file that is no usable RSF. Points without a fit, or a system that
    /// cannot be understood, are logged and leave the answer true.
    static bool Read(const Tellurion::BString& file, Tellurion::BGeoReference& reference,
                     Tellurion::EMathTransformType mathType, long width, long height);
    static void Read(const Tellurion::BString& file, const unsigned int& flags,
                     Tellurion::BGeoReference& reference, Tellurion::EMathTransformType mathType, long width,
                     long height);

    /// False, and an empty file, for a reference with neither points nor a transform.
    /// One that has a transform alone gives its four corners.
    static bool Write(const Tellurion::BString& file, const Tellurion::BGeoReference& reference, long width,
                      long height);
    static void Write(const Tellurion::BString& file, const unsigned int& flags,
                      const Tellurion::BGeoReference& reference, long width, long height);

    static ReferenceFormat Format();
};

}  // namespace MapAnchor

#pragma once

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BString.h>
#include <Tellurion/EMathTransformType.h>

namespace MapAnchor {

struct ReferenceFormat;

/// MapInfo TAB files that register a raster: control points and a CoordSys clause.
/// `width` and `height` are the raster's size in pixels, `imageName` its file name. The
/// overloads without flags answer by bool; those with flags report by exception.
class BRefTAB {
public:
    /// False for a file without both marks of a raster's TAB, or with neither points
    /// nor a system.
    static bool Read(const Tellurion::BString& file, Tellurion::BGeoReference& reference,
                     Tellurion::EMathTransformType mathType, long width, long height);
    /// A TAB without points is no failure.
    static void Read(const Tellurion::BString& file, const unsigned int& flags,
                     Tellurion::BGeoReference& reference, Tellurion::EMathTransformType mathType, long width,
                     long height);

    /// False, and an empty file, for a reference with neither points nor a transform.
    /// One that has a transform alone gives its four corners.
    static bool Write(const Tellurion::BString& file, const Tellurion::BGeoReference& reference, long width,
                      long height, const Tellurion::BString& imageName);
    static void Write(const Tellurion::BString& file, const unsigned int& flags,
                      const Tellurion::BGeoReference& reference, long width, long height,
                      const Tellurion::BString& imageName);

    static ReferenceFormat Format();
};

}  // namespace MapAnchor

#pragma once

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BString.h>
#include <Tellurion/EMathTransformType.h>

namespace MapAnchor {

struct ReferenceFormat;

/// The table of control points of QGIS's georeferencer, ".points". `width` and `height` are the
/// raster's size in pixels. Failures are reported by exception and name line and column.
///
/// The fit is through the points as the file has them; the reference holds whole pixels, and
/// ReadNotes::exact_points the fractions. A save has the fractions where ExactPoints has them.
class BRefPoints {
public:
    static void Read(const Tellurion::BString& file, const unsigned int& flags,
                     Tellurion::BGeoReference& reference, Tellurion::EMathTransformType mathType, long width,
                     long height);
    /// A reference that has a transform alone gives its four corners.
    static void Write(const Tellurion::BString& file, const unsigned int& flags,
                      const Tellurion::BGeoReference& reference, long width, long height);

    static ReferenceFormat Format();
};

}  // namespace MapAnchor

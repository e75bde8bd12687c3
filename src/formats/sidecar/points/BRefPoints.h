#pragma once

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BParamList.h>
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
    /// Keys of a save: how the table that the points came from names the system, which counts where
    /// that is the system of the reference; and, when it is not 0, that its columns are pixelX, pixelY.
    static constexpr const char* kSystem = "MAP_ANCHOR_POINTS_CRS";
    static constexpr const char* kOldHeader = "MAP_ANCHOR_POINTS_OLD_HEADER";

    /// A reference that has a transform alone gives its four corners. `params` may be null.
    static void Write(const Tellurion::BString& file, const unsigned int& flags,
                      const Tellurion::BGeoReference& reference, long width, long height,
                      const Tellurion::BParamList* params = nullptr);

    static ReferenceFormat Format();
};

}  // namespace MapAnchor

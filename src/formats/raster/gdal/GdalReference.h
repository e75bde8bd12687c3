#pragma once

#include "common/storing/Affine.h"
#include "raster/gdal/RasterKinds.h"

#include <Tellurion/BControlPoint.h>
#include <Tellurion/BLinearUnit.h>
#include <Tellurion/BPointPair.h>
#include <Tellurion/BSharedPtr.h>
#include <Tellurion/BString.h>

#include <optional>
#include <vector>

namespace MapAnchor {

/// The georeferencing of a raster, as GDAL reads it. Where the raster itself is
/// silent, the auxiliary file beside it speaks.
struct GdalReference {
    bool pixel_is_point = false;

    int point_count = 0;                                 ///< as stated; above 0 there are no terms
    std::vector<Tellurion::BPointPair> points;           ///< as listed
    std::vector<Tellurion::BControlPoint> exact_points;  ///< of an auxiliary file, with fractions

    std::optional<AffineTerms> terms;

    /// Texts of the coordinate system, to be tried in turn.
    std::vector<Tellurion::BString> well_known_texts;

    Tellurion::BSharedPtr<Tellurion::BLinearUnit> vertical_unit;
    Tellurion::BSharedPtr<Tellurion::BLinearUnit> auxiliary_vertical_unit;

    /// GDAL's GeoTIFF driver read it, and from no file but the raster itself. False where nobody
    /// listens to notes.
    bool is_lone_geotiff = false;

    bool PointsDiffer() const { return static_cast<std::size_t>(point_count) != points.size(); }
};

/// Opens the raster, takes what it says, and closes it; empty when no driver of these kinds
/// knows the file. Nothing is written, and GDAL prints nothing.
std::optional<GdalReference> ReadGdalReference(const Tellurion::BString& file, RasterKinds kinds,
                                               Sidecars sidecars = Sidecars::Shown);

/// The size in pixels, in the same way.
bool ReadRasterSize(const Tellurion::BString& file, long& width, long& height);

}  // namespace MapAnchor

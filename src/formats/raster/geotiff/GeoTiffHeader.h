#pragma once

#include "common/storing/Affine.h"

#include <Tellurion/BString.h>

#include <optional>
#include <string>
#include <vector>

namespace MapAnchor {

/// The part of a GeoTIFF's header that decides where GDAL places the raster. It interprets no
/// coordinate system: two files with the same key have the same one.
struct GeoTiffHeader {
    long width = 0;  ///< in pixels
    long height = 0;

    /// The bytes that decide GDAL's answer, but for the numbers of the transform: how the
    /// raster is stored, the geo keys, and the metadata without statistics.
    std::string key;
    /// Which tags the transform comes from, with the sign that moves it by half a pixel.
    std::string shape;

    bool is_point = false;          ///< positions are those of pixel centres
    std::vector<double> scale;      ///< ModelPixelScale: 3 numbers or none
    std::vector<double> tie_point;  ///< ModelTiepoint: 6 numbers or none
    std::vector<double> matrix;     ///< ModelTransformation: 16 numbers or none

    /// Empty for what is not a TIFF, and for one with anything unusual: values of other types,
    /// several control points, tags whose effect is not known, other images than overviews.
    static std::optional<GeoTiffHeader> Read(const Tellurion::BString& file);

    /// From the outer corner of the top left pixel, computed as GDAL does; empty without one.
    std::optional<AffineTerms> Terms() const;
};

}  // namespace MapAnchor

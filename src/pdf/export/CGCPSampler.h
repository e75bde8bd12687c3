#pragma once

#include "objects/CPDFPathPoint.h"

#include <cstdint>
#include <vector>

namespace VellumLib {

/// Finds four control points that stand for a transform: the corners of a small box
/// in the middle of the raster or, where that box is rejected, of one beside it.
/// Only x and y of a point are used; pixels are columns and rows.
class CGCPSampler {
public:
    virtual ~CGCPSampler();

    /// `first` and `second` are opposite corners of the raster, in pixels. True when
    /// both lists hold four points; else both are empty. Order: across the diagonal
    /// first, (x, y), (x + w, y + h), then (x, y + h), (x + w, y).
    bool Sample(const CPDFPathPoint& first, const CPDFPathPoint& second);

    const std::vector<CPDFPathPoint>& GetPixelPoints() const { return pixel_points_; }
    const std::vector<CPDFPathPoint>& GetWorldPoints() const { return world_points_; }

protected:
    virtual CPDFPathPoint PixelToWorld(const CPDFPathPoint& pixel) = 0;
    /// True when the present points will not do. Accepts any here.
    virtual bool RejectBox();

    std::int32_t RasterHeight() const { return raster_height_; }
    std::int32_t RasterWidth() const { return raster_width_; }

private:
    bool TryBox(std::int64_t x, std::int64_t y, std::int64_t width, std::int64_t height);

    std::int32_t raster_height_ = 0;
    std::int32_t raster_width_ = 0;
    std::vector<CPDFPathPoint> pixel_points_;
    std::vector<CPDFPathPoint> world_points_;
    double box_fraction_ = 0.2;  ///< the size of a box as a part of the raster's
};

}  // namespace VellumLib

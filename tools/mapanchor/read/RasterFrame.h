#pragma once

#include "read/Conversion.h"
#include "read/ReadFile.h"

#include <optional>

namespace Tool {

/// The outer edges of a raster, in the pixels that its reference's transform counts.
struct RasterFrame {
    double left = 0.0;
    double top = 0.0;
    double right = 0.0;
    double bottom = 0.0;

    /// The place at fractions of the way from left to right and from top to bottom.
    Position At(double across, double down) const {
        return {left + across * (right - left), top + down * (bottom - top)};
    }
    bool Contains(const Position& pixel) const {
        return pixel.x >= left && pixel.x <= right && pixel.y >= top && pixel.y <= bottom;
    }
};

/// Of a raster of that size, by the pixel anchor of what was read.
RasterFrame FrameOf(const ReadResult& result, long width, long height);
/// Of the raster or, while its size is not known, of the control points; then a remark
/// says so. Empty when there are none either.
std::optional<RasterFrame> FrameOf(ReadResult& result);

/// The world position of a pixel; empty where the transform has none.
std::optional<Position> WorldAt(const ReadResult& result, const Position& pixel);
/// The pixel of a world position.
std::optional<Position> PixelAt(const ReadResult& result, const Position& world);

}  // namespace Tool

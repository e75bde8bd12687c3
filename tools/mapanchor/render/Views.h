#pragma once

#include "read/RasterFrame.h"
#include "render/Footprint.h"
#include "render/Panel.h"
#include "render/Svg.h"

#include <optional>
#include <string>
#include <vector>

namespace Tool {

/// The parts of a preview. Each draws below `top` and answers how high it is.

constexpr double kMargin = 20.0;
constexpr double kViewWidth = 720.0;
constexpr double kViewHeight = 480.0;  ///< the most of a view
constexpr double kLine = 16.0;         ///< of text

/// What the parts draw.
struct PreviewSubject {
    const ReadResult& result;
    std::optional<RasterFrame> frame;
    std::optional<Footprint> footprint;
    std::string thumbnail;  ///< the bytes of a PNG file; may be empty

    /// The longitude and latitude of a pixel; empty where there is none.
    std::optional<Position> PlaceAt(const Position& pixel) const;
    std::optional<Conversion> to_place;
};

/// How far the transform puts a control point from its pixel.
struct Miss {
    Position pixel;
    Position off;
    bool is_used = false;
    bool is_known = false;  ///< the transform has a pixel for it
    std::string name;
};
std::vector<Miss> MissesOf(const ReadResult& result);
double LargestOf(const std::vector<Miss>& misses);
/// Misses below it, in pixels, are rounding.
constexpr double kSmallMiss = 0.01;

/// The Earth in longitude and latitude, with the area of the raster on it, and beside it what
/// is known in words.
double DrawWorld(Svg& svg, double top, const PreviewSubject& subject);
/// The facts in words, from `left` to `right`; answers their height.
double DrawFacts(Svg& svg, double left, double right, double top, const PreviewSubject& subject);
/// The surroundings of the raster, true to scale, and its corners. Nothing for an area of the
/// size of a continent's.
double DrawSurroundings(Svg& svg, double top, const PreviewSubject& subject);
/// The raster's pixels with the control points, and how far the transform is from each.
double DrawRaster(Svg& svg, double top, const PreviewSubject& subject);
/// The page of a PDF with its boxes and maps.
double DrawPage(Svg& svg, double top, const MapAnchor::BGeoPDFPage& page);

}  // namespace Tool

#pragma once

#include "read/RasterFrame.h"
#include "render/Footprint.h"
#include "render/Svg.h"

namespace Tool {

/// The parts of a preview. Each draws below `top` and answers how high it is.

/// The Earth in longitude and latitude, with the area of the raster on it.
double DrawWorld(Svg& svg, double top, const std::optional<Footprint>& footprint);
/// The raster's frame with the control points, and how far the transform is from each.
double DrawRaster(Svg& svg, double top, const ReadResult& result, const RasterFrame& frame);
/// The page of a PDF with its boxes and maps.
double DrawPage(Svg& svg, double top, const MapAnchor::BGeoPDFPage& page);

constexpr double kMargin = 20.0;
constexpr double kViewWidth = 720.0;
constexpr double kViewHeight = 480.0;  ///< the most of a view
constexpr double kLine = 16.0;         ///< of text

}  // namespace Tool

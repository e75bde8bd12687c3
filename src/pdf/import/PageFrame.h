#pragma once

#include "common/storing/Affine.h"

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace MapAnchor {

/// The position of a pixel; rows count down from the top.
struct PagePixel {
    std::int32_t column;
    std::int32_t row;
};

/// How the points of a page, which count up from the bottom, become the pixels of a
/// raster that shows one box of it.
class PageFrame {
public:
    /// Both boxes are left, bottom, right, top. `viewport` is the part of the page that
    /// the control points are in.
    PageFrame(const std::vector<double>& viewport, const std::vector<double>& shown, long width, long height);

    /// False for a box without extent, or with corners that are no numbers.
    bool HasExtent() const;

    /// The pixel corner next to a fraction of the viewport. Nothing is clipped; empty
    /// beyond what a column or row can count.
    std::optional<PagePixel> PixelAt(const std::pair<double, double>& fraction) const;

    /// The pixel-to-world terms of a page-to-world matrix of six terms. The matrix counts
    /// from the lower left of the box that is shown.
    AffineTerms AffineOf(const std::vector<double>& matrix) const;

private:
    double height_;
    double scale_x_;  ///< pixels a point
    double scale_y_;
    double offset_x_;  ///< of the viewport in the box that is shown, from the left
    double offset_y_;  ///< and from the top
    double viewport_width_;
    double viewport_height_;
    bool has_extent_;
};

}  // namespace MapAnchor

#pragma once

#include "common/storing/Affine.h"

#include <array>
#include <vector>

namespace MapAnchor {

/// Where the points of a page are in a raster that shows a box of it, turned by quarters
/// clockwise. Columns and rows are not rounded.
class ShownPage {
public:
    struct Pixel {
        double column;
        double row;
    };

    /// The box is left, bottom, right, top; it and the raster have an extent.
    ShownPage(const std::array<double, 4>& box, int degrees, long width, long height);

    Pixel PixelAt(double x, double y) const;
    /// The pixel-to-world terms of a page-to-world matrix of six terms.
    AffineTerms AffineOf(const std::vector<double>& matrix) const;

private:
    std::array<double, 4> box_;
    int degrees_;
    double width_;
    double height_;
};

}  // namespace MapAnchor

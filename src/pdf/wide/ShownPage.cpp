#include "wide/ShownPage.h"

namespace MapAnchor {
namespace {

/// A step along the page, as parts of the box from its left and its top edge.
struct Parts {
    double x;
    double y;
};

/// What a part of the page becomes in the raster, both counted from left and top.
Parts Turned(Parts page, int degrees) {
    switch (degrees) {
        case 90:
            return {1.0 - page.y, page.x};
        case 180:
            return {1.0 - page.x, 1.0 - page.y};
        case 270:
            return {page.y, 1.0 - page.x};
        default:
            return page;
    }
}

}  // namespace

ShownPage::ShownPage(const std::array<double, 4>& box, int degrees, long width, long height)
    : box_(box),
      degrees_(degrees),
      width_(static_cast<double>(width)),
      height_(static_cast<double>(height)) {}

ShownPage::Pixel ShownPage::PixelAt(double x, double y) const {
    const auto& [left, bottom, right, top] = box_;
    const Parts parts = Turned({(x - left) / (right - left), (top - y) / (top - bottom)}, degrees_);
    return {parts.x * width_, parts.y * height_};
}

AffineTerms ShownPage::AffineOf(const std::vector<double>& m) const {
    const double left = box_[0];
    const double top = box_[3];
    const double across = box_[2] - left;
    const double up = top - box_[1];
    constexpr int kFullTurn = 360;
    // The page's place of three corners of the raster: its origin, and the ends of its edges.
    const auto place = [&, back = (kFullTurn - degrees_) % kFullTurn](Parts raster) {
        const Parts parts = Turned(raster, back);
        return Parts{left + parts.x * across, top - parts.y * up};
    };
    const Parts origin = place({0.0, 0.0});
    const Parts right_end = place({1.0, 0.0});
    const Parts lower_end = place({0.0, 1.0});
    const auto change = [&](const Parts& end, double pixels) {
        const double x = (end.x - origin.x) / pixels;
        const double y = (end.y - origin.y) / pixels;
        return Parts{m[0] * x + m[2] * y, m[1] * x + m[3] * y};
    };
    const Parts column = change(right_end, width_);
    const Parts row = change(lower_end, height_);
    return {.a = column.x,
            .b = row.x,
            .c = m[0] * origin.x + m[2] * origin.y + m[4],
            .d = column.y,
            .e = row.y,
            .f = m[1] * origin.x + m[3] * origin.y + m[5]};
}

}  // namespace MapAnchor

#include "import/PageFrame.h"

#include <cmath>
#include <limits>

namespace MapAnchor {
namespace {

/// Empty for what 32 bits cannot count, numbers that are none among it.
std::optional<std::int32_t> Counted(double value) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (!(value >= Limits::min() && value <= Limits::max())) return std::nullopt;
    return static_cast<std::int32_t>(value);
}

bool IsExtent(double length) {
    return std::isfinite(length) && length != 0.0;
}

}  // namespace

PageFrame::PageFrame(const std::vector<double>& viewport, const std::vector<double>& shown, long width,
                     long height)
    : height_(static_cast<double>(height)),
      scale_x_(static_cast<double>(width) / (shown[2] - shown[0])),
      scale_y_(height_ / (shown[3] - shown[1])),
      offset_x_(viewport[0] - shown[0]),
      offset_y_(shown[3] - viewport[3]),
      viewport_width_(viewport[2] - viewport[0]),
      viewport_height_(viewport[3] - viewport[1]),
      has_extent_(IsExtent(shown[2] - shown[0]) && IsExtent(shown[3] - shown[1])) {}

bool PageFrame::HasExtent() const {
    return has_extent_;
}

// The order of the operations below is kept: half a pixel is added last.
std::optional<PagePixel> PageFrame::PixelAt(const std::pair<double, double>& fraction) const {
    const auto& [x, y] = fraction;
    const auto column = Counted(std::floor(scale_x_ * offset_x_ + viewport_width_ * x * scale_x_ + 0.5));
    const auto row =
        Counted(std::floor((1.0 - y) * viewport_height_ * scale_y_ + scale_y_ * offset_y_ + 0.5));
    if (!column || !row) return std::nullopt;
    return PagePixel{*column, *row};
}

/// c is divided by the horizontal scale and b by the vertical one: right for equal
/// scales, and kept so for others.
AffineTerms PageFrame::AffineOf(const std::vector<double>& matrix) const {
    const double a = matrix[0] / scale_x_;
    const double b = matrix[1] / scale_y_;
    const double c = matrix[2] / scale_x_;
    const double d = matrix[3] / scale_y_;
    return {.a = a,
            .b = c * -1.0,
            .c = height_ * c + a * 0.0 + matrix[4],
            .d = b,
            .e = d * -1.0,
            .f = matrix[5] + (height_ * d + b * 0.0)};
}

}  // namespace MapAnchor

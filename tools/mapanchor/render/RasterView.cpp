#include "render/Views.h"

#include <Tellurion/Numbers.h>

#include <algorithm>
#include <cmath>

namespace Tool {

using Tellurion::BPointPair;

namespace {

/// How far the transform puts a control point from its pixel.
struct Miss {
    Position pixel;
    Position off;
    bool is_used = false;
};

std::vector<Miss> MissesOf(const ReadResult& result) {
    std::vector<Miss> misses;
    for (const BPointPair& pair : result.reference.PointPairVector) {
        Miss miss{{static_cast<double>(pair.Column), static_cast<double>(pair.Row)}, {}, pair.Enabled};
        if (const auto there = PixelAt(result, {pair.World.x, pair.World.y}))
            miss.off = {there->x - miss.pixel.x, there->y - miss.pixel.y};
        misses.push_back(miss);
    }
    return misses;
}

double Largest(const std::vector<Miss>& misses) {
    double largest = 0.0;
    for (const Miss& miss : misses)
        largest = std::max(largest, std::hypot(miss.off.x, miss.off.y));
    return largest;
}

}  // namespace

double DrawRaster(Svg& svg, double top, const ReadResult& result, const RasterFrame& frame) {
    constexpr double kRadius = 3.0;
    constexpr double kLongestArrow = 60.0;
    constexpr double kNothing = 1e-9;
    const double width = frame.right - frame.left;
    const double height = frame.bottom - frame.top;
    const double scale = std::min(kViewWidth / width, kViewHeight / height);
    const auto at = [&](const Position& pixel) {
        return Position{kMargin + (pixel.x - frame.left) * scale,
                        top + kLine + (pixel.y - frame.top) * scale};
    };
    const std::vector<Miss> misses = MissesOf(result);
    const double largest = Largest(misses);
    const double stretch = largest > kNothing ? kLongestArrow / largest : 0.0;
    svg.Rectangle(at({frame.left, frame.top}), width * scale, height * scale, "raster");
    for (const Miss& miss : misses) {
        const Position point = at(miss.pixel);
        if (stretch > 0.0)
            svg.Line(point, {point.x + miss.off.x * stretch, point.y + miss.off.y * stretch}, "arrow");
        svg.Circle(point, kRadius, miss.is_used ? "point" : "unused");
    }
    std::string legend = std::to_string(misses.size()) + " control points";
    if (stretch > 0.0) legend += ", the longest arrow is " + Tellurion::PrintFixed(largest, 3) + " pixels";
    svg.Text({kMargin, top + kLine - 4}, legend, "label");
    return height * scale + 2 * kLine;
}

}  // namespace Tool

#include "render/Views.h"

#include <Tellurion/Numbers.h>

#include <algorithm>
#include <cmath>

namespace Tool {

using Tellurion::BPointPair;

namespace {

constexpr double kPointRadius = 3.0;
constexpr double kRim = 32.0;  ///< around the raster, for arrows that leave it

/// How much arrows are enlarged, so that the longest is seen well and none leaves the panel.
double StretchOf(const std::vector<Miss>& misses, const Panel& panel, const auto& at) {
    constexpr double kLongestArrow = 60.0;
    double stretch = kLongestArrow / LargestOf(misses);
    const auto limit = [&stretch](double room, double off) {
        if (std::fabs(off) > 0.0) stretch = std::min(stretch, room / std::fabs(off));
    };
    for (const Miss& miss : misses) {
        const Position point = at(miss.pixel);
        if (!miss.is_known || !panel.Contains(point)) continue;
        limit(miss.off.x > 0.0 ? panel.Right() - point.x : point.x - panel.left, miss.off.x);
        limit(miss.off.y > 0.0 ? panel.Bottom() - point.y : point.y - panel.top, miss.off.y);
    }
    return stretch;
}

std::string LegendOf(const std::vector<Miss>& misses, long drawn, bool has_arrows, double enlarged) {
    if (misses.empty()) return "The raster";
    std::string text = std::to_string(drawn) + " control points";
    const long outside = static_cast<long>(misses.size()) - drawn;
    if (outside > 0) text += " (" + std::to_string(outside) + " more are outside)";
    if (has_arrows)
        text += "; arrows, enlarged " + Tellurion::PrintFixed(enlarged, enlarged < 10.0 ? 1 : 0) +
                " times, lead to where the transform puts them (at most " +
                Tellurion::PrintFixed(LargestOf(misses), 3) + " pixels)";
    return text;
}

}  // namespace

std::vector<Miss> MissesOf(const ReadResult& result) {
    std::vector<Miss> misses;
    for (const BPointPair& pair : result.reference.PointPairVector) {
        Miss miss{{static_cast<double>(pair.Column), static_cast<double>(pair.Row)},
                  {},
                  pair.Enabled,
                  false,
                  pair.Name.StdStr()};
        if (const auto there = PixelAt(result, {pair.World.x, pair.World.y})) {
            miss.off = {there->x - miss.pixel.x, there->y - miss.pixel.y};
            miss.is_known = true;
        }
        misses.push_back(miss);
    }
    return misses;
}

double LargestOf(const std::vector<Miss>& misses) {
    double largest = 0.0;
    for (const Miss& miss : misses)
        largest = std::max(largest, std::hypot(miss.off.x, miss.off.y));
    return largest;
}

double DrawRaster(Svg& svg, double top, const PreviewSubject& subject) {
    constexpr std::size_t kMostNames = 40;
    const RasterFrame& frame = *subject.frame;
    const std::vector<Miss> misses = MissesOf(subject.result);
    const bool has_arrows = LargestOf(misses) >= kSmallMiss;
    const bool has_picture = !subject.thumbnail.empty();
    if (!has_picture && !has_arrows) return 0.0;
    const double rim = has_arrows ? kRim : 0.0;
    const double width = frame.right - frame.left;
    const double height = frame.bottom - frame.top;
    const double scale = std::min((kViewWidth - 2 * rim) / width, (kViewHeight - 2 * rim) / height);
    const Panel raster{kMargin + rim, top + kLine + rim, width * scale, height * scale};
    const Panel panel{raster.left - rim, raster.top - rim, raster.width + 2 * rim, raster.height + 2 * rim};
    const auto at = [&](const Position& pixel) {
        return Position{raster.left + (pixel.x - frame.left) * scale,
                        raster.top + (pixel.y - frame.top) * scale};
    };
    svg.Rectangle({raster.left, raster.top}, raster.width, raster.height, "raster");
    if (has_picture) svg.Picture({raster.left, raster.top}, raster.width, raster.height, subject.thumbnail);
    svg.Rectangle({raster.left, raster.top}, raster.width, raster.height, "edge");
    const double stretch = has_arrows ? StretchOf(misses, panel, at) : 0.0;
    long drawn = 0;
    Labels labels(svg);
    for (const Miss& miss : misses) {
        const Position point = at(miss.pixel);
        if (!panel.Contains(point)) continue;
        ++drawn;
        if (has_arrows && miss.is_known)
            svg.Arrow(point, {point.x + miss.off.x * stretch, point.y + miss.off.y * stretch});
        svg.Circle(point, kPointRadius, miss.is_used ? "point" : "unused");
        constexpr double kGap = 5.0;
        if (misses.size() <= kMostNames && !miss.name.empty())
            labels.Add({point.x + kGap, point.y - kGap}, FittedText(miss.name, 80.0), "label");
    }
    svg.Text({kMargin, top + kLine - 4},
             FittedText(LegendOf(misses, drawn, has_arrows, stretch / scale), kViewWidth), "fact");
    return panel.height + 2 * kLine;
}

}  // namespace Tool

#include "render/Outline.h"
#include "render/SurroundingsMap.h"
#include "render/Views.h"

#include <algorithm>
#include <cmath>

namespace Tool {

namespace {

constexpr double kHeight = 360.0;
/// The coast is good to some kilometres: a map that is less wide has none, but a map of the region beside it.
constexpr double kMinWidthWithCoast = 100.0;
constexpr double kRegion = 800.0;

struct Extent {
    Position least{1e9, 1e9};
    Position most{-1e9, -1e9};

    void Add(const Position& at) {
        least = {std::min(least.x, at.x), std::min(least.y, at.y)};
        most = {std::max(most.x, at.x), std::max(most.y, at.y)};
    }
    Position Middle() const { return {(least.x + most.x) / 2, (least.y + most.y) / 2}; }
    /// In kilometres, of a panel in which it leaves room for labels around it.
    double PanelWidth(const Panel& panel) const {
        constexpr double kShare = 0.5;
        const double width =
            std::max(most.x - least.x, (most.y - least.y) * panel.width / panel.height) / kShare;
        return width * kEarthRadius;
    }
};

/// The outline of the raster, and where the map has its middle.
struct Shown {
    std::vector<Position> outline;
    Position centre;
};

std::optional<Shown> ShownOf(const PreviewSubject& subject) {
    constexpr double kMostAngle = 60.0;
    if (!subject.footprint || !subject.frame) return std::nullopt;
    const auto centre = subject.PlaceAt(subject.frame->At(0.5, 0.5));
    if (!centre) return std::nullopt;
    Shown shown{TraceOutline(*subject.frame, [&](const Position& pixel) { return subject.PlaceAt(pixel); }),
                *centre};
    const Stereographic projection(*centre);
    for (const Position& place : shown.outline)
        if (!(projection.AngleTo(place) <= kMostAngle)) return std::nullopt;
    return shown;
}

void DrawCorners(SurroundingsMap& map, const PreviewSubject& subject) {
    const RasterFrame& frame = *subject.frame;
    bool is_first = true;
    for (const Position& corner : {frame.At(0, 0), frame.At(1, 0), frame.At(1, 1), frame.At(0, 1)}) {
        if (const auto place = subject.PlaceAt(corner)) map.DrawCorner(*place, is_first);
        is_first = false;
    }
}

}  // namespace

double DrawSurroundings(Svg& svg, double top, const PreviewSubject& subject) {
    const auto shown = ShownOf(subject);
    if (!shown) return 0.0;
    const Stereographic projection(shown->centre);
    Extent extent;
    for (const Position& place : shown->outline)
        extent.Add(projection.Forward(place));
    Panel panel{kMargin, top + kLine, kViewWidth, kHeight};
    const bool is_small = extent.PanelWidth(panel) < kMinWidthWithCoast;
    std::string legend =
        "The dot marks the upper left corner of the raster. Coast: Natural Earth 1:50 million";
    if (is_small) {
        constexpr double kGap = 16.0;
        panel.width = (kViewWidth - kGap) / 2;
        SurroundingsMap region(svg, panel, projection, extent.Middle(), kRegion);
        region.DrawLand(true);
        region.DrawGraticule();
        region.DrawRing();
        region.DrawScaleBar();
        region.DrawFrame();
        panel.left += panel.width + kGap;
        legend += ", too coarse for the map on the right";
    }
    svg.Text({kMargin, top + kLine - 4}, legend + ".", "fact");
    SurroundingsMap map(svg, panel, projection, extent.Middle(), extent.PanelWidth(panel));
    map.DrawLand(!is_small);
    map.DrawGraticule();
    map.DrawOutline(shown->outline);
    DrawCorners(map, subject);
    map.DrawScaleBar();
    map.DrawFrame();
    return kHeight + 2 * kLine;
}

}  // namespace Tool

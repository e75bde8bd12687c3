#include "render/Views.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace Tool {

using MapAnchor::BGeoPDFBox;
using MapAnchor::BGeoPDFMap;
using MapAnchor::BGeoPDFPage;

namespace {

/// Boxes of the same place, under all their names.
struct NamedBox {
    std::string name;
    BGeoPDFBox box;
    const char* style;
};

bool HasArea(const BGeoPDFBox& box) {
    return box.Present && std::isfinite(box.Right - box.Left) && std::isfinite(box.Top - box.Bottom) &&
           box.Right != box.Left && box.Top != box.Bottom;
}

void Extend(BGeoPDFBox& all, const BGeoPDFBox& box) {
    if (!HasArea(box)) return;
    const bool is_first = !all.Present;
    all.Left = is_first ? std::min(box.Left, box.Right) : std::min({all.Left, box.Left, box.Right});
    all.Right = is_first ? std::max(box.Left, box.Right) : std::max({all.Right, box.Left, box.Right});
    all.Bottom = is_first ? std::min(box.Bottom, box.Top) : std::min({all.Bottom, box.Bottom, box.Top});
    all.Top = is_first ? std::max(box.Bottom, box.Top) : std::max({all.Top, box.Bottom, box.Top});
    all.Present = true;
}

bool IsSame(const BGeoPDFBox& a, const BGeoPDFBox& b) {
    constexpr double kNear = 0.5;  // points
    const auto near = [](double x, double y) { return std::fabs(x - y) <= kNear; };
    return near(a.Left, b.Left) && near(a.Right, b.Right) && near(a.Top, b.Top) && near(a.Bottom, b.Bottom);
}

void AddBox(std::vector<NamedBox>& boxes, const std::string& name, const BGeoPDFBox& box, const char* style) {
    if (!HasArea(box)) return;
    const auto same = std::ranges::find_if(boxes, [&](const NamedBox& other) {
        return other.style != std::string("map") && IsSame(other.box, box);
    });
    if (same == boxes.end())
        boxes.push_back({name, box, style});
    else
        same->name += ", " + name;
}

std::vector<NamedBox> BoxesOf(const BGeoPDFPage& page) {
    std::vector<NamedBox> boxes;
    AddBox(boxes, "media", page.MediaBox, "raster");
    AddBox(boxes, "crop", page.CropBox, "box");
    AddBox(boxes, "bleed", page.BleedBox, "box");
    AddBox(boxes, "trim", page.TrimBox, "box");
    AddBox(boxes, "art", page.ArtBox, "box");
    for (const BGeoPDFMap& map : page.Maps)
        if (HasArea(map.Box))
            boxes.push_back(
                {map.Name.IsEmpty() ? "map" : map.Name.StdStr(), map.Box, map.InUse ? "area" : "map"});
    return boxes;
}

}  // namespace

double DrawPage(Svg& svg, double top, const BGeoPDFPage& page) {
    const std::vector<NamedBox> boxes = BoxesOf(page);
    BGeoPDFBox all;
    for (const NamedBox& box : boxes)
        Extend(all, box.box);
    if (!all.Present) return 0.0;
    const double scale = std::min(kViewWidth / (all.Right - all.Left), kViewHeight / (all.Top - all.Bottom));
    svg.Text({kMargin, top + kLine - 4}, "The page, its boxes and its maps; the red one is in use.", "fact");
    Labels labels(svg);
    for (const NamedBox& box : boxes) {
        const Position corner{kMargin + (std::min(box.box.Left, box.box.Right) - all.Left) * scale,
                              top + kLine + (all.Top - std::max(box.box.Bottom, box.box.Top)) * scale};
        const double width = std::fabs(box.box.Right - box.box.Left) * scale;
        svg.Rectangle(corner, width, std::fabs(box.box.Top - box.box.Bottom) * scale, box.style);
        constexpr double kMinLabel = 60.0;
        constexpr int kTries = 12;
        const std::string name = FittedText(box.name, std::max(width - 6, kMinLabel));
        for (int i = 0; i < kTries; ++i)
            if (labels.Add({corner.x + 3, corner.y + kLine - 4 + i * (kLine - 4)}, name, "label")) break;
    }
    return (all.Top - all.Bottom) * scale + 2 * kLine;
}

}  // namespace Tool

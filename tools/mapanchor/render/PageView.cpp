#include "render/Views.h"

#include <algorithm>
#include <cmath>

namespace Tool {

using MapAnchor::BGeoPDFBox;
using MapAnchor::BGeoPDFMap;
using MapAnchor::BGeoPDFPage;

namespace {

struct NamedBox {
    const char* name;
    const BGeoPDFBox* box;
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

}  // namespace

double DrawPage(Svg& svg, double top, const BGeoPDFPage& page) {
    const NamedBox boxes[] = {{"media", &page.MediaBox},
                              {"crop", &page.CropBox},
                              {"bleed", &page.BleedBox},
                              {"trim", &page.TrimBox},
                              {"art", &page.ArtBox}};
    BGeoPDFBox all;
    for (const NamedBox& box : boxes)
        Extend(all, *box.box);
    for (const BGeoPDFMap& map : page.Maps)
        Extend(all, map.Box);
    if (!all.Present) return 0.0;
    const double scale = std::min(kViewWidth / (all.Right - all.Left), kViewHeight / (all.Top - all.Bottom));
    const auto draw = [&](const BGeoPDFBox& box, const std::string& name, const char* style) {
        if (!HasArea(box)) return;
        const Position corner{kMargin + (std::min(box.Left, box.Right) - all.Left) * scale,
                              top + (all.Top - std::max(box.Bottom, box.Top)) * scale};
        svg.Rectangle(corner, std::fabs(box.Right - box.Left) * scale,
                      std::fabs(box.Top - box.Bottom) * scale, style);
        svg.Text({corner.x + 3, corner.y + kLine - 4}, name, "label");
    };
    for (const NamedBox& box : boxes)
        draw(*box.box, box.name, box.box == &page.MediaBox ? "raster" : "box");
    for (const BGeoPDFMap& map : page.Maps)
        draw(map.Box, map.Name.IsEmpty() ? "map" : map.Name.StdStr(), map.InUse ? "area" : "map");
    return (all.Top - all.Bottom) * scale + kLine;
}

}  // namespace Tool

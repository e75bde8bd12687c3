#include "render/PdfPageRenderer.h"

#include "render/PdfPageJson.h"
#include "render/TextRenderer.h"

#include <Tellurion/Numbers.h>

namespace Tool {

using MapAnchor::BGeoPDFBox;
using MapAnchor::BGeoPDFMap;
using MapAnchor::BGeoPDFPage;
using Tellurion::PrintShortest;

namespace {

std::string BoxText(const BGeoPDFBox& box) {
    if (!box.Present) return "-";
    return PrintShortest(box.Left) + " " + PrintShortest(box.Bottom) + " " + PrintShortest(box.Right) + " " +
           PrintShortest(box.Top);
}

std::string MapsText(const BGeoPDFPage& page, const Console& console) {
    std::vector<std::vector<std::string>> rows = {{"map", "box in points", "area", "system", "in use"}};
    for (const BGeoPDFMap& map : page.Maps) {
        const std::string system = map.CoordSys.IsEmpty() ? "-" : map.CoordSys.StdStr();
        rows.push_back({map.Name.IsEmpty() ? "-" : map.Name.StdStr(), BoxText(map.Box),
                        PrintShortest(map.Area), map.Fault.IsEmpty() ? system : map.Fault.StdStr(),
                        map.InUse ? "yes" : "no"});
    }
    return RenderTable(rows, console);
}

}  // namespace

std::string RenderPdfPage(const BGeoPDFPage& page, const Console& console) {
    std::string text =
        RenderLine("page",
                   std::string(WordFor(page.Dialect)) + " dialect, turned by " + std::to_string(page.Rotate) +
                       " degrees, unit " + PrintShortest(page.UserUnit) + "/72 inch",
                   console);
    for (const auto& [name, box] : BoxesOf(page))
        if (box.Present) text += RenderLine("", std::string(name) + " box " + BoxText(box), console);
    return page.Maps.empty() ? text : text + MapsText(page, console);
}

}  // namespace Tool

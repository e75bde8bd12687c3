#include "render/PdfPageRenderer.h"

#include "render/TextRenderer.h"

#include <Tellurion/Numbers.h>

#include <cmath>

namespace Tool {

using MapAnchor::BGeoPDFBox;
using MapAnchor::BGeoPDFMap;
using MapAnchor::BGeoPDFPage;
using Tellurion::PrintShortest;
using Json = nlohmann::ordered_json;

namespace {

const char* WordFor(BGeoPDFPage::EDialect dialect) {
    switch (dialect) {
        case BGeoPDFPage::EDialect::Measure:
            return "measure";
        case BGeoPDFPage::EDialect::LGIDict:
            return "LGIDict";
        default:
            return "none";
    }
}

std::string BoxText(const BGeoPDFBox& box) {
    if (!box.Present) return "-";
    return PrintShortest(box.Left) + " " + PrintShortest(box.Bottom) + " " + PrintShortest(box.Right) + " " +
           PrintShortest(box.Top);
}

struct NamedBox {
    const char* name;
    const BGeoPDFBox& box;
};

std::vector<NamedBox> BoxesOf(const BGeoPDFPage& page) {
    return {{"media", page.MediaBox},
            {"crop", page.CropBox},
            {"bleed", page.BleedBox},
            {"trim", page.TrimBox},
            {"art", page.ArtBox}};
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

Json BoxJson(const BGeoPDFBox& box) {
    return Json::array({box.Left, box.Bottom, box.Right, box.Top});
}

bool IsFinite(const BGeoPDFBox& box) {
    return box.Present && std::isfinite(box.Left) && std::isfinite(box.Bottom) && std::isfinite(box.Right) &&
           std::isfinite(box.Top);
}

Json MapJson(const BGeoPDFMap& map) {
    Json json = Json::object();
    if (!map.Name.IsEmpty()) json["name"] = map.Name.StdStr();
    if (IsFinite(map.Box)) json["box"] = BoxJson(map.Box);
    if (std::isfinite(map.Area)) json["area"] = map.Area;
    if (!map.CoordSys.IsEmpty()) json["coordSys"] = map.CoordSys.StdStr();
    json["inUse"] = map.InUse;
    if (!map.Fault.IsEmpty()) json["fault"] = map.Fault.StdStr();
    return json;
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

Json PdfPageJson(const BGeoPDFPage& page) {
    Json boxes = Json::object();
    for (const auto& [name, box] : BoxesOf(page))
        if (IsFinite(box)) boxes[name] = BoxJson(box);
    Json maps = Json::array();
    for (const BGeoPDFMap& map : page.Maps)
        maps.push_back(MapJson(map));
    return {{"dialect", WordFor(page.Dialect)},
            {"rotate", page.Rotate},
            {"userUnit", std::isfinite(page.UserUnit) ? page.UserUnit : 1.0},
            {"boxes", std::move(boxes)},
            {"maps", std::move(maps)}};
}

}  // namespace Tool

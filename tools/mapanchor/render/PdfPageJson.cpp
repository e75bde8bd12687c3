#include "render/PdfPageJson.h"

#include <cmath>

namespace Tool {

using MapAnchor::BGeoPDFBox;
using MapAnchor::BGeoPDFMap;
using MapAnchor::BGeoPDFPage;
using Json = nlohmann::ordered_json;

namespace {

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

std::vector<NamedBox> BoxesOf(const BGeoPDFPage& page) {
    return {{"media", page.MediaBox},
            {"crop", page.CropBox},
            {"bleed", page.BleedBox},
            {"trim", page.TrimBox},
            {"art", page.ArtBox}};
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

#include "PdfPage.h"

#include "TextRenderer.h"

#include <Tellurion/Numbers.h>

#include <algorithm>
#include <cmath>

using MapAnchor::BGeoPDFBox;
using MapAnchor::BGeoPDFMap;
using MapAnchor::BGeoPDFPage;
using Tellurion::BString;
using Tellurion::PrintShortest;
using Json = nlohmann::ordered_json;

namespace {

/// Empty for an extent that no raster has.
std::optional<long> Pixels(double points, double per_point) {
    constexpr double kMost = 0x7FFFFFFF;
    const double pixels = std::round(std::fabs(points) * per_point);
    if (!(pixels >= 1.0 && pixels <= kMost)) return std::nullopt;
    return static_cast<long>(pixels);
}

void SetSize(const BGeoPDFPage& page, const ReadOptions& options, ReadResult& result) {
    if (result.width) return;
    const BGeoPDFBox box = page.BoxForCropType(options.pdf_box);
    if (!box.Present) return;
    const double per_point = page.UserUnit * options.dpi / ReadOptions::kPointsPerInch;
    const auto width = Pixels(box.Right - box.Left, per_point);
    const auto height = Pixels(box.Top - box.Bottom, per_point);
    if (!width || !height) return;
    result.width = width;
    result.height = height;
}

std::string NameOf(const BGeoPDFMap& map) {
    return map.Name.IsEmpty() ? "without a name" : "\"" + map.Name.StdStr() + "\"";
}

void RemarkOnOtherMaps(const BGeoPDFPage& page, Diagnostics& diagnostics) {
    constexpr std::size_t kMostNamed = 5;
    std::string others;
    std::size_t count = 0;
    for (const BGeoPDFMap& map : page.Maps)
        if (!map.InUse && ++count <= kMostNamed) others += (others.empty() ? "" : ", ") + NameOf(map);
    if (count > kMostNamed) others += " and " + std::to_string(count - kMostNamed) + " more";
    if (count > 0) diagnostics.push_back({false, "the page has other maps, which are not read: " + others});
}

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

void LookAtPdfPage(const BString& file, const ReadOptions& options, ReadResult& result) {
    result.page = BGeoPDFPage::Describe(file);
    const BGeoPDFPage& page = *result.page;
    SetSize(page, options, result);
    if (page.Rotate != 0)
        result.diagnostics.push_back(
            {false, "the page is shown turned by " + std::to_string(page.Rotate) +
                        " degrees; the reference lies in the page as it is unturned"});
    RemarkOnOtherMaps(page, result.diagnostics);
}

Failure PdfFailure(const BGeoPDFPage& page) {
    Failure failure = CurrentFailure();
    const bool has_text = failure.type != "unknown";
    if (has_text || page.Fault.IsEmpty()) return failure;
    return {"PdfError", page.Fault.StdStr(), "", ""};
}

void ExplainPdfFailure(ReadResult& result) {
    if (!result.page->Explanation.IsEmpty())
        result.diagnostics.push_back({true, result.page->Explanation.StdStr()});
}

bool IsWithoutMap(const BGeoPDFPage& page) {
    return page.Loaded && page.Dialect == BGeoPDFPage::EDialect::None;
}

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

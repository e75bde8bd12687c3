#include "commands/Georeference.h"
#include "read/ReferenceFacts.h"
#include "read/Systems.h"
#include "render/JsonRenderer.h"
#include "render/TextRenderer.h"

#include <Tellurion/Numbers.h>
#include <Tellurion/Printable.h>

#include <cmath>

namespace Tool {

using namespace Tellurion;

namespace {

std::string Fixed(bool has, double value) {
    return has ? PrintFixed(value, 3) : "-";
}

void PutNumber(Json& object, const char* key, double value) {
    if (std::isfinite(value)) object[key] = value;
}

Json PointJson(const BControlPoint& point, const BFitResidual& residual) {
    Json json = {{"name", point.Name.StdStr()}, {"column", point.Column},     {"row", point.Row},
                 {"x", point.World.x},          {"y", point.World.y},         {"z", point.World.z},
                 {"enabled", point.Enabled},    {"suspect", residual.Suspect}};
    if (residual.HasResidual) {
        PutNumber(json, "dxPixels", residual.DxPixels);
        PutNumber(json, "dyPixels", residual.DyPixels);
        PutNumber(json, "residualPixels", residual.ResidualPixels);
    }
    if (residual.HasLeftOut) PutNumber(json, "leftOutPixels", residual.LeftOutPixels);
    return json;
}

void PutReport(const Georeferenced& made, Json& ours) {
    const BFitReport& report = *made.report;
    const EMathTransformType type = report.Transform.GetMathTransformType();
    Json transform = {{"type", static_cast<int>(type)}, {"name", WordFor(type)}};
    if (report.HasRmse) {
        PutNumber(transform, "rmsePixels", report.RmsePixels);
        PutNumber(transform, "maxPixels", report.MaxPixels);
    }
    if (report.HasRmseAdjusted) PutNumber(transform, "rmseAdjustedPixels", report.RmseAdjustedPixels);
    if (report.HasLeftOutRmse) PutNumber(transform, "leftOutRmsePixels", report.LeftOutRmsePixels);
    if (report.HasHullShare) PutNumber(transform, "hullShare", report.HullShare);
    transform["alternatives"] = Json::array();
    for (const BFitAlternative& alternative : made.alternatives) {
        Json json = {{"name", WordFor(alternative.Type)}, {"chosen", alternative.Chosen}};
        if (alternative.HasLeftOut) PutNumber(json, "leftOutRmsePixels", alternative.LeftOutRmsePixels);
        transform["alternatives"].push_back(std::move(json));
    }
    ours["transform"] = std::move(transform);
    ours["points"] = Json::array();
    for (std::size_t i = 0; i < made.points.size(); ++i)
        ours["points"].push_back(PointJson(made.points[i], report.Residuals[i]));
}

void PrintJson(const GeoreferenceOptions& options, const Georeferenced& made, const Console& console) {
    Json top = JsonAbout(options.image);
    Json ours = {{"schemaVersion", kSchemaVersion}, {"ok", made.result.Ok()}};
    if (made.result.failure) ours["error"] = RenderJson(*made.result.failure);
    if (made.result.width) top["size"] = {*made.result.width, *made.result.height};
    if (made.report) PutReport(made, ours);
    if (made.result.reference.HasCoordSys()) ours["coordSys"] = RenderJson(*made.result.reference.CoordSys);
    if (!made.written.empty()) ours["written"] = made.written;
    if (made.rounding) PutNumber(ours, "roundingPixels", *made.rounding);
    ours["diagnostics"] = RenderJson(made.result.diagnostics);
    top["mapanchor"] = std::move(ours);
    console.Print(ToText(top, options.convert.common));
}

std::string ReportText(const Georeferenced& made, const Console& console) {
    const BFitReport& report = *made.report;
    BString unit;
    if (made.result.reference.HasCoordSys())
        if (const auto units = made.result.reference.CoordSys->GetUnits()) unit = units->GetName();
    std::string text = RenderLine("fit",
                                  std::string(WordFor(report.Transform.GetMathTransformType())) +
                                      " through " + std::to_string(report.Used) + " points",
                                  console);
    text += RenderLine("shape", report.DescribeShape(unit).StdStr(), console);
    text += RenderLine("residuals",
                       "root mean square " + Fixed(report.HasRmse, report.RmsePixels) +
                           ", adjusted for degrees of freedom " +
                           Fixed(report.HasRmseAdjusted, report.RmseAdjustedPixels) + ", left out " +
                           Fixed(report.HasLeftOutRmse, report.LeftOutRmsePixels) + ", largest " +
                           Fixed(report.HasRmse, report.MaxPixels) + " pixels",
                       console);
    if (report.HasHullShare)
        text += RenderLine(
            "spread", "the points' hull covers " + PrintFixed(report.HullShare * 100, 1) + " % of the raster",
            console);
    std::vector<std::vector<std::string>> rows = {
        {"point", "pixel", "line", "x", "y", "dx", "dy", "residual", "left out", ""}};
    for (std::size_t i = 0; i < made.points.size(); ++i) {
        const BControlPoint& point = made.points[i];
        const BFitResidual& r = report.Residuals[i];
        rows.push_back({point.Name.StdStr(), PrintShortest(point.Column), PrintShortest(point.Row),
                        PrintShortest(point.World.x), PrintShortest(point.World.y),
                        Fixed(r.HasResidual, r.DxPixels), Fixed(r.HasResidual, r.DyPixels),
                        Fixed(r.HasResidual, r.ResidualPixels), Fixed(r.HasLeftOut, r.LeftOutPixels),
                        !point.Enabled ? "left out"
                        : r.Suspect    ? "suspect"
                                       : ""});
    }
    text += RenderTable(rows, console);
    rows = {{"fit", "left out", ""}};
    for (const BFitAlternative& alternative : made.alternatives)
        rows.push_back({WordFor(alternative.Type),
                        Fixed(alternative.HasLeftOut, alternative.LeftOutRmsePixels),
                        alternative.Chosen ? "the simplest that is not worse" : alternative.Reason.StdStr()});
    return text + RenderTable(rows, console);
}

}  // namespace

void PrintGeoreferenced(const GeoreferenceOptions& options, const Georeferenced& made,
                        const Console& console) {
    if (options.convert.common.json) return PrintJson(options, made, console);
    std::string text = console.Bold(options.image) + "\n";
    if (made.result.reference.HasCoordSys())
        text += RenderLine("system", NameOf(*made.result.reference.CoordSys), console);
    if (made.report) text += ReportText(made, console);
    for (const std::string& file : made.written)
        text += "wrote " + Printable(file) + "\n";
    if (made.report || !made.written.empty()) console.Print(text);
    TalkAbout(options.image, made.result.diagnostics, made.result.failure ? &*made.result.failure : nullptr,
              console);
}

}  // namespace Tool

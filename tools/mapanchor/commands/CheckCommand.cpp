#include "commands/Commands.h"
#include "commands/Tally.h"
#include "read/InputNames.h"
#include "read/ReadFile.h"
#include "read/ReadOptions.h"
#include "read/RemarkIds.h"
#include "read/Residuals.h"
#include "read/Systems.h"
#include "render/Footprint.h"
#include "render/JsonRenderer.h"
#include "terminal/CommonOptions.h"

#include <MapAnchor/BGeoPDFCheck.h>
#include <Tellurion/BException.h>
#include <Tellurion/Numbers.h>
#include <Tellurion/Printable.h>

#include <algorithm>
#include <memory>
#include <string_view>

namespace Tool {

namespace {

using Tellurion::BCoordSys;
using Tellurion::Printable;
using Tellurion::PrintShortest;

constexpr const char* kCheckDescription =
    "Check the georeferencing of each file against what it should be\n\n"
    "A file passes when it has a transform and meets all conditions of the options. Each fault\n"
    "is reported with a stable id: transform-missing, crs-missing, crs-mismatch, outside,\n"
    "extent-unknown, rmse-exceeded, rmse-unknown. The maps of a PDF are also compared with the\n"
    "standard, ISO 32000-2, on all pages.\n\n"
    "Examples:\n"
    "  mapanchor check --expect-crs EPSG:25832 map.tif\n"
    "  mapanchor check --within 5,47,16,55 --size 2000x1000 map.tfw\n"
    "  mapanchor check --within country.tif --max-rmse 0.5 --json *.tab";

struct CheckOptions {
    CommonOptions common;
    ReadOptions read;
    std::vector<std::string> files;
    bool nul_separated = false;
    std::string crs;
    std::string within;
    std::optional<double> max_rmse;
};

/// What the options ask, made ready once for all files.
struct Demands {
    std::unique_ptr<BCoordSys> system;
    std::optional<Footprint> area;
    std::optional<double> max_rmse;
};

std::optional<Footprint> ExpectedArea(const CheckOptions& options, LogCollector& log) {
    if (options.within.empty()) return std::nullopt;
    std::string_view rest = options.within;
    if (const auto s = NumbersIn(rest, 4); s.size() == 4 && rest.empty()) {
        if (auto area = FootprintOfBox(s[0], s[1], s[2], s[3])) return area;
        throw CLI::ValidationError("--within", "wants W,S,E,N in degrees, south below north");
    }
    ReadResult result = ReadFile(options.within, ReadOptions(), log);
    if (auto area = FootprintOf(result)) return area;
    const std::string why = result.failure ? result.failure->Text() : result.diagnostics.back().text;
    throw CLI::ValidationError("--within",
                               options.within + " is no box W,S,E,N and no file of an area: " + why);
}

class Judge {
public:
    Judge(const Demands& demands, ReadResult& result) : demands_(demands), result_(result) {}

    void Run() {
        for (Diagnostic& remark : result_.diagnostics)
            if (remark.id.empty()) remark.id = RemarkId::kReadRemark;
        if (!result_.reference.HasMathTransform())
            Complain(RemarkId::kTransformMissing, "there is no transform from pixels to positions");
        if (demands_.system) CheckSystem();
        if (demands_.area) CheckArea();
        if (demands_.max_rmse) CheckResiduals();
    }

private:
    void Complain(const char* id, const std::string& text) {
        result_.diagnostics.push_back({true, text, id});
    }

    void CheckSystem() {
        if (!result_.reference.HasCoordSys())
            return Complain(RemarkId::kCrsMissing,
                            "there is no coordinate system, " + NameOf(*demands_.system) + " is expected");
        const BCoordSys& system = *result_.reference.CoordSys;
        if (!IsSameSystem(system, *demands_.system))
            Complain(RemarkId::kCrsMismatch, "the coordinate system is " + NameOf(system) + ", " +
                                                 NameOf(*demands_.system) + " is expected");
    }

    void CheckArea() {
        const auto footprint = FootprintOf(result_);
        if (!footprint)
            Complain(RemarkId::kExtentUnknown, "the position of the raster cannot be determined");
        else if (!Contains(*demands_.area, *footprint))
            Complain(RemarkId::kOutside,
                     "the raster is not wholly within the area: west " + PrintShortest(footprint->west) +
                         ", south " + PrintShortest(footprint->south) + ", east " +
                         PrintShortest(footprint->east) + ", north " + PrintShortest(footprint->north));
    }

    void CheckResiduals() {
        const Residuals residuals = ComputeResiduals(result_);
        const auto& rmse = residuals.root_mean_square;
        if (!rmse)
            Complain(RemarkId::kRmseUnknown, "there are no control points to judge the transform by");
        else if (*rmse > *demands_.max_rmse)
            Complain(RemarkId::kRmseExceeded,
                     "the root mean square of the residuals is " + PrintShortest(*rmse) +
                         " pixels, more than " + PrintShortest(*demands_.max_rmse) +
                         (residuals.adjusted ? "; adjusted for degrees of freedom " +
                                                   Tellurion::PrintFixed(*residuals.adjusted, 3)
                                             : std::string()));
    }

    const Demands& demands_;
    ReadResult& result_;
};

/// What the standard says of the maps of a PDF, on all of its pages.
void CheckPdf(const Demands& demands, ReadResult& result) {
    // All maps are checked; only the demands are made on one of them.
    if (!demands.system && !demands.area && !demands.max_rmse)
        std::erase_if(result.diagnostics, [](const Diagnostic& remark) {
            return remark.id == "other-maps" || remark.id == "pdf-other-pages";
        });
    const auto findings = MapAnchor::BGeoPDFCheck::Of(Tellurion::BString(result.file));
    for (const MapAnchor::BDiagnostic& finding : findings) {
        const std::string id = finding.GetId().StdStr();
        if (result.failure && finding.GetPlace().IsEmpty()) continue;  // the file itself
        // The reading says so as well where it is its own map.
        std::erase_if(result.diagnostics, [&](const Diagnostic& known) {
            return known.id == id && known.text == finding.GetText().StdStr();
        });
        result.diagnostics.push_back(DiagnosticOf(finding));
    }
}

bool Passes(const ReadResult& result) {
    return result.Ok() && std::none_of(result.diagnostics.begin(), result.diagnostics.end(),
                                       [](const Diagnostic& remark) { return remark.is_error; });
}

ExitStatus StatusOf(const ReadResult& result) {
    return result.Ok() && !Passes(result) ? ExitStatus::Error : result.Status();
}

Json VerdictJson(const ReadResult& result) {
    Json ours = {{"schemaVersion", kSchemaVersion}, {"ok", result.Ok()}, {"passed", Passes(result)}};
    if (result.failure) ours["error"] = RenderJson(*result.failure);
    ours["diagnostics"] = RenderJson(result.diagnostics);
    Json top = JsonAbout(result.file);
    top["mapanchor"] = std::move(ours);
    return top;
}

std::string VerdictText(const ReadResult& result) {
    std::string text = Printable(result.file) + ": " + (Passes(result) ? "passes" : "fails") + "\n";
    if (result.failure) text += "  error: " + Printable(result.failure->Text()) + "\n";
    for (const Diagnostic& remark : result.diagnostics)
        text += std::string("  ") + remark.Severity() + ": " + Printable(remark.text) +
                (remark.place.empty() ? "" : " (" + Printable(remark.place) + ")") +
                (remark.id.empty() ? "" : " [" + remark.id + "]") + "\n";
    return text;
}

ExitStatus Run(const CheckOptions& options) {
    const Console console = options.common.MakeConsole();
    LogCollector log;
    const Demands demands{SystemOption("--expect-crs", options.crs), ExpectedArea(options, log),
                          options.max_rmse};
    Tally tally;
    ForEachInput(options.files, options.nul_separated, [&](const std::string& file) {
        ReadResult result = ReadFile(file, options.read, log);
        if (result.page) CheckPdf(demands, result);
        if (result.Ok()) Judge(demands, result).Run();
        tally.Count(StatusOf(result));
        console.Print(options.common.json ? ToText(VerdictJson(result), options.common)
                                          : VerdictText(result));
    });
    return tally.Status();
}

}  // namespace

void AddCheckCommand(CLI::App& app, ExitStatus& status) {
    auto options = std::make_shared<CheckOptions>();
    CLI::App* check = app.add_subcommand("check", kCheckDescription);
    AddInputNames(*check, "FILE", "Files to check", options->files, options->nul_separated);
    check
        ->add_option("--expect-crs", options->crs,
                     "Expected coordinate system, in any notation that crs reads")
        ->type_name("CRS");
    check
        ->add_option(
            "--within", options->within,
            "Area in degrees on WGS 84 (W above E crosses the antimeridian), or a georeferenced file")
        ->type_name("W,S,E,N");
    AddNumber(
        *check, "--max-rmse", [o = options.get()](double value) { o->max_rmse = value; }, {},
        "Largest allowed RMSE of the control points, in pixels")
        ->type_name("PX");
    options->read.AddTo(*check);
    options->common.AddTo(*check);
    check->callback([options, &status] { status = Run(*options); });
}

}  // namespace Tool

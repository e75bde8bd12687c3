#include "commands/Commands.h"
#include "commands/Convert.h"
#include "commands/Georeference.h"
#include "commands/GeoreferenceReport.h"
#include "read/Conversion.h"
#include "read/ImageName.h"
#include "read/ReferenceFacts.h"
#include "read/RemarkIds.h"
#include "read/Systems.h"
#include "terminal/TargetFile.h"

#include <MapAnchor/BControlPointFile.h>
#include <MapAnchor/BGdalAccess.h>
#include <MapAnchor/BGeoPDFPage.h>
#include <MapAnchor/BGeoPDFTraits.h>
#include <Tellurion/BException.h>
#include <Tellurion/BFileUtilities.h>
#include <Tellurion/Numbers.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <set>

namespace Tool {

using namespace Tellurion;
using MapAnchor::BControlPointFile;

namespace {

constexpr const char* kGeoreferenceDescription =
    "Georeference a raster or PDF from control points, with a report\n\n"
    "The left-out residual of a point is its distance from the fit through all other points. An\n"
    "outlier is marked as suspect. Nothing is written without -o.\n\n"
    "Examples:\n"
    "  mapanchor georeference scan.tif --gcps scan.points\n"
    "  mapanchor georeference scan.jpg --gcps clicks.csv --crs EPSG:25832 -o scan.jgw\n"
    "  mapanchor georeference scan.tif --gcps scan.points --drop P7 -o scan.tab\n"
    "  mapanchor georeference scan.tif --gcps scan.points --report scan.html\n"
    "  mapanchor georeference a.png --bounds 11,47,12,48 --crs EPSG:4326 -o a.pgw";

BControlPoint PointOf(const std::string& words) {
    constexpr std::size_t kNeeded = 4;
    std::string_view rest = words;
    const std::vector<double> numbers = NumbersIn(rest, kNeeded + 1);
    const auto finite = [](double value) { return std::isfinite(value); };
    if (numbers.size() < kNeeded || !std::all_of(numbers.begin(), numbers.end(), finite))
        throw CLI::ValidationError("--gcp", "wants PIXEL,LINE,X,Y[,Z[,NAME]], not " + words);
    BControlPoint point;
    point.Column = numbers[0];
    point.Row = numbers[1];
    point.World = {numbers[2], numbers[3], numbers.size() > kNeeded ? numbers[4] : 0.0};
    point.Name = BString(std::string(rest));
    return point;
}

/// The raster's size: as given, of the first page of a PDF, or as GDAL has it.
void FindSize(const GeoreferenceOptions& options, Georeferenced& made) {
    made.result.width = options.convert.read.width;
    made.result.height = options.convert.read.height;
    if (made.result.width) return;
    const BString image(options.image);
    long width = 0;
    long height = 0;
    const bool is_pdf = BFileUtilities::GetExtension(image).ToLower() == BString(".pdf");
    // The page as a save in place finds it: its points are of 1/72 inch, whatever its unit is.
    const bool is_known =
        is_pdf ? MapAnchor::BGeoPDFTraits::Of(image).DescribeTarget(image, 1).MediaBox.ToPixels(
                     options.convert.read.dpi, width, height)
               : MapAnchor::BGdalAccess::GetRasterSize(image, width, height);
    if (!is_known) return;
    made.result.width = width;
    made.result.height = height;
}

void ReadPoints(const GeoreferenceOptions& options, std::string& points_system, Georeferenced& made) {
    for (const std::string& words : options.gcps)
        made.points.push_back(PointOf(words));
    if (options.file.empty()) return;
    const auto file =
        BControlPointFile::Read(BString(options.file), BString(options.order), BString(options.points_crs));
    made.points.insert(made.points.end(), file.Points.begin(), file.Points.end());
    for (const BString& warning : file.Warnings)
        made.result.diagnostics.push_back({false, warning.StdStr(), RemarkId::kReadRemark});
    points_system = file.CoordSys.StdStr();
}

/// Points are named by their place where they have no name.
void NameAndDrop(const GeoreferenceOptions& options, Georeferenced& made) {
    std::set<std::string> unknown(options.drop.begin(), options.drop.end());
    for (std::size_t i = 0; i < made.points.size(); ++i) {
        BControlPoint& point = made.points[i];
        if (point.Name.IsEmpty()) point.Name = BString(std::to_string(i + 1));
        const std::string name = point.Name.StdStr();
        if (std::find(options.drop.begin(), options.drop.end(), name) == options.drop.end()) continue;
        point.Enabled = false;
        unknown.erase(name);
    }
    if (!unknown.empty()) throw CLI::ValidationError("--drop", "there is no point named " + *unknown.begin());
}

void ConvertPoints(const BCoordSys& from, const BCoordSys& to, Georeferenced& made) {
    if (IsSameSystem(from, to)) return;
    const Conversion conversion(from, to);
    for (BControlPoint& point : made.points) {
        const auto there = conversion.Convert({point.World.x, point.World.y});
        if (!there)
            throw BException(BString("mapanchor"),
                             BString("Point ") + point.Name + BString(" at ") +
                                 BString(PrintShortest(point.World.x) + ", " + PrintShortest(point.World.y)) +
                                 BString(" cannot be converted from ") + BString(NameOf(from)) +
                                 BString(" to ") + BString(NameOf(to)));
        point.World.x = there->x;
        point.World.y = there->y;
    }
}

void SetBounds(const std::vector<double>& sides, Georeferenced& made) {
    if (!made.result.width)
        throw CLI::ValidationError("--bounds", "the raster's size is not known: --size WxH gives it");
    const auto width = static_cast<double>(*made.result.width);
    const auto height = static_cast<double>(*made.result.height);
    const std::unique_ptr<BMathTransform> transform(BMathTransform::CreateAffine(
        (sides[2] - sides[0]) / width, 0, sides[0], 0, (sides[1] - sides[3]) / height, sides[3], true));
    if (!transform) throw CLI::ValidationError("--bounds", "the box has no area");
    made.result.reference.SetMathTransform(*transform);
}

void Fit(const GeoreferenceOptions& options, Georeferenced& made) {
    const auto width = static_cast<unsigned int>(made.result.width.value_or(0));
    const auto height = static_cast<unsigned int>(made.result.height.value_or(0));
    made.alternatives = BFitReport::Compare(made.points, width, height);
    const EMathTransformType type =
        options.fit ? *options.fit : BFitReport::Choose(made.alternatives, made.points);
    made.report = BFitReport::Make(type, made.points, width, height);
    made.result.reference.SetPointPairVectorAndMathTransform(BControlPoint::Round(made.points),
                                                             made.report->Transform);
    made.result.points = made.points;
}

void WarnOf(const GeoreferenceOptions& options, Georeferenced& made) {
    const BFitReport& report = *made.report;
    std::string names;
    for (std::size_t i = 0; i < made.points.size(); ++i)
        if (report.Residuals[i].Suspect) names += (names.empty() ? "" : ",") + made.points[i].Name.StdStr();
    auto& remarks = made.result.diagnostics;
    const std::string quote(names.find(' ') == std::string::npos ? "" : "\"");
    if (!names.empty())
        remarks.push_back(
            {false,
             "these points stand out: " + names + "; --drop " + quote + names + quote + " leaves them out",
             RemarkId::kSuspects});
    if (report.NearLine)
        remarks.push_back(
            {false, "the points are near a line: the fit is weak across it", RemarkId::kNearLine});
    if (options.max_rmse && report.RmsePixels > *options.max_rmse)
        made.result.failure = MakeFailure(FailureTypes::kTransform,
                                          "The root mean square of the residuals is " +
                                              PrintFixed(report.RmsePixels, 3) + " pixels, more than " +
                                              PrintShortest(*options.max_rmse) + "; nothing was saved.");
}

void SaveTo(const GeoreferenceOptions& options, LogCollector& log, Georeferenced& made) {
    ConvertOptions convert = options.convert;
    convert.source = options.file;
    convert.image = ImageNameFor(convert.target, options.image);
    Outcome outcome = SaveReading(convert, made.result, log);
    made.result.failure = outcome.failure;
    made.result.diagnostics = std::move(outcome.diagnostics);
    made.status = outcome.status;
    if (outcome.failure) return;
    made.written = outcome.plan.files;
    if (made.report && outcome.plan.format->HoldsPoints()) {
        convert.points = made.points;
        convert.read.width = made.result.width;
        convert.read.height = made.result.height;
        made.rounding = MapAnchor::BSaving::FindRounding(BString(convert.target), made.result.reference,
                                                         SavingOptionsOf(convert));
    }
    if (!made.result.diagnostics.empty()) made.status = ExitStatus::Warnings;
}

void Make(const GeoreferenceOptions& options, LogCollector& log, Georeferenced& made) {
    FindSize(options, made);
    std::string points_text = options.points_crs;
    ReadPoints(options, points_text, made);
    NameAndDrop(options, made);
    auto points_system = SystemOption("--points-crs", points_text);
    auto system = SystemOption("--crs", options.crs);
    if (system && points_system) ConvertPoints(*points_system, *system, made);
    if (!system) system = std::move(points_system);
    if (system)
        made.result.reference.SetCoordSys(BSharedPtr<BCoordSys>(system.release()));
    else
        made.result.diagnostics.push_back(
            {false, "the coordinate system is not known: --crs TEXT names it", RemarkId::kCrsMissing});
    if (!options.bounds.empty()) {
        SetBounds(options.bounds, made);
    } else {
        Fit(options, made);
        WarnOf(options, made);
    }
    made.status = made.result.failure               ? ExitStatus::Error
                  : made.result.diagnostics.empty() ? ExitStatus::Done
                                                    : ExitStatus::Warnings;
    if (!made.result.failure && !options.convert.target.empty()) SaveTo(options, log, made);
}

/// The page is there for a fit that is refused, too.
void WriteReport(const GeoreferenceOptions& options, Georeferenced& made) {
    if (options.report.empty() || !made.report) return;
    try {
        WriteWholeFile(options.report, RenderReportPage(options, made), options.convert.overwrite);
        made.written.push_back(options.report);
    } catch (const std::runtime_error& error) {
        if (!made.result.failure) made.result.failure = MakeFailure(FailureTypes::kWrite, error.what());
        made.status = ExitStatus::Error;
    }
}

ExitStatus Run(const GeoreferenceOptions& options) {
    const int ways = !options.bounds.empty() + (!options.file.empty() || !options.gcps.empty());
    if (ways != 1)
        throw CLI::ValidationError("georeference", "wants control points, by --gcps or --gcp, or --bounds");
    if (!options.report.empty() && !options.bounds.empty())
        throw CLI::ValidationError("--report", "shows residuals, which --bounds has not");
    const Console console = options.convert.common.MakeConsole();
    LogCollector log;
    Georeferenced made;
    made.result.file = options.image;
    try {
        if (!BFileUtilities::Exists(BString(options.image)) && !options.convert.read.width)
            throw BException(BString("mapanchor"),
                             BString("File <") + BString(options.image) +
                                 BString("> does NOT exist; --size WxH stands for it."));
        Make(options, log, made);
        WriteReport(options, made);
    } catch (const BException&) {
        made.result.failure = CurrentFailure();
        made.status = ExitStatus::Error;
    }
    PrintGeoreferenced(options, made, console);
    return made.status;
}

void AddPointOptions(CLI::App& command, GeoreferenceOptions& options) {
    command
        .add_option("--gcps", options.file, "Control points: QGIS points, CSV, GeoJSON, IIIF, GDAL, RSF, TAB")
        ->type_name("FILE");
    command.add_option("--gcp", options.gcps, "One control point; may be repeated")
        ->type_name("PIXEL,LINE,X,Y[,Z[,NAME]]")
        ->allow_extra_args(false)
        ->take_all();
    command.add_option("--order", options.order, "Columns of a table without header, such as pixel,line,x,y")
        ->type_name("COLUMNS");
    command.add_option("--drop", options.drop, "Leave out these points")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->type_name("NAME,...");
    command
        .add_option("--points-crs", options.points_crs,
                    "Coordinate system of the points, if it differs from --crs")
        ->type_name("CRS");
    command.add_option("--crs", options.crs, "Coordinate system of the result")->type_name("CRS");
    command
        .add_option_function<std::string>(
            "--bounds",
            [&options](const std::string& text) {
                std::string_view rest = text;
                options.bounds = NumbersIn(rest, 4);
                if (options.bounds.size() != 4 || !rest.empty())
                    throw CLI::ValidationError("--bounds", "wants W,S,E,N");
            },
            "Outer edges of the raster, instead of points")
        ->type_name("W,S,E,N");
}

}  // namespace

void AddGeoreferenceCommand(CLI::App& app, ExitStatus& status) {
    auto options = std::make_shared<GeoreferenceOptions>();
    CLI::App* command = app.add_subcommand("georeference", kGeoreferenceDescription);
    command->add_option("FILE", options->image, "Raster or PDF to georeference")->required();
    AddPointOptions(*command, *options);
    command
        ->add_option_function<std::string>(
            "--fit",
            [o = options.get()](const std::string& word) {
                if (word != "auto") o->fit = FitFromWord(word);
            },
            "Transform to fit: auto, affine, conformal, poly2, poly3, projective, tps")
        ->check(CLI::IsMember({"auto", "affine", "conformal", "poly2", "poly3", "projective", "tps"}))
        ->type_name("FIT");
    AddNumber(
        *command, "--max-rmse", [o = options.get()](double value) { o->max_rmse = value; }, {},
        "Save nothing if the RMSE of the control points is larger, in pixels")
        ->type_name("PX");
    command->add_option("-o,--output", options->convert.target, "File to save; its extension names the kind")
        ->type_name("FILE");
    command->add_option("--report", options->report, "Write the report as a web page")->type_name("FILE");
    command->add_flag("--overwrite", options->convert.overwrite,
                      "Replace existing files; georeference a raster or a PDF in place");
    options->convert.read.AddSizeTo(*command, "Size of the raster in pixels");
    options->convert.common.AddTo(*command);
    command->callback([options, &status] { status = Run(*options); });
}

}  // namespace Tool

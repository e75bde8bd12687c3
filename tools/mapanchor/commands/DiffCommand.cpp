#include "commands/Commands.h"
#include "read/RasterFrame.h"
#include "read/ReadFile.h"
#include "read/ReadOptions.h"
#include "read/RemarkIds.h"
#include "read/Systems.h"
#include "render/JsonRenderer.h"
#include "render/TextRenderer.h"
#include "terminal/CommonOptions.h"

#include <Tellurion/BUnit.h>
#include <Tellurion/Numbers.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace Tool {

namespace {

using Tellurion::BCoordSys;
using Tellurion::PrintFixed;
using Tellurion::PrintShortest;

constexpr const char* kDescription =
    "Measure the distance between two references of one raster\n\n"
    "The distance is measured at the corners and the centre, in pixels and map units of A. B is\n"
    "transformed if its coordinate system differs. Rasters of different sizes are compared at\n"
    "the same relative positions.\n\n"
    "Examples:\n"
    "  mapanchor diff map.tfw map.tab --size 2000x1000\n"
    "  mapanchor diff --max-pixels 0.1 map.tif map.pdf";

struct DiffOptions {
    CommonOptions common;
    ReadOptions read;
    std::string first;
    std::string second;
    std::optional<double> max_pixels;
};

struct Place {
    const char* name;
    double across;
    double down;
};

constexpr Place kPlaces[] = {{"upper left", 0, 0},
                             {"upper right", 1, 0},
                             {"lower right", 1, 1},
                             {"lower left", 0, 1},
                             {"centre", 0.5, 0.5}};

/// How far the second reference puts a place from where the first one does.
struct Distance {
    const char* place = "";
    Position pixel;  ///< of the first raster, as its transform counts
    Position world;  ///< by the first reference
    double dx = 0.0;
    double dy = 0.0;
    std::optional<double> pixels;

    double Units() const { return std::hypot(dx, dy); }
};

struct Comparison {
    std::vector<Distance> distances;
    std::string units;
    Diagnostics diagnostics;
    std::optional<Failure> failure;
    ExitStatus status = ExitStatus::Done;

    void Fail(ExitStatus with, const FailureType& type, const std::string& detail) {
        failure = MakeFailure(type, detail);
        status = with;
    }
    double MostUnits() const {
        double most = 0.0;
        for (const Distance& distance : distances)
            most = std::max(most, distance.Units());
        return most;
    }
    std::optional<double> MostPixels() const {
        std::optional<double> most;
        for (const Distance& distance : distances)
            if (distance.pixels) most = std::max(most.value_or(0.0), *distance.pixels);
        return most;
    }
};

bool IsUsable(const ReadResult& read, Comparison& comparison) {
    if (!read.Ok()) {
        comparison.failure = read.failure;
        comparison.status = read.Status();
    } else if (!read.reference.HasMathTransform()) {
        comparison.Fail(ExitStatus::NoReference, FailureTypes::kNoReference,
                        "File <" + read.file + "> has no transform.");
    }
    return !comparison.failure;
}

/// The way from the second system to the first; without one the numbers are compared.
std::optional<Conversion> WayBetween(const ReadResult& a, const ReadResult& b, Comparison& comparison) {
    if (a.reference.HasCoordSys() != b.reference.HasCoordSys())
        comparison.diagnostics.push_back(
            {false, "one of the two has no coordinate system: the other's is taken for it",
             RemarkId::kCrsMissing});
    if (!a.reference.HasCoordSys() || !b.reference.HasCoordSys()) return std::nullopt;
    const BCoordSys& to = *a.reference.CoordSys;
    const BCoordSys& from = *b.reference.CoordSys;
    if (IsSameSystem(to, from)) return std::nullopt;
    Conversion conversion(from, to);
    if (!conversion.IsPossible())
        comparison.Fail(ExitStatus::Error, FailureTypes::kCoordSys,
                        "No way leads from " + NameOf(from) + " to " + NameOf(to) + ".");
    return conversion;
}

/// Longitudes a turn apart are one.
double DifferenceInX(double a, double b, const ReadResult& first) {
    constexpr double kTurn = 360.0;
    const bool turns =
        first.reference.HasCoordSys() && first.reference.CoordSys->GetKind() == BCoordSys::kKindGeodetic &&
        first.reference.CoordSys->GetUnits() && !first.reference.CoordSys->GetUnits()->IsLinear();
    return turns ? std::remainder(b - a, kTurn * first.reference.CoordSys->GetUnits()->GetUnitsPerBase())
                 : b - a;
}

std::optional<Distance> Measure(const Place& place, const ReadResult& a, const RasterFrame& frame_a,
                                const ReadResult& b, const RasterFrame& frame_b,
                                const std::optional<Conversion>& way) {
    Distance distance;
    distance.place = place.name;
    distance.pixel = frame_a.At(place.across, place.down);
    const auto here = WorldAt(a, distance.pixel);
    auto there = WorldAt(b, frame_b.At(place.across, place.down));
    if (there && way) there = way->Convert(*there);
    if (!here || !there) return std::nullopt;
    distance.world = *here;
    distance.dx = DifferenceInX(here->x, there->x, a);
    distance.dy = there->y - here->y;
    if (const auto pixel = PixelAt(a, {here->x + distance.dx, there->y}))
        distance.pixels = std::hypot(pixel->x - distance.pixel.x, pixel->y - distance.pixel.y);
    return distance;
}

void ShareSize(ReadResult& a, ReadResult& b) {
    ReadResult& poor = a.width ? b : a;
    const ReadResult& rich = a.width ? a : b;
    if (poor.width) return;
    poor.width = rich.width;
    poor.height = rich.height;
}

void MeasureAll(ReadResult& a, ReadResult& b, Comparison& comparison) {
    ShareSize(a, b);
    const auto frame_a = FrameOf(a);
    const auto frame_b = a.width ? FrameOf(b) : frame_a;
    if (!frame_a || !frame_b)
        return comparison.Fail(ExitStatus::Error, FailureTypes::kNoReference,
                               "The raster's size is not known: --size WxH.");
    if (a.width != b.width || a.height != b.height)
        comparison.diagnostics.push_back({false,
                                          "the rasters differ in size: the same parts of them are compared",
                                          RemarkId::kSizeDiffers});
    const auto way = WayBetween(a, b, comparison);
    if (comparison.failure) return;
    for (const Place& place : kPlaces) {
        if (const auto distance = Measure(place, a, *frame_a, b, *frame_b, way))
            comparison.distances.push_back(*distance);
        else
            comparison.diagnostics.push_back(
                {false, std::string("one of the two has no position for the ") + place.name,
                 RemarkId::kNoPosition});
    }
    if (comparison.distances.empty())
        comparison.Fail(ExitStatus::Error, FailureTypes::kTransform,
                        "The references have no place in common.");
}

void Judge(const DiffOptions& options, Comparison& comparison) {
    const auto most = comparison.MostPixels();
    if (!options.max_pixels || comparison.failure || (most && *most <= *options.max_pixels)) return;
    comparison.diagnostics.push_back({true,
                                      (most ? "they are " + PrintShortest(*most) : "an unknown number of") +
                                          " pixels apart, more than " + PrintShortest(*options.max_pixels),
                                      RemarkId::kDistanceExceeded});
    comparison.status = ExitStatus::Error;
}

Comparison Compare(const DiffOptions& options, LogCollector& log) {
    Comparison comparison;
    ReadResult a = ReadFile(options.first, options.read, log);
    if (!IsUsable(a, comparison)) return comparison;
    ReadResult b = ReadFile(options.second, options.read, log);
    if (!IsUsable(b, comparison)) return comparison;
    if (a.reference.HasCoordSys())
        if (const auto unit = a.reference.CoordSys->GetUnits()) comparison.units = unit->GetName().StdStr();
    MeasureAll(a, b, comparison);
    for (const ReadResult* read : {&a, &b})
        for (const Diagnostic& remark : read->diagnostics) {
            comparison.diagnostics.push_back(remark);
            comparison.diagnostics.back().text = read->file + ": " + remark.text;
        }
    if (!comparison.failure && AreDoubtful(comparison.diagnostics)) comparison.status = ExitStatus::Warnings;
    Judge(options, comparison);
    return comparison;
}

Json DistanceJson(const Distance& distance) {
    Json json = {{"place", distance.place}, {"column", distance.pixel.x},  {"row", distance.pixel.y},
                 {"x", distance.world.x},   {"y", distance.world.y},       {"dx", distance.dx},
                 {"dy", distance.dy},       {"distance", distance.Units()}};
    if (distance.pixels) json["pixels"] = *distance.pixels;
    return json;
}

Json ComparisonJson(const DiffOptions& options, const Comparison& comparison) {
    Json ours = {
        {"schemaVersion", kSchemaVersion}, {"ok", !comparison.failure}, {"comparedWith", options.second}};
    if (comparison.failure) {
        ours["error"] = RenderJson(*comparison.failure);
    } else {
        Json list = Json::array();
        for (const Distance& distance : comparison.distances)
            list.push_back(DistanceJson(distance));
        Json largest = {{"distance", comparison.MostUnits()}};
        if (const auto pixels = comparison.MostPixels()) largest["pixels"] = *pixels;
        ours["distances"] = std::move(list);
        ours["largest"] = std::move(largest);
        if (!comparison.units.empty()) ours["units"] = comparison.units;
    }
    ours["diagnostics"] = RenderJson(comparison.diagnostics);
    Json top = JsonAbout(options.first);
    top["mapanchor"] = std::move(ours);
    return top;
}

std::string ComparisonText(const DiffOptions& options, const Comparison& comparison, const Console& console) {
    constexpr int kPixelDigits = 6;
    const std::string units = comparison.units.empty() ? "map units" : comparison.units;
    std::vector<std::vector<std::string>> rows = {{"place", "dx", "dy", "distance in " + units, "in pixels"}};
    for (const Distance& distance : comparison.distances)
        rows.push_back({distance.place, PrintShortest(distance.dx), PrintShortest(distance.dy),
                        PrintShortest(distance.Units()),
                        distance.pixels ? PrintFixed(*distance.pixels, kPixelDigits) : "-"});
    return console.Bold(options.first) + " to " + console.Bold(options.second) + "\n" +
           RenderTable(rows, console);
}

ExitStatus Run(const DiffOptions& options) {
    const Console console = options.common.MakeConsole();
    LogCollector log;
    const Comparison comparison = Compare(options, log);
    if (options.common.json) {
        console.Print(ToText(ComparisonJson(options, comparison), options.common));
        return comparison.status;
    }
    if (!comparison.failure) console.Print(ComparisonText(options, comparison, console));
    TalkAbout(options.first, comparison.diagnostics, comparison.failure ? &*comparison.failure : nullptr,
              console);
    return comparison.status;
}

}  // namespace

void AddDiffCommand(CLI::App& app, ExitStatus& status) {
    auto options = std::make_shared<DiffOptions>();
    CLI::App* diff = app.add_subcommand("diff", kDescription);
    diff->add_option("A", options->first, "Reference to measure from")->required();
    diff->add_option("B", options->second, "Reference to compare with it")->required();
    AddNumber(
        *diff, "--max-pixels", [o = options.get()](double value) { o->max_pixels = value; }, {},
        "Report a difference above this distance in pixels")
        ->type_name("PX");
    options->read.AddTo(*diff);
    options->common.AddTo(*diff);
    diff->callback([options, &status] { status = Run(*options); });
}

}  // namespace Tool

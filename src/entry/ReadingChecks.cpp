#include "ReadingSteps.h"

#include "ReferenceFormats.h"
#include "common/policy/DiagnosticIds.h"

#include <Tellurion/BFileUtilities.h>
#include <Tellurion/BLinearUnit.h>
#include <Tellurion/Numbers.h>
#include <Tellurion/UnitsPerDegree.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <string_view>

namespace MapAnchor {

using namespace Tellurion;

namespace {

bool IsGeodetic(const ReadingState& state) {
    return state.reference.HasCoordSys() && state.reference.CoordSys->GetKind() == BCoordSys::kKindGeodetic;
}

/// What the corners, or the control points, span on the map.
struct Span {
    double west = std::numeric_limits<double>::infinity();
    double south = west;
    double east = -west;
    double north = -west;

    void Add(double x, double y) {
        west = std::fmin(west, x);
        east = std::fmax(east, x);
        south = std::fmin(south, y);
        north = std::fmax(north, y);
    }
};

Span SpanOf(const ReadingState& state) {
    Span span;
    for (const BPointPair& pair : state.reference.PointPairVector)
        if (pair.Enabled) span.Add(pair.World.x, pair.World.y);
    if (!state.reference.HasMathTransform()) return span;
    const auto w = static_cast<double>(state.width);
    const auto h = static_cast<double>(state.height);
    for (const double row : {0.0, h})
        for (const double column : {0.0, w}) {
            double x = column;
            double y = row;
            if (state.reference.MathTransform->ConvertSourceToTarget(x, y)) span.Add(x, y);
        }
    return span;
}

void CheckGuess(ReadingState& state) {
    const ReferenceFormat* const row = state.kind;
    if (!row || !state.by_name || std::string_view(row->name) != "WLD" || state.used_file != state.file)
        return;
    const BString lower = BFileUtilities::GetExtension(state.file).ToLower();
    const auto& known = row->save_extensions;
    if (std::find(known.begin(), known.end(), lower.GetUnits()) != known.end()) return;
    state.Add({.id = DiagnosticId::kGuessedWorldFile,
               .text = "taken for a world file by its first six lines alone; --type wld says that it is one",
               .file = state.file});
}

void CheckDegrees(ReadingState& state) {
    if (!IsGeodetic(state)) return;
    // Grids often begin half a cell beyond the globe.
    constexpr double kPixelMore = 1.0;
    const BSharedPtr<BUnit> unit = state.reference.CoordSys->GetUnits();
    const double per_degree = UnitsPerDegree(unit);
    const double pole = 90.0 * per_degree;
    const double half_turn = 180.0 * per_degree;
    const Span span = SpanOf(state);
    if (span.south < -pole - kPixelMore || span.north > pole + kPixelMore ||
        span.west < -2 * half_turn - kPixelMore || span.east > 2 * half_turn + kPixelMore)
        return state.Add({.id = DiagnosticId::kDegreesOutOfRange,
                          .text = "a longitude or latitude is out of range: " + PrintShortest(span.west) +
                                  " to " + PrintShortest(span.east) + " and " + PrintShortest(span.south) +
                                  " to " + PrintShortest(span.north) + " " +
                                  (unit && !unit->IsLinear() ? unit->GetName().StdStr() : "degree") + "s",
                          .file = state.used_file});
    // Points on both sides of the antimeridian look as if the chart went around the Earth.
    const bool is_chart = state.kind && std::string_view(state.kind->name) == "KAP";
    if (is_chart && span.east - span.west > half_turn)
        state.Add({.id = DiagnosticId::kCrossesAntimeridian,
                   .text = "the chart crosses 180 degrees: its longitudes run from " +
                           PrintShortest(span.west) + " to " + PrintShortest(span.east) +
                           ", and the transform through them means nothing",
                   .file = state.used_file});
}

void CheckUnits(ReadingState& state) {
    constexpr double kNoMetre = 0.01;
    const BSharedPtr<BLinearUnit> heights = state.reference.GetVerticalUnit();
    if (!heights || !state.reference.HasCoordSys() || IsGeodetic(state)) return;
    const BSharedPtr<BUnit> unit = state.reference.CoordSys->GetUnits();
    if (!unit || !unit->IsLinear()) return;
    if (std::fabs(unit->GetUnitsPerBase() - heights->GetUnitsPerMeter()) < kNoMetre) return;
    state.Add({.id = DiagnosticId::kUnitsMixed,
               .severity = BDiagnostic::ESeverity::Note,
               .text = "positions are in " + unit->GetName().StdStr() + ", heights in " +
                       heights->GetName().StdStr(),
               .file = state.used_file});
}

void CheckTransform(ReadingState& state) {
    if (state.reference.HasMathTransform()) return;
    state.Add({.id = DiagnosticId::kTransformMissing,
               .text = state.reference.PointPairVector.empty()
                           ? "there is a coordinate system but no transform from pixels to positions"
                           : "no transform fits the control points",
               .file = state.used_file});
}

/// The scatter of the control points over the raster: the lengths of its two axes in pixels.
struct Scatter {
    std::size_t count = 0;
    double longer = 0.0;
    double shorter = 0.0;
    Span pixels;
};

Scatter ScatterOf(const std::vector<BPointPair>& pairs) {
    Scatter scatter;
    double x = 0, y = 0, xx = 0, xy = 0, yy = 0;
    for (const BPointPair& pair : pairs) {
        if (!pair.Enabled) continue;
        ++scatter.count;
        scatter.pixels.Add(pair.Column, pair.Row);
        x += pair.Column;
        y += pair.Row;
    }
    const auto n = static_cast<double>(std::max<std::size_t>(scatter.count, 1));
    for (const BPointPair& pair : pairs) {
        if (!pair.Enabled) continue;
        const double dx = pair.Column - x / n;
        const double dy = pair.Row - y / n;
        xx += dx * dx / n;
        xy += dx * dy / n;
        yy += dy * dy / n;
    }
    const double root = std::hypot((xx - yy) / 2, xy);
    scatter.longer = std::sqrt((xx + yy) / 2 + root);
    scatter.shorter = std::sqrt(std::fmax((xx + yy) / 2 - root, 0.0));
    return scatter;
}

void CheckPoints(ReadingState& state) {
    constexpr std::size_t kMinPoints = 3;
    constexpr double kThin = 0.02;
    constexpr double kLittle = 0.1;
    if (!state.reference.HasMathTransform() || state.reference.PointPairVector.empty()) return;
    const Scatter scatter = ScatterOf(state.reference.PointPairVector);
    if (scatter.count < kMinPoints) return;
    if (scatter.shorter < kThin * scatter.longer)
        state.Add({.id = DiagnosticId::kPointsNearLine,
                   .text = "the control points lie near a line, " + PrintFixed(scatter.shorter, 1) +
                           " px wide and " + PrintFixed(scatter.longer, 1) +
                           " px long; across it the transform is uncertain",
                   .file = state.used_file});
    // The map of a page is often a small part of it.
    if (state.page || state.width <= 0 || state.height <= 0) return;
    const double area =
        (scatter.pixels.east - scatter.pixels.west + 1) * (scatter.pixels.north - scatter.pixels.south + 1);
    const double part = area / (static_cast<double>(state.width) * static_cast<double>(state.height));
    if (part < kLittle)
        state.Add({.id = DiagnosticId::kPointsCoverLittle,
                   .text = "the control points cover " + PrintFixed(part * 100, 1) +
                           " % of the raster; far from them the transform is uncertain",
                   .file = state.used_file});
    if (scatter.pixels.west < -1 || scatter.pixels.south < -1 ||
        scatter.pixels.east > static_cast<double>(state.width) + 1 ||
        scatter.pixels.north > static_cast<double>(state.height) + 1)
        state.Add({.id = DiagnosticId::kPointsOutside,
                   .text = "control points lie outside the raster of " + std::to_string(state.width) +
                           " by " + std::to_string(state.height) + " pixels",
                   .file = state.used_file});
}

void CheckSize(ReadingState& state) {
    if (state.width <= 0 || state.stated_width <= 0) return;
    if (state.width == state.stated_width && state.height == state.stated_height) return;
    state.Add({.id = DiagnosticId::kRasterSizeDiffers,
               .text = "the file states a raster of " + std::to_string(state.stated_width) + " by " +
                       std::to_string(state.stated_height) + " pixels, the raster has " +
                       std::to_string(state.width) + " by " + std::to_string(state.height),
               .file = state.used_file});
}

}  // namespace

void CheckReading(const BReadingOptions& options, ReadingState& state) {
    if (!options.HasType()) CheckGuess(state);
    if (options.GetMathType() != EMathTransformType::None) CheckTransform(state);
    CheckDegrees(state);
    CheckUnits(state);
    CheckPoints(state);
    if (!state.page) CheckSize(state);
}

}  // namespace MapAnchor

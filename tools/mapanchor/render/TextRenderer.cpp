#include "render/TextRenderer.h"

#include "read/AffineOf.h"
#include "read/RasterFrame.h"
#include "read/ReferenceFacts.h"
#include "read/Residuals.h"
#include "read/Systems.h"
#include "render/PdfPageRenderer.h"
#include "render/RasterFacts.h"

#include <Tellurion/BLinearUnit.h>
#include <Tellurion/Numbers.h>
#include <Tellurion/Printable.h>
#include <Tellurion/TextPieces.h>

#include <algorithm>
#include <cmath>

namespace Tool {

using namespace Tellurion;

namespace {

/// For people; JSON has all digits.
std::string Number(double value) {
    return BString::Format("%.12g", value).StdStr();
}

/// Characters, not bytes: names align beyond ASCII too.
std::size_t Width(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

std::string Padded(const std::string& text, std::size_t width) {
    const std::size_t have = Width(text);
    return have < width ? text + std::string(width - have, ' ') : text;
}

std::string Line(const Console& console, const char* label, const std::string& text) {
    return RenderLine(label, text, console);
}

std::string SystemText(const BCoordSys& system) {
    std::string text = TitleOf(system);
    const std::string epsg = system.ToEPSGCode().StdStr();
    if (!epsg.empty()) text += ", " + epsg;
    text += std::string(", ") + WordForKind(system);
    const BSharedPtr<BUnit> unit = system.GetUnits();
    return unit ? text + ", in " + unit->GetName().StdStr() : text;
}

/// "2 * column - 0.5 * row + 100", without the terms that are 0.
std::string Sum(double by_column, double by_row, double constant) {
    std::string text;
    const auto add = [&text](double factor, const char* times) {
        if (factor == 0.0) return;
        const bool minus = std::signbit(factor);
        text += text.empty() ? (minus ? "-" : "") : (minus ? " - " : " + ");
        text += Number(std::fabs(factor)) + times;
    };
    add(by_column, " * column");
    add(by_row, " * row");
    add(constant, "");
    return text.empty() ? "0" : text;
}

std::string AffineText(const std::array<double, 6>& t, const Console& console) {
    return Line(console, "", "x = " + Sum(t[0], t[1], t[2])) +
           Line(console, "", "y = " + Sum(t[3], t[4], t[5]));
}

/// In map units and, where they are others, in longitude and latitude.
std::string CornerText(const ReadResult& result, const std::optional<Conversion>& degrees,
                       const Position& pixel) {
    constexpr int kDecimals = 7;  // a centimetre
    const auto world = WorldAt(result, pixel);
    if (!world) return "nowhere";
    const std::string text = RoundedText(world->x, result) + ", " + RoundedText(world->y, result);
    const auto place = degrees ? degrees->Convert(*world) : std::nullopt;
    if (!place) return text;
    return text + "  (longitude " + PrintFixed(place->x, kDecimals) + ", latitude " +
           PrintFixed(place->y, kDecimals) + ")";
}

/// Such positions need no longitude and latitude beside them.
bool CountsInDegrees(const ReadResult& result) {
    if (!result.reference.HasCoordSys()) return false;
    const auto unit = result.reference.CoordSys->GetUnits();
    constexpr double kRounded = 1e-12;
    return unit && !unit->IsLinear() && std::fabs(unit->GetUnitsPerBase() - 1.0) < kRounded;
}

std::string CornersText(const ReadResult& result, const Console& console) {
    if (!result.width) return {};
    const RasterFrame frame = FrameOf(result, *result.width, *result.height);
    const auto degrees = CountsInDegrees(result) ? std::nullopt : ToLongitudeLatitude(result);
    const auto corner = [&](double across, double down) {
        return CornerText(result, degrees, frame.At(across, down));
    };
    return Line(console, "corners", "upper left   " + corner(0, 0)) +
           Line(console, "", "upper right  " + corner(1, 0)) +
           Line(console, "", "lower right  " + corner(1, 1)) +
           Line(console, "", "lower left   " + corner(0, 1));
}

std::string PixelText(const ReadResult& result, const Console& console) {
    constexpr double kNoAngle = 1e-6;
    std::string text;
    // In degrees a pixel's width depends on where in the raster it is.
    const auto pixel = result.width ? PixelFactsOf(result) : std::nullopt;
    if (pixel)
        text +=
            Line(console, "pixel size",
                 BString::Format("%.6g by %.6g metres", pixel->width_metres, pixel->height_metres).StdStr());
    const auto rotation = RotationOf(result);
    if (rotation && std::fabs(*rotation) > kNoAngle)
        text +=
            Line(console, "rotation", BString::Format("%.6g degrees counterclockwise", *rotation).StdStr());
    return text;
}

std::string TransformText(const ReadResult& result, const Residuals& residuals, const Console& console) {
    const BMathTransform& transform = *result.reference.MathTransform;
    std::string what = WordFor(transform.GetMathTransformType());
    what += result.centre_anchored ? ", from the centre" : ", from the outer corner";
    std::string text = Line(console, "transform", what + " of the top left pixel");
    if (const auto affine = AffineOf(result.reference)) text += AffineText(*affine, console);
    if (residuals.root_mean_square)
        text += Line(console, "residuals",
                     "root mean square " + PrintFixed(*residuals.root_mean_square, 3) + ", largest " +
                         PrintFixed(*residuals.maximum, 3) + " pixels" +
                         (residuals.adjusted
                              ? "; adjusted for degrees of freedom " + PrintFixed(*residuals.adjusted, 3)
                              : std::string()));
    return text + PixelText(result, console) + CornersText(result, console);
}

using TableRow = std::vector<std::string>;

/// The rows are made twice, the first time for the widths of the columns, since millions of
/// them need many times the memory of what they show.
template <class RowAt>
void WriteTable(std::size_t count, RowAt row_at, const Console& console, TextPieces& out) {
    std::vector<std::size_t> widths(row_at(0).size(), 0);
    for (std::size_t i = 0; i < count; ++i) {
        const TableRow row = row_at(i);
        for (std::size_t column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], Width(Printable(row[column])));
    }
    for (std::size_t i = 0; i < count; ++i) {
        const TableRow row = row_at(i);
        std::string line = " ";
        for (std::size_t column = 0; column < row.size(); ++column) {
            line += " " + Padded(Printable(row[column]), widths[column]);
        }
        line.erase(line.find_last_not_of(' ') + 1);
        out.Text() += (i == 0 ? console.Bold(line) : line) + "\n";
        out.PassOn();
    }
}

void WritePoints(const Residuals& residuals, const Console& console, TextPieces& out) {
    const auto row_at = [&](std::size_t i) -> TableRow {
        if (i == 0) return {"point", "column", "row", "x", "y", "z", "residual", "used"};
        const BControlPoint& point = residuals.points[i - 1];
        const BFitResidual& residual = residuals.of_points[i - 1];
        return {point.Name.StdStr(),
                PrintShortest(point.Column),
                PrintShortest(point.Row),
                Number(point.World.x),
                Number(point.World.y),
                Number(point.World.z),
                residual.HasResidual ? PrintFixed(residual.ResidualPixels, 3) : "-",
                point.Enabled ? "yes" : "no"};
    };
    WriteTable(residuals.points.size() + 1, row_at, console, out);
}

void WriteOrigins(const ReadResult& result, const Console& console, TextPieces& out) {
    const auto row_at = [&](std::size_t i) -> TableRow {
        if (i == 0) return {"value", "written in", "at"};
        const auto& origin = result.origins[i - 1];
        return {origin.Value.StdStr(), origin.File.IsEmpty() ? "-" : origin.File.StdStr(),
                origin.Place.StdStr()};
    };
    WriteTable(result.origins.size() + 1, row_at, console, out);
}

const char* RoadText(Road road) {
    return road == Road::Name ? "by name" : "by type";
}

}  // namespace

std::string RenderLine(const char* label, const std::string& text, const Console& console) {
    constexpr std::size_t kLabelWidth = 12;
    return "  " + console.Dim(Padded(label, kLabelWidth)) + " " + Printable(text) + "\n";
}

std::string RenderTable(const std::vector<std::vector<std::string>>& rows, const Console& console) {
    std::string text;
    TextPieces out([&text](std::string_view piece) { text += piece; });
    WriteTable(
        rows.size(), [&rows](std::size_t i) { return rows[i]; }, console, out);
    out.Finish();
    return text;
}

void PrintReference(const ReadResult& result, const CommonOptions& common, const Console& console) {
    const BGeoReference& reference = result.reference;
    const Residuals residuals = ComputeResiduals(result);
    TextPieces out([&console](std::string_view piece) { console.Print(piece); });
    std::string& text = out.Text();
    text += console.Bold(result.file) + "\n";
    text += Line(console, "read as",
                 result.kind + ", " + RoadText(result.road) +
                     (result.used_file == result.file ? "" : ", from " + result.used_file));
    if (result.width)
        text += Line(console, "size",
                     std::to_string(*result.width) + " by " + std::to_string(*result.height) + " pixels");
    text += Line(console, "system", reference.HasCoordSys() ? SystemText(*reference.CoordSys) : "none");
    if (reference.HasMathTransform()) text += TransformText(result, residuals, console);
    if (const BSharedPtr<BLinearUnit> unit = reference.GetVerticalUnit())
        text += Line(console, "heights", "in " + unit->GetName().StdStr());
    if (reference.IsPixelAsPointRegistered()) text += Line(console, "pixels", "stand for points");
    if (!reference.PointPairVector.empty()) WritePoints(residuals, console, out);
    if (!result.origins.empty()) WriteOrigins(result, console, out);
    if (result.page) text += RenderPdfPage(*result.page, console);
    if (common.verbose && reference.HasCoordSys())
        text += Line(console, "text", reference.CoordSys->ToWKT().StdStr());
    out.Finish();
}

/// A diagnostic that explains a failure says more than the list of kinds.
static std::string RemedyFor(const Failure& failure, const Diagnostics& diagnostics) {
    const bool is_unknown = failure.type == FailureTypes::kUnsupportedFile.name;
    return is_unknown && diagnostics.empty() ? " mapanchor formats lists what is read." : "";
}

void TalkAbout(const std::string& file, const Diagnostics& diagnostics, const Failure* failure,
               const Console& console) {
    const std::string about = "mapanchor: " + (file.empty() ? "\"\"" : file) + ": ";
    if (failure) console.Complain(about + "error: " + failure->Text() + RemedyFor(*failure, diagnostics));
    for (const Diagnostic& diagnostic : diagnostics)
        console.Talk(about + diagnostic.Severity() + ": " + diagnostic.text +
                     (diagnostic.id.empty() ? "" : " [" + diagnostic.id + "]"));
}

}  // namespace Tool

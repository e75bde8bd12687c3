#include "SavingPdf.h"

#include "ReadingSteps.h"
#include "common/policy/DiagnosticIds.h"
#include "common/policy/DiagnosticParts.h"
#include "common/storing/Affine.h"

#include <MapAnchor/BGeoPDFPages.h>
#include <MapAnchor/BGeoPDFTraits.h>
#include <MapAnchor/BMapAnchor.h>
#include <MapAnchor/BReadParametersException.h>
#include <Tellurion/BException.h>
#include <Tellurion/Numbers.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>

namespace MapAnchor {

using namespace Tellurion;

namespace {

constexpr double kPointsPerInch = 72.0;
/// The longest edge of a viewport in points; the writer shrinks larger ones to it.
constexpr double kLongestEdge = 14400.0;
constexpr int kMediaBox = 5;

double WidthOf(const BGeoPDFBox& box) {
    return box.Right - box.Left;
}

double HeightOf(const BGeoPDFBox& box) {
    return box.Top - box.Bottom;
}

/// A raster on a page: points per pixel, and where its lower left corner is.
struct Raster {
    double scale = 1.0;
    double left = 0.0;
    double bottom = 0.0;
    long width = 0;
    long height = 0;
};

/// How a pixel of the finer raster becomes one of the raster: x / steps + offset.
struct Finer {
    double steps;
    double column_offset;
    double row_offset;
    long width;
    long height;

    double Column(double finer) const { return finer / steps + column_offset; }
    double Row(double finer) const { return finer / steps + row_offset; }
    double FinerColumn(double column) const { return (column - column_offset) * steps; }
    double FinerRow(double row) const { return (row - row_offset) * steps; }
};

bool AddsMap(const BParamList& params) {
    return params.GetInteger(BMapAnchor::kValPDFAdd, 0) != 0;
}

/// As fine as the numbers of a pixel allow.
Finer FinerOf(const Raster& raster) {
    constexpr double kMaxPixels = 1e9;
    constexpr double kSteps = 1000.0;
    const double columns = raster.left / raster.scale + static_cast<double>(raster.width);
    const double rows = raster.bottom / raster.scale + static_cast<double>(raster.height);
    const double steps = std::max(1.0, std::floor(std::min(kSteps, kMaxPixels / std::max(columns, rows))));
    const long width = std::lround(columns * steps);
    const long height = std::lround(rows * steps);
    // Rows count from the top, while the raster keeps its distance from the lower edge.
    const double below = raster.bottom / raster.scale;
    return {steps, -raster.left / raster.scale,
            static_cast<double>(raster.height) + below - static_cast<double>(height) / steps, width, height};
}

void Place(const Finer& finer, BGeoReference& reference) {
    for (BPointPair& pair : reference.PointPairVector) {
        pair.Column = static_cast<std::int32_t>(std::lround(finer.FinerColumn(pair.Column)));
        pair.Row = static_cast<std::int32_t>(std::lround(finer.FinerRow(pair.Row)));
    }
    if (!reference.HasMathTransform()) return;
    AffineTerms t;
    try {
        reference.MathTransform->GetAffineParameters(t.a, t.b, t.c, t.d, t.e, t.f);
    } catch (const BException&) {
        reference.MathTransform = {};  // points take its place; the writer says so where there are none
        return;
    }
    const std::unique_ptr<BMathTransform> transform(BMathTransform::CreateAffine(
        t.a / finer.steps, t.b / finer.steps, t.a * finer.column_offset + t.b * finer.row_offset + t.c,
        t.d / finer.steps, t.e / finer.steps, t.d * finer.column_offset + t.e * finer.row_offset + t.f,
        true));
    if (transform) reference.SetMathTransform(*transform);
}

std::string SizeText(double width, double height) {
    return PrintShortest(width) + " by " + PrintShortest(height) + " points";
}

void RemarkOnPage(const BString& file, const BGeoPDFPage& page, const BGeoPDFBox& box, const Raster& raster,
                  const BParamList& params, std::vector<BDiagnostic>& diagnostics) {
    const auto add = [&](const char* id, const std::string& text) {
        diagnostics.push_back(DiagnosticParts{.id = id, .text = BString(text), .file = file}.Make());
    };
    const double width = static_cast<double>(raster.width) * raster.scale;
    const double height = static_cast<double>(raster.height) * raster.scale;
    constexpr double kMillion = 1e6;
    const double shrunk = std::min(1.0, kLongestEdge / std::max(width, height));
    if (std::fabs(width * shrunk - WidthOf(box)) > raster.scale ||
        std::fabs(height * shrunk - HeightOf(box)) > raster.scale)
        add(DiagnosticId::kPageNotFilled,
            "the raster does not fill the page: it covers " + SizeText(width * shrunk, height * shrunk) +
                " at " + PrintShortest(std::round(kPointsPerInch / raster.scale * kMillion) / kMillion) +
                " dots per inch, the page has " + SizeText(WidthOf(box), HeightOf(box)));
    if (page.Rotate != 0)
        add(DiagnosticId::kPageRotated, "the page is shown turned by " + std::to_string(page.Rotate) +
                                            " degrees; the reference refers to the unrotated page");
    if (!page.Maps.empty() && !AddsMap(params))
        add(DiagnosticId::kMapReplaced, "the reference that the page has already is replaced");
}

Raster RasterOf(const BString& file, const BGeoPDFBox& box, const BSavingOptions& options) {
    Raster raster{.width = options.GetWidth(), .height = options.GetHeight()};
    const bool has_resolution = options.GetParams().HasProperty(BMapAnchor::kValPDFResolution);
    const double resolution = ResolutionOf(options.GetParams());
    if (has_resolution) raster.scale = kPointsPerInch / resolution;
    const bool has_size = raster.width > 0 && raster.height > 0;
    if (!has_size && (!has_resolution || !box.Present))
        throw BReadParametersException(
            BString("The size of the raster in <" + file.StdStr() +
                    "> is not known: give it in pixels, or the resolution of the page."));
    if (!has_size) {
        if (!box.ToPixels(resolution, raster.width, raster.height))
            throw BReadParametersException(BString("The page in <" + file.StdStr() + "> of " +
                                                   SizeText(WidthOf(box), HeightOf(box)) +
                                                   " makes no raster at the resolution: change it."));
    } else if (!has_resolution && box.Present) {
        raster.scale = WidthOf(box) / static_cast<double>(raster.width);
    }
    raster.left = box.Present ? box.Left : 0.0;
    raster.bottom = box.Present ? box.Bottom : 0.0;
    return raster;
}

/// True for a save that counts from the lower left corner of the media box, in points, instead of from
/// the origin of the page in its own units.
bool CountsFromMediaBox(const BParamList& params) {
    return params.GetInteger(BMapAnchor::kValPDFWide, 0) != 0 ||
           params.GetInteger(BMapAnchor::kValPDFIncremental, 0) != 0 || AddsMap(params) ||
           params.HasProperty(BMapAnchor::kValPDFFrame);
}

/// The page that is georeferenced, in the units of the save.
BGeoPDFPage PageOf(const BString& file, const BParamList& params) {
    if (!CountsFromMediaBox(params)) return BGeoPDFPage::Describe(file);
    return BGeoPDFTraits::Of(file).DescribeTarget(file, params.GetInteger(BMapAnchor::kValPDFPage, 1));
}

}  // namespace

PagePlacement PlaceOnPage(const BString& file, const BGeoReference& reference,
                          const BSavingOptions& options) {
    const BGeoPDFPage page = PageOf(file, options.GetParams());
    PagePlacement placed{reference, options, options, {}};
    if (!page.Loaded || page.Encrypted) return placed;  // the writer has its own words
    BGeoPDFBox box =
        page.BoxForCropType(options.GetParams().GetInteger(BMapAnchor::kValPDFCropType, kMediaBox));
    box.Present = box.Present && WidthOf(box) > 0.0 && HeightOf(box) > 0.0;
    Raster raster = RasterOf(file, box, options);
    if (CountsFromMediaBox(options.GetParams()) && page.MediaBox.Present) {
        raster.left -= page.MediaBox.Left;
        raster.bottom -= page.MediaBox.Bottom;
    }
    if (box.Present) RemarkOnPage(file, page, box, raster, options.GetParams(), placed.diagnostics);
    placed.read_options.SetSize(raster.width, raster.height);
    placed.options.SetSize(raster.width, raster.height);
    double resolution = kPointsPerInch / raster.scale;
    if (std::fabs(raster.left) > 1e-9 || std::fabs(raster.bottom) > 1e-9) {
        const Finer finer = FinerOf(raster);
        Place(finer, placed.reference);
        placed.options.SetSize(finer.width, finer.height);
        resolution *= finer.steps;
    }
    BParamList params = options.GetParams();
    params.SetDouble(BMapAnchor::kValPDFResolution, resolution);
    placed.options.SetParams(params);
    return placed;
}

}  // namespace MapAnchor

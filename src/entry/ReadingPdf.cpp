#include "ReadingSteps.h"

#include "common/DiagnosticIds.h"

#include <MapAnchor/BGeoReferenceReadException.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace MapAnchor {

using Tellurion::BString;

namespace {

constexpr double kPointsPerInch = 72.0;

/// Empty for an extent that no raster has.
std::optional<long> Pixels(double points, double per_point) {
    constexpr double kMaxPixels = 0x7FFFFFFF;
    const double pixels = std::round(std::fabs(points) * per_point);
    if (!(pixels >= 1.0 && pixels <= kMaxPixels)) return std::nullopt;
    return static_cast<long>(pixels);
}

void SetSize(const BReadingOptions& options, ReadingState& state) {
    if (state.width > 0) return;
    const BGeoPDFBox box = state.page->BoxForCropType(options.GetPdfBox());
    if (!box.Present) return;
    const double per_point = state.page->UserUnit * options.GetResolution() / kPointsPerInch;
    const auto width = Pixels(box.Right - box.Left, per_point);
    const auto height = Pixels(box.Top - box.Bottom, per_point);
    if (!width || !height) return;
    state.width = *width;
    state.height = *height;
}

std::string NameOf(const BGeoPDFMap& map) {
    return map.Name.IsEmpty() ? "without a name" : std::string("\"").append(map.Name.StdStr()).append("\"");
}

void RemarkOnOtherMaps(ReadingState& state) {
    constexpr std::size_t kMaxNamed = 5;
    std::string others;
    std::size_t count = 0;
    for (const BGeoPDFMap& map : state.page->Maps)
        if (!map.InUse && ++count <= kMaxNamed) others += (others.empty() ? "" : ", ") + NameOf(map);
    if (count > kMaxNamed) others += " and " + std::to_string(count - kMaxNamed) + " more";
    if (count == 0) return;
    state.Add({.id = DiagnosticId::kOtherMaps,
               .text = "the page has other maps, which are not read: " + others,
               .file = state.file});
}

}  // namespace

void DescribePdfPage(const BReadingOptions& options, ReadingState& state) {
    state.page = BGeoPDFPage::Describe(state.file);
    SetSize(options, state);
    if (state.page->Rotate != 0)
        state.Add({.id = DiagnosticId::kPageRotated,
                   .text = "the page is shown turned by " + std::to_string(state.page->Rotate) +
                           " degrees; the reference refers to the unrotated page",
                   .file = state.file,
                   .place = "/Rotate"});
    RemarkOnOtherMaps(state);
}

void FailByPdf(ReadingState& state) {
    state.failure = ReadingFailure::Current();
    const BGeoPDFPage& page = *state.page;
    if (state.failure->type == BString("unknown") && !page.Fault.IsEmpty())
        state.failure =
            ReadingFailure{"PdfError",
                           page.Fault,
                           {},
                           {},
                           std::make_exception_ptr(BGeoReferenceReadException("BReading::Of", page.Fault))};
    if (!page.Explanation.IsEmpty())
        state.Add({.id = DiagnosticId::kPdfRefused,
                   .severity = BDiagnostic::ESeverity::Error,
                   .text = page.Explanation,
                   .file = state.file});
}

}  // namespace MapAnchor

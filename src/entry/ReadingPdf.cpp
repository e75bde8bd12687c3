#include "ReadingSteps.h"

#include "common/policy/DiagnosticIds.h"

#include <MapAnchor/BGeoPDFPages.h>
#include <MapAnchor/BGeoReferenceReadException.h>
#include <MapAnchor/BMapAnchor.h>
#include <MapAnchor/BReadParametersException.h>

#include <algorithm>
#include <string>
#include <utility>

namespace MapAnchor {

using Tellurion::BParamList;
using Tellurion::BString;

namespace {

constexpr double kPointsPerInch = 72.0;

/// As viewers do it, a crop box counts as far as it is within the media box.
BGeoPDFBox Within(const BGeoPDFBox& box, const BGeoPDFBox& media) {
    const BGeoPDFBox part = {std::max(box.Left, media.Left), std::max(box.Bottom, media.Bottom),
                             std::min(box.Right, media.Right), std::min(box.Top, media.Top), true};
    return media.Present && part.Left < part.Right && part.Bottom < part.Top ? part : box;
}

void SetSize(const BReadingOptions& options, ReadingState& state) {
    if (state.width > 0) return;
    BGeoPDFBox box = state.page->BoxForCropType(options.GetPdfBox());
    if (options.IsPdfShown()) box = Within(box, state.page->MediaBox);
    const double per_inch = state.page->UserUnit * ResolutionOf(options.GetParams());
    if (!box.ToPixels(per_inch, state.width, state.height)) return;
    if (options.IsPdfShown() && state.page->Rotate % 180 != 0) std::swap(state.width, state.height);
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

/// The pages that have maps, but for the one that is read.
void RemarkOnOtherPages(int number, ReadingState& state) {
    constexpr std::size_t kMaxNamed = 10;
    std::string others;
    std::size_t count = 0;
    const BGeoPDFPages list = BGeoPDFPages::List(state.file);
    for (const auto& [other, page] : list.Pages) {
        if (other == number || page.Maps.empty() || ++count > kMaxNamed) continue;
        others += (others.empty() ? "" : ", ") + std::to_string(other);
        const BGeoPDFMap& first = page.Maps.front();
        if (!first.Name.IsEmpty()) others.append(" (").append(NameOf(first)).append(")");
    }
    if (count > kMaxNamed) others += " and " + std::to_string(count - kMaxNamed) + " more";
    if (count > 0)
        state.Add({.id = DiagnosticId::kPdfOtherPages,
                   .text = "other pages have maps, which --page reads: " + others,
                   .file = state.file});
}

}  // namespace

double ResolutionOf(const BParamList& params) {
    const double resolution = params.GetDouble(BMapAnchor::kValPDFResolution, kPointsPerInch);
    if (resolution >= BReadingOptions::kLeastResolution && resolution <= BReadingOptions::kMostResolution)
        return resolution;
    throw BReadParametersException(
        BString::Format("A page has no resolution of %g dots per inch: give one from %g to %g.", resolution,
                        BReadingOptions::kLeastResolution, BReadingOptions::kMostResolution));
}

void DescribePdfPage(const BReadingOptions& options, ReadingState& state) {
    ResolutionOf(options.GetParams());  // refused before the file is opened
    long pages = 1;
    if (options.IsPdfStrict()) {
        state.page = BGeoPDFPage::Describe(state.file);
    } else {
        const BParamList params = options.GetParams();
        const BGeoPDFPages described = BGeoPDFPages::Describe(state.file, &params);
        state.page = described.Pages.front().Page;
        pages = described.PageCount;
    }
    SetSize(options, state);
    if (options.ListsPdfPages() && !options.IsPdfStrict() && pages > 1)
        RemarkOnOtherPages(options.GetPdfPage(), state);
    if (state.page->Rotate != 0 && !options.IsPdfShown())
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

#include "read/PdfPage.h"

#include <MapAnchor/BGeoPDFPages.h>

#include <algorithm>
#include <cmath>
#include <utility>

using MapAnchor::BGeoPDFBox;
using MapAnchor::BGeoPDFMap;
using MapAnchor::BGeoPDFPage;
using MapAnchor::BGeoPDFPages;
using Tellurion::BString;

namespace {

/// Empty for an extent that no raster has.
std::optional<long> Pixels(double points, double per_point) {
    constexpr double kMost = 0x7FFFFFFF;
    const double pixels = std::round(std::fabs(points) * per_point);
    if (!(pixels >= 1.0 && pixels <= kMost)) return std::nullopt;
    return static_cast<long>(pixels);
}

/// As viewers do it, a crop box counts as far as it is within the media box.
BGeoPDFBox Within(const BGeoPDFBox& box, const BGeoPDFBox& media) {
    const BGeoPDFBox part = {std::max(box.Left, media.Left), std::max(box.Bottom, media.Bottom),
                             std::min(box.Right, media.Right), std::min(box.Top, media.Top), true};
    return media.Present && part.Left < part.Right && part.Bottom < part.Top ? part : box;
}

void SetSize(const BGeoPDFPage& page, const ReadOptions& options, ReadResult& result) {
    if (result.width) return;
    const int usual = options.pdf_shown ? ReadOptions::kCropBox : ReadOptions::kMediaBox;
    BGeoPDFBox box = page.BoxForCropType(options.pdf_box.value_or(usual));
    if (!box.Present) return;
    if (options.pdf_shown) box = Within(box, page.MediaBox);
    const double per_point = page.UserUnit * options.dpi / ReadOptions::kPointsPerInch;
    auto width = Pixels(box.Right - box.Left, per_point);
    auto height = Pixels(box.Top - box.Bottom, per_point);
    if (!width || !height) return;
    if (options.pdf_shown && page.Rotate % 180 != 0) std::swap(width, height);
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

/// The pages that have maps, but for the one that is read.
void RemarkOnOtherPages(const BString& file, int number, Diagnostics& diagnostics) {
    constexpr std::size_t kMostNamed = 10;
    std::string others;
    std::size_t count = 0;
    const BGeoPDFPages list = BGeoPDFPages::List(file);
    for (const auto& [other, page] : list.Pages) {
        if (other == number || ++count > kMostNamed) continue;
        others += (others.empty() ? "" : ", ") + std::to_string(other);
        const BGeoPDFMap& first = page.Maps.front();
        if (!first.Name.IsEmpty()) others.append(" (").append(NameOf(first)).append(")");
    }
    if (count > kMostNamed) others += " and " + std::to_string(count - kMostNamed) + " more";
    if (count > 0)
        diagnostics.push_back(
            {false, "other pages have maps, which --page reads: " + others, "pdf-other-pages"});
}

}  // namespace

void LookAtPdfPage(const BString& file, const ReadOptions& options, ReadResult& result) {
    long pages = 1;
    if (options.pdf_by_rules) {
        result.page = BGeoPDFPage::Describe(file);
    } else {
        const BGeoPDFPages described = BGeoPDFPages::Describe(file, &options.params);
        result.page = described.Pages.front().Page;
        pages = described.PageCount;
    }
    const BGeoPDFPage& page = *result.page;
    SetSize(page, options, result);
    if (page.Rotate != 0 && !options.pdf_shown)
        result.diagnostics.push_back(
            {false, "the page is shown turned by " + std::to_string(page.Rotate) +
                        " degrees; the reference lies in the page as it is unturned"});
    RemarkOnOtherMaps(page, result.diagnostics);
    if (options.pdf_list_pages && !options.pdf_by_rules && pages > 1)
        RemarkOnOtherPages(file, options.pdf_page, result.diagnostics);
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

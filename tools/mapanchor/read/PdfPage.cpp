#include "read/PdfPage.h"

#include <algorithm>
#include <cmath>

using MapAnchor::BGeoPDFBox;
using MapAnchor::BGeoPDFMap;
using MapAnchor::BGeoPDFPage;
using Tellurion::BString;

namespace {

/// Empty for an extent that no raster has.
std::optional<long> Pixels(double points, double per_point) {
    constexpr double kMost = 0x7FFFFFFF;
    const double pixels = std::round(std::fabs(points) * per_point);
    if (!(pixels >= 1.0 && pixels <= kMost)) return std::nullopt;
    return static_cast<long>(pixels);
}

void SetSize(const BGeoPDFPage& page, const ReadOptions& options, ReadResult& result) {
    if (result.width) return;
    const BGeoPDFBox box = page.BoxForCropType(options.pdf_box);
    if (!box.Present) return;
    const double per_point = page.UserUnit * options.dpi / ReadOptions::kPointsPerInch;
    const auto width = Pixels(box.Right - box.Left, per_point);
    const auto height = Pixels(box.Top - box.Bottom, per_point);
    if (!width || !height) return;
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

}  // namespace

void LookAtPdfPage(const BString& file, const ReadOptions& options, ReadResult& result) {
    result.page = BGeoPDFPage::Describe(file);
    const BGeoPDFPage& page = *result.page;
    SetSize(page, options, result);
    if (page.Rotate != 0)
        result.diagnostics.push_back(
            {false, "the page is shown turned by " + std::to_string(page.Rotate) +
                        " degrees; the reference lies in the page as it is unturned"});
    RemarkOnOtherMaps(page, result.diagnostics);
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

#include <MapAnchor/BGeoPDFPage.h>

#include "PdfFunctions.h"
#include "import/PageBoxes.h"

#include <cmath>

namespace MapAnchor {

bool BGeoPDFBox::ToPixels(double dotsPerInch, long& width, long& height) const {
    constexpr double kMaxPixels = 0x7FFFFFFF;
    constexpr double kPointsPerInch = 72.0;
    const double per_point = dotsPerInch / kPointsPerInch;
    const double columns = std::round(std::fabs(Right - Left) * per_point);
    const double rows = std::round(std::fabs(Top - Bottom) * per_point);
    const auto is_size = [](double pixels) { return pixels >= 1.0 && pixels <= kMaxPixels; };
    if (!Present || !is_size(columns) || !is_size(rows)) return false;
    width = static_cast<long>(columns);
    height = static_cast<long>(rows);
    return true;
}

BGeoPDFBox BGeoPDFPage::BoxForCropType(int cropType) const {
    const auto type = static_cast<PDFCropType>(cropType);
    if (type == PDFCropType::Art && ArtBox.Present && MediaBox.Present) return ArtBox;
    if (type == PDFCropType::Bleed && BleedBox.Present) return BleedBox;
    if (type == PDFCropType::Crop && CropBox.Present) return CropBox;
    return MediaBox;
}

BGeoPDFPage BGeoPDFPage::InPoints() const {
    BGeoPDFPage page = *this;
    for (BGeoPDFBox* box : {&page.MediaBox, &page.CropBox, &page.BleedBox, &page.TrimBox, &page.ArtBox})
        for (double* side : {&box->Left, &box->Bottom, &box->Right, &box->Top})
            *side *= UserUnit;
    page.UserUnit = 1.0;
    return page;
}

BGeoPDFPage BGeoPDFPage::Describe(const Tellurion::BString& file) {
    return DescribeFirstPage(file);
}

}  // namespace MapAnchor

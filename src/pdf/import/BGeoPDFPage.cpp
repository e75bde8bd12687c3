#include <MapAnchor/BGeoPDFPage.h>

#include "PdfFunctions.h"
#include "import/PageBoxes.h"

namespace MapAnchor {

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

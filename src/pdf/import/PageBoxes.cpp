#include "import/PageBoxes.h"

#include "objects/CPDFPage.h"

namespace MapAnchor {
namespace {

bool IsBox(const std::vector<double>& numbers) {
    return numbers.size() == 4;
}

}  // namespace

PageBoxes PageBoxes::Of(VellumLib::CPDFPage& page) {
    PageBoxes boxes;
    boxes.art = page.GetArtBox();
    boxes.trim = page.GetTrimBox();
    boxes.bleed = page.GetBleedBox();
    boxes.crop = page.GetCropBox();
    boxes.media = page.GetMediaBox();
    return boxes;
}

std::vector<double> PageBoxes::Shown(PDFCropType type) const {
    // An art box counts only beside a media box. The trim box never counts: hosts rely
    // on the media box there.
    if (type == PDFCropType::Art && IsBox(art) && IsBox(media)) return art;
    if (type == PDFCropType::Bleed && IsBox(bleed)) return bleed;
    if (type == PDFCropType::Crop && IsBox(crop)) return crop;
    return IsBox(media) ? media : std::vector<double>();
}

}  // namespace MapAnchor

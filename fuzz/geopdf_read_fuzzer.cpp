// Geospatial PDF files: any bytes through the typed read of the front door, lenient and
// strict, beyond the rules, and through the descriptions of the pages.

#include "PdfFuzz.h"

#include <MapAnchor/BGeoPDFPage.h>
#include <MapAnchor/BGeoPDFPages.h>

using namespace Tellurion;
using MapAnchor::BMapAnchor;

namespace {

void Read(const BString& file, unsigned int flags, int crop_type, bool wide = false) {
    BParamList params;
    params.SetInteger(BString(BMapAnchor::kValPDFWide), wide ? 1 : 0);
    params.SetInteger(BString(BMapAnchor::kValPDFCropType), crop_type);
    BGeoReference reference;
    fuzz::Survives([&] {
        BMapAnchor::Read(EReferenceType::GeoPDF, file, reference, fuzz::kWidth, fuzz::kHeight,
                         EMathTransformType::Affine, flags, &params);
        fuzz::CheckReference(reference);
    });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::MemoryFile memory("pdf");
    memory.Fill(data, size);
    Read(memory.Path(), 0, 5);
    Read(memory.Path(), BMapAnchor::kStrictTransform | BMapAnchor::kStrictCoordSys, 4);
    Read(memory.Path(), 0, 4, true);
    MapAnchor::BGeoPDFPage::Describe(memory.Path());
    MapAnchor::BGeoPDFPages::List(memory.Path());
    return 0;
}

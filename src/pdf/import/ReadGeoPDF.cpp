#include "import/ReadGeoPDF.h"

#include "import/CGeoPDFImportWM.h"
#include "import/CSpatialPDFImport.h"
#include "import/GeoPDFSteps.h"
#include "import/PageBoxes.h"
#include "import/PageFrame.h"
#include "objects/CPDFDocument.h"
#include "objects/CPDFPage.h"

#include "common/points/StoreControlPoints.h"
#include "common/policy/Strictness.h"

#include <Tellurion/BCoordSys.h>

#include <cmath>
#include <stdexcept>
#include <utility>

namespace MapAnchor {

using Tellurion::BCoordSys;
using Tellurion::BGeoReference;
using Tellurion::BParamList;
using Tellurion::BPoint;
using Tellurion::BPointPair;
using Tellurion::BString;
using Tellurion::EMathTransformType;
using VellumLib::CGeoPDFImportWM;
using VellumLib::CMeasureDictionaryData;
using VellumLib::CPDFDocument;
using VellumLib::CPDFPage;
using VellumLib::CSpatialPDFImport;

namespace {

CMeasureDictionaryData ReadRecord(CPDFDocument& document) {
    switch (document.GetPage(0).GetSpatialKind()) {
        case CPDFPage::kSpatialLGIDict: {
            CGeoPDFImportWM import(&document);
            import.Import();
            return import.GetMeasures().at(0);
        }
        case CPDFPage::kSpatialMeasure: {
            CSpatialPDFImport import(&document, QString(), 0);
            import.Import();
            return import.GetMeasures().at(0);
        }
        default:
            throw std::runtime_error("No Geospatial data found within PDF Document");
    }
}

PageFrame MakeFrame(CPDFPage& page, const std::vector<double>& viewport, PDFCropType crop,
                    RasterExtent size) {
    if (viewport.size() < 4) ThrowNoViewportBox();
    const std::vector<double> shown = PageBoxes::Of(page).Shown(crop);
    if (!shown.empty()) {
        const PageFrame frame(viewport, shown, size.width, size.height);
        if (frame.HasExtent()) return frame;
    }
    ThrowNoBoxes();
}

BPoint WorldOf(const CMeasureDictionaryData& record, std::size_t index, const BCoordSys* system) {
    const auto& [first, second] = record.GPTS[index];
    const BPoint point{second, first, 0.0};
    return record.GPTSInCoordSys ? point : system->ConvertFromGeodetic(point);
}

BPointPair PairOf(const CMeasureDictionaryData& record, std::size_t index, const PageFrame& frame,
                  const BCoordSys* system) {
    const auto pixel = frame.PixelAt(record.LPTS[index]);
    const BPoint world = WorldOf(record, index, system);
    if (!pixel || !std::isfinite(world.x) || !std::isfinite(world.y)) ThrowUncountable(index);
    return {pixel->column, pixel->row, world.x, world.y, 0.0, BString(), true};
}

/// False for longitudes and latitudes without a system to convert them to.
bool MakePairs(const CMeasureDictionaryData& record, const PageFrame& frame, const BCoordSys* system,
               std::vector<BPointPair>& pairs) {
    if (record.GPTS.empty()) ThrowNoPoints();
    if (!record.GPTSInCoordSys && !system) return false;
    pairs.reserve(record.GPTS.size());
    for (std::size_t i = 0; i < record.GPTS.size(); ++i)
        pairs.push_back(PairOf(record, i, frame, system));
    return true;
}

void StoreMatrix(BGeoReference& reference, const std::vector<double>& matrix, const PageFrame& frame,
                 OnFailure on_failure) {
    constexpr std::size_t kTerms = 6;
    if (matrix.size() < kTerms) ThrowShortMatrix(matrix.size());
    StorePageAffine(reference, frame.AffineOf(matrix), on_failure);
}

}  // namespace

bool ReadGeoPDF(CPDFDocument& document, unsigned int flags, BGeoReference& reference,
                EMathTransformType mathType, long width, long height, const BParamList* params) {
    const CMeasureDictionaryData record = ReadRecord(document);
    const PDFCropType crop = CropTypeOf(params);
    if (record.GPTS.size() != record.LPTS.size()) return false;

    const Strictness strictness(flags);
    const SystemSearch search = StoreCoordSys(reference, record.CoordSys, strictness.CoordSys());
    if (search.failed) return false;
    const RasterExtent size{width, height};
    const PageFrame frame = MakeFrame(document.GetPage(0), record.BBox, crop, size);
    if (!record.CTM.empty()) {
        StoreMatrix(reference, record.CTM, frame, strictness.Transform());
        return !search.system.IsEmpty();
    }
    std::vector<BPointPair> pairs;
    if (!MakePairs(record, frame, search.system.Get(), pairs)) return false;
    StoreControlPoints(reference, std::move(pairs), mathType, size, strictness.Transform(), kGeoPDFTexts);
    return true;
}

}  // namespace MapAnchor

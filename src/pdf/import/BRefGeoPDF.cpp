#include "BRefGeoPDF.h"

#include "common/ReferenceFormat.h"

#include "import/ReadGeoPDF.h"

#include "PdfParameters.h"
#include "import/CGeoPDFImportWM.h"
#include "import/CSpatialPDFImport.h"
#include "import/PageBoxes.h"
#include "import/PageFrame.h"
#include "objects/CPDFDocument.h"
#include "objects/CPDFPage.h"

#include "common/StoreControlPoints.h"
#include "common/StoreTransform.h"
#include "common/Strictness.h"

#include <MapAnchor/BGeoReferenceInvalidCoordSysException.h>
#include <MapAnchor/BGeoReferenceInvalidTransformException.h>
#include <MapAnchor/BReadParametersException.h>
#include <Tellurion/BCoordSys.h>
#include <Tellurion/BCoordSysRepository.h>
#include <Tellurion/BLogger.h>

#include <cmath>
#include <stdexcept>
#include <utility>

namespace MapAnchor {

using Tellurion::BCoordSys;
using Tellurion::BCoordSysRepository;
using Tellurion::BException;
using Tellurion::BGeoReference;
using Tellurion::BLogger;
using Tellurion::BParamList;
using Tellurion::BPoint;
using Tellurion::BPointPair;
using Tellurion::BSharedPtr;
using Tellurion::BString;
using Tellurion::ELogSeverity;
using Tellurion::EMathTransformType;
using VellumLib::CGeoPDFImportWM;
using VellumLib::CMeasureDictionaryData;
using VellumLib::CPDFDocument;
using VellumLib::CPDFPage;
using VellumLib::CSpatialPDFImport;

namespace {

constexpr const char* kSource = "BRefGeoPDF::Read";

// Kept for compatibility: the log line of the points names another reader.
constexpr FailureTexts kTexts = {
    .source = kSource,
    .affine_terms_line = "BRefGeoPDF::Read Failed creating Affine(%f %f %f %f %f %f) ERROR (%ls)",
    .points_line = "BRefRSF::Read Failure setting the BMathTransform ERROR (%ls)"};

void Log(const char* line) {
    BLogger::Instance()->WriteLine(ELogSeverity::Error, line);
}

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

PDFCropType CropTypeOf(const BParamList* params) {
    static const BString kCropType(PdfParameters::kCropType);
    constexpr int kDefault = static_cast<int>(PDFCropType::Media);
    const int number =
        params && params->HasProperty(kCropType) ? params->GetInteger(kCropType, kDefault) : kDefault;
    if (number == static_cast<int>(PDFCropType::Bounding)) {
        Log("BRefGeoPDF::Bounding box crop type is not supported");
        throw BReadParametersException(
            "Bounding box cropping is not supported, please choose a different crop type");
    }
    return static_cast<PDFCropType>(number);
}

/// The text first, then the code; empty when neither is understood.
BSharedPtr<BCoordSys> FindCoordSys(const CMeasureDictionaryData::CoordSysPart& part) {
    BCoordSys* system = nullptr;
    if (!part.WKT.empty())
        system = BCoordSysRepository::Instance()->ReadCoordSysFromWKTString(BString(part.WKT));
    if (!system && part.EPSG != CMeasureDictionaryData::kNoEPSG)
        system = BCoordSys::FromEPSGCode(BString::Format("%d", part.EPSG));
    return system ? BSharedPtr<BCoordSys>(system) : BSharedPtr<BCoordSys>();
}

void LogNoCoordSys() {
    Log("BRefGeoPDF::Read could not generate a Coordinate system");
}

BGeoReferenceInvalidCoordSysException NoCoordSys() {
    return {kSource, "Invalid Coordinate system in the geospatial PDF"};
}

/// What the search for the coordinate system came to.
struct Search {
    BSharedPtr<BCoordSys> system;  ///< empty when nothing was found
    bool failed = false;           ///< it ended in an exception that the host can live with
};

/// A search that finds nothing is no failure, unless the host is strict: then the log
/// says so twice, since the exception comes by the handler below.
Search StoreCoordSys(BGeoReference& reference, const CMeasureDictionaryData::CoordSysPart& part,
                     OnFailure on_failure) {
    try {
        const BSharedPtr<BCoordSys> system = FindCoordSys(part);
        if (system) {
            reference.SetCoordSys(system);
        } else if (on_failure == OnFailure::Throw) {
            LogNoCoordSys();
            throw NoCoordSys();
        }
        return {.system = system, .failed = false};
    } catch (const BException&) {
        LogNoCoordSys();
        if (on_failure == OnFailure::Throw) throw NoCoordSys();
        return {.system = {}, .failed = true};
    }
}

PageFrame MakeFrame(CPDFPage& page, const std::vector<double>& viewport, PDFCropType crop,
                    RasterExtent size) {
    if (viewport.size() < 4)
        throw BException(kSource, BString("The viewport of this PDF Page has no complete box, Invalid PDF."));
    const std::vector<double> shown = PageBoxes::Of(page).Shown(crop);
    if (!shown.empty()) {
        const PageFrame frame(viewport, shown, size.width, size.height);
        if (frame.HasExtent()) return frame;
    }
    // The text stands where others have their source.
    throw BException(BString("No crop boxes could be found on this PDF Page, Invalid PDF."),
                     BString("BREFGeoPDF::Read"));
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
    if (!pixel || !std::isfinite(world.x) || !std::isfinite(world.y))
        throw BGeoReferenceInvalidTransformException(
            kSource,
            BString::Format("GCP point %d of the PDF file lies outside of what can be counted", index + 1));
    return {pixel->column, pixel->row, world.x, world.y, 0.0, BString(), true};
}

[[noreturn]] void ThrowNoPoints() {
    Log("BRefGeoPDF::Read no control points found in GeospatialPDF.");
    throw BGeoReferenceInvalidTransformException(kSource, "No GCP points found in the PDF file");
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
    if (matrix.size() < kTerms)
        throw BGeoReferenceInvalidTransformException(
            kSource, BString::Format("The CTM of the PDF file has %d of 6 terms", matrix.size()));
    const AffineTerms terms = frame.AffineOf(matrix);
    if (!StoreAffine(reference, terms, on_failure, kTexts))
        BLogger::Instance()->Write(ELogSeverity::Error,
                                   AffineLogLine(kTexts, terms, "The terms give no transform"));
}

}  // namespace

bool ReadGeoPDF(CPDFDocument& document, unsigned int flags, BGeoReference& reference,
                EMathTransformType mathType, long width, long height, const BParamList* params) {
    const CMeasureDictionaryData record = ReadRecord(document);
    const PDFCropType crop = CropTypeOf(params);
    if (record.GPTS.size() != record.LPTS.size()) return false;

    const Strictness strictness(flags);
    const Search search = StoreCoordSys(reference, record.CoordSys, strictness.CoordSys());
    if (search.failed) return false;
    const RasterExtent size{width, height};
    const PageFrame frame = MakeFrame(document.GetPage(0), record.BBox, crop, size);
    if (!record.CTM.empty()) {
        StoreMatrix(reference, record.CTM, frame, strictness.Transform());
        return !search.system.IsEmpty();
    }
    std::vector<BPointPair> pairs;
    if (!MakePairs(record, frame, search.system.Get(), pairs)) return false;
    StoreControlPoints(reference, std::move(pairs), mathType, size, strictness.Transform(), kTexts);
    return true;
}

bool BRefGeoPDF::Read(const BString& file, const unsigned int& flags, BGeoReference& reference,
                      EMathTransformType mathType, long width, long height, const BParamList* params) {
    CPDFDocument document(QString::fromStdWString(file.WideStr()), VellumLib::EPDFExtent::FirstPage);
    return ReadGeoPDF(document, flags, reference, mathType, width, height, params);
}

bool BRefGeoPDF::Read(const BString& file, BGeoReference& reference, EMathTransformType mathType, long width,
                      long height, const BParamList* params) {
    constexpr unsigned int kNoFlags = 0;
    return Read(file, kNoFlags, reference, mathType, width, height, params);
}

ReferenceFormat BRefGeoPDF::Format() {
    return {.name = "PDF",
            .title = "Geospatial PDF",
            .type = Tellurion::EReferenceType::GeoPDF,
            // False is no failure by type: the reference says what there is, and the log
            // where a PDF that was not written stands.
            .typed_read =
                [](const ReadCall& call) {
                    Read(call.file, call.flags, call.reference, call.math_type, call.width, call.height,
                         call.params);
                },
            .typed_save =
                [](const SaveCall& call) {
                    Write(call.file, call.reference, call.width, call.height, call.params);
                },
            .typed_extensions = {u".pdf"},
            .in_place = true,
            .coord_sys = Keeps::Always,
            .rotation = true,
            .points = true};
}

}  // namespace MapAnchor

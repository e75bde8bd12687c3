#include "import/GeoPDFSteps.h"

#include "PdfParameters.h"

#include <MapAnchor/BGeoReferenceInvalidCoordSysException.h>
#include <MapAnchor/BGeoReferenceInvalidTransformException.h>
#include <MapAnchor/BReadParametersException.h>
#include <Tellurion/BCoordSysRepository.h>
#include <Tellurion/BLogger.h>

namespace MapAnchor {

using Tellurion::BCoordSys;
using Tellurion::BCoordSysRepository;
using Tellurion::BException;
using Tellurion::BGeoReference;
using Tellurion::BLogger;
using Tellurion::BParamList;
using Tellurion::BSharedPtr;
using Tellurion::BString;
using Tellurion::ELogSeverity;
using VellumLib::CMeasureDictionaryData;

namespace {

constexpr const char* kSource = "BRefGeoPDF::Read";

void Log(const char* line) {
    BLogger::Instance()->WriteLine(ELogSeverity::Error, line);
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

}  // namespace

// Kept for compatibility: the log line of the points names another reader.
const FailureTexts kGeoPDFTexts = {
    .source = kSource,
    .affine_terms_line = "BRefGeoPDF::Read Failed creating Affine(%f %f %f %f %f %f) ERROR (%ls)",
    .points_line = "BRefRSF::Read Failure setting the BMathTransform ERROR (%ls)"};

PDFCropType CropTypeOf(const BParamList* params, PDFCropType fallback) {
    static const BString kCropType(PdfParameters::kCropType);
    const int otherwise = static_cast<int>(fallback);
    const int number =
        params && params->HasProperty(kCropType) ? params->GetInteger(kCropType, otherwise) : otherwise;
    if (number == static_cast<int>(PDFCropType::Bounding)) {
        Log("BRefGeoPDF::Bounding box crop type is not supported");
        throw BReadParametersException(
            "Bounding box cropping is not supported, please choose a different crop type");
    }
    return static_cast<PDFCropType>(number);
}

SystemSearch StoreCoordSys(BGeoReference& reference, const CMeasureDictionaryData::CoordSysPart& part,
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

void StorePageAffine(BGeoReference& reference, const AffineTerms& terms, OnFailure on_failure) {
    if (!StoreAffine(reference, terms, on_failure, kGeoPDFTexts))
        BLogger::Instance()->Write(ELogSeverity::Error,
                                   AffineLogLine(kGeoPDFTexts, terms, "The terms give no transform"));
}

void ThrowNoPoints() {
    Log("BRefGeoPDF::Read no control points found in GeospatialPDF.");
    throw BGeoReferenceInvalidTransformException(kSource, "No GCP points found in the PDF file");
}

void ThrowUncountable(std::size_t index) {
    throw BGeoReferenceInvalidTransformException(
        kSource,
        BString::Format("GCP point %d of the PDF file lies outside of what can be counted", index + 1));
}

void ThrowShortMatrix(std::size_t terms) {
    throw BGeoReferenceInvalidTransformException(
        kSource, BString::Format("The CTM of the PDF file has %d of 6 terms", terms));
}

void ThrowNoBoxes() {
    // The text is in the place of the source.
    throw BException(BString("No crop boxes could be found on this PDF Page, Invalid PDF."),
                     BString("BREFGeoPDF::Read"));
}

void ThrowNoViewportBox() {
    throw BException(kSource, BString("The viewport of this PDF Page has no complete box, Invalid PDF."));
}

}  // namespace MapAnchor

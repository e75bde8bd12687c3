#include "SavingProof.h"

#include "ReferenceFormats.h"
#include "SavingComparison.h"
#include "SidecarNames.h"
#include "common/policy/DiagnosticIds.h"
#include "raster/gdal/SecondReading.h"

#include <MapAnchor/BGeoPDFPage.h>
#include <MapAnchor/BMapAnchor.h>
#include <MapAnchor/BReading.h>
#include <Tellurion/BException.h>
#include <Tellurion/BFileUtilities.h>
#include <Tellurion/Numbers.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string_view>

namespace MapAnchor {

using namespace Tellurion;
using ESeverity = BDiagnostic::ESeverity;

namespace {

/// The digits of the distances in the sentence.
constexpr int kDecimals = 3;

PartsHeld PartsOf(const ReferenceFormat& kind, const BGeoReference& meant, const BSavingOptions& options) {
    const auto enabled = std::count_if(meant.PointPairVector.begin(), meant.PointPairVector.end(),
                                       [](const BPointPair& pair) { return pair.Enabled; });
    const bool has_default = kind.needs_coord_sys && !meant.HasCoordSys();
    return {.system = KeepsPart(kind.coord_sys, options, kind) && !has_default,
            .whole_system = kind.vertical_unit != Keeps::Nothing,
            .points = kind.points && static_cast<std::size_t>(enabled) >= kind.min_points,
            .disabled_points = !kind.skips_disabled_points,
            .vertical_unit = KeepsPart(kind.vertical_unit, options, kind)};
}

/// How the file is read back: as a host reads it, by the fit that was meant.
BReadingOptions ReadingOptionsOf(const ReferenceFormat& kind, const BGeoReference& meant,
                                 const BSavingOptions& options) {
    BReadingOptions reading;
    if (options.HasType()) reading.SetType(options.GetType());
    reading.SetSize(options.GetWidth(), options.GetHeight());
    if (meant.HasMathTransform() && !meant.PointPairVector.empty())
        reading.SetMathType(meant.MathTransform->GetMathTransformType());
    const BParamList& params = options.GetParams();
    if (std::string_view(kind.name) == "PDF") {
        if (params.HasProperty(BMapAnchor::kValPDFCropType))
            reading.SetPdfBox(params.GetInteger(BMapAnchor::kValPDFCropType, 0));
        if (params.HasProperty(BMapAnchor::kValPDFPage))
            reading.SetPdfPage(params.GetInteger(BMapAnchor::kValPDFPage, 1));
        if (params.GetInteger(BMapAnchor::kValPDFAdd, 0) != 0) reading.SetPdfMap("last");
        if (params.HasProperty(BMapAnchor::kValPDFResolution))
            reading.SetResolution(params.GetDouble(BMapAnchor::kValPDFResolution, 0.0));
    }
    return reading;
}

std::string DistanceText(const SavedComparison& found) {
    if (std::isnan(found.pixels)) return {};
    std::string text = "at most " + PrintFixed(found.pixels, kDecimals) + " pixels";
    if (!std::isnan(found.metres)) text += ", " + PrintFixed(found.metres, kDecimals) + " m";
    return text;
}

/// What may differ by no more than a tolerance.
bool IsWithin(const SavedComparison& found, const BSavingOptions& options) {
    return !(found.pixels > options.GetTolerancePixels()) && !(found.metres > options.GetToleranceMetres());
}

std::string SystemText(const BGeoReference& meant, const PartsHeld& held, const SavedComparison& found) {
    if (!meant.HasCoordSys() || !held.system) return {};
    if (found.is_same_system) return "the same system";
    if (std::isnan(found.system_metres)) return "another system or none";
    return "another system, " + PrintFixed(found.system_metres, kDecimals) + " m away";
}

void Report(const BString& file, const char* who, const SavedComparison& found, const BSavingOptions& options,
            BSavingProof::Parts& proof) {
    for (const SavedDifference& difference : found.differences)
        proof.diagnostics.push_back(
            DiagnosticParts{.id = difference.id, .text = BString(who + difference.text), .file = file}
                .Make());
    if (!IsWithin(found, options))
        proof.diagnostics.push_back(
            DiagnosticParts{.id = DiagnosticId::kSavedElsewhere,
                            .text = BString(who + ("what is read back is " + DistanceText(found).substr(8) +
                                                   " away from what was meant")),
                            .file = file}
                .Make());
}

/// Another source of the raster that states another place.
void ReportStale(const BReading& reading, BSavingProof::Parts& proof) {
    for (const BDiagnostic& remark : reading.GetDiagnostics())
        if (remark.GetId() == BString(DiagnosticId::kSourcesDiffer))
            proof.diagnostics.push_back(
                DiagnosticParts{.id = DiagnosticId::kSavedStale,
                                .text = BString("another source of the raster states another place: " +
                                                remark.GetText().StdStr()),
                                .file = remark.GetFile()}
                    .Make());
}

/// What the comparison says of the save.
void Conclude(const char* how, const BString& file, const BGeoReference& meant, const PartsHeld& held,
              const SavedComparison& compared, const BSavingOptions& options, BSavingProof::Parts& proof) {
    proof.pixels = compared.pixels;
    proof.metres = compared.metres;
    proof.is_same_system = compared.is_same_system;
    proof.system_metres = compared.system_metres;
    proof.is_exact = compared.differences.empty() && IsWithin(compared, options);
    const std::string distance = DistanceText(compared);
    const std::string system = SystemText(meant, held, compared);
    proof.text = how + distance + (distance.empty() || system.empty() ? "" : "; ") + system;
    if (distance.empty() && system.empty()) proof.text += "nothing to compare";
    if (compared.is_turned) proof.text += "; with longitudes a whole turn off";
    Report(file, "", compared, options, proof);
}

void ReadBack(const ReferenceFormat& kind, const BString& file, const BGeoReference& meant,
              const BSavingOptions& options, BSavingProof::Parts& proof) {
    const BReading reading = BReading::Of(file, ReadingOptionsOf(kind, meant, options));
    proof.is_read = reading.HasReference();
    if (!proof.is_read) {
        proof.text = "not read back: " + reading.GetFailureText().StdStr();
        proof.diagnostics.push_back(
            DiagnosticParts{.id = DiagnosticId::kSavedUnreadable, .text = BString(proof.text), .file = file}
                .Make());
        return;
    }
    const PartsHeld held = PartsOf(kind, meant, options);
    const BGeoReference& found = reading.GetReference();
    const SavedComparison compared =
        CompareSaved(meant, {found, BControlPoint::From(found.PointPairVector), reading.IsCentreAnchored()},
                     held, options);
    Conclude("read back: ", file, meant, held, compared, options, proof);
    if (kind.in_place) ReportStale(reading, proof);
    if (reading.GetUsedFile() != file && kind.in_place)
        proof.diagnostics.push_back(
            DiagnosticParts{.id = DiagnosticId::kSavedOverridden,
                            .text = BString("the file is read from " +
                                            BFileUtilities::GetFileName(reading.GetUsedFile()).StdStr() +
                                            " beside it, which goes before what was saved"),
                            .file = file}
                .Make());
}

/// The transform of GDAL's raster of a page in pixels of the raster that was meant, which fills
/// the box. False where the page states no boxes.
bool ToPixelsOfBox(const BString& file, const BSavingOptions& options, SecondReading& gdal) {
    constexpr int kMediaBox = 5;
    const BGeoPDFPage page = BGeoPDFPage::Describe(file);
    const int type = options.GetParams().GetInteger(BMapAnchor::kValPDFCropType, kMediaBox);
    const BGeoPDFBox& media = page.MediaBox;
    const BGeoPDFBox box = page.BoxForCropType(type);
    const auto width = static_cast<double>(options.GetWidth());
    const auto height = static_cast<double>(options.GetHeight());
    if (!box.Present || !media.Present || width <= 0 || height <= 0 || !gdal.reference.HasMathTransform())
        return false;
    double a, b, c, d, e, f;
    gdal.reference.MathTransform->GetAffineParameters(a, b, c, d, e, f);
    // One pixel of the raster, and its origin, in pixels of GDAL's raster.
    const double per_x = static_cast<double>(gdal.width) / (media.Right - media.Left);
    const double per_y = static_cast<double>(gdal.height) / (media.Top - media.Bottom);
    const double across = (box.Right - box.Left) / width * per_x;
    const double down = (box.Top - box.Bottom) / height * per_y;
    const double left = (box.Left - media.Left) * per_x;
    const double top = (media.Top - box.Top) * per_y;
    const std::unique_ptr<BMathTransform> transform(BMathTransform::CreateAffine(
        a * across, b * down, c + a * left + b * top, d * across, e * down, f + d * left + e * top, true));
    if (transform) gdal.reference.SetMathTransform(*transform);
    return transform != nullptr;
}

void AskGdal(const ReferenceFormat& kind, const BString& file, const BGeoReference& meant,
             const BSavingOptions& options, BSavingProof::Parts& proof) {
    // GDAL's raster is the first page, and its map the largest of several.
    const BParamList& params = options.GetParams();
    if (std::string_view(kind.name) == "PDF" && (params.GetInteger(BMapAnchor::kValPDFPage, 1) != 1 ||
                                                 params.GetInteger(BMapAnchor::kValPDFAdd, 0) != 0))
        return;
    std::string refusal;
    std::optional<SecondReading> gdal = ReadByGdalAlone(kind, file, refusal);
    if (!gdal) {
        if (!refusal.empty())
            proof.diagnostics.push_back(
                DiagnosticParts{.id = DiagnosticId::kSavedNotInGdal,
                                .severity = ESeverity::Note,
                                .text = BString("GDAL does not read the file: " + refusal),
                                .file = file}
                    .Make());
        return;
    }
    PartsHeld held = PartsOf(kind, meant, options);
    // Names of systems that GDAL does not know are no other place.
    if (!gdal->states_system || !gdal->reference.HasCoordSys()) held.system = false;
    if (gdal->points.empty() && gdal->reference.HasMathTransform())
        held.points = false;  // where an affine fits the points, GDAL gives that in their place
    if (std::string_view(kind.name) == "PDF" && !ToPixelsOfBox(file, options, *gdal)) return;
    const SavedComparison compared = CompareSaved(meant, {gdal->reference, gdal->points}, held, options);
    proof.is_confirmed = compared.differences.empty() && IsWithin(compared, options);
    if (compared.is_turned) proof.text += "; in GDAL a whole turn off";
    if (proof.is_confirmed) return;
    proof.is_exact = false;
    Report(file, "in GDAL: ", compared, options, proof);
}

/// Of a kind that this library saves alone. The fit that was meant is through the points.
void ReadBackByGdal(const ReferenceFormat& kind, const BString& file, const BGeoReference& meant,
                    const BSavingOptions& options, BSavingProof::Parts& proof) {
    std::string refusal;
    const std::optional<SecondReading> gdal = ReadByGdalAlone(kind, file, refusal);
    proof.is_read = gdal.has_value();
    if (!gdal) {
        proof.text = "not read back: GDAL does not read the file: " + refusal;
        proof.diagnostics.push_back(
            DiagnosticParts{.id = DiagnosticId::kSavedUnreadable, .text = BString(proof.text), .file = file}
                .Make());
        return;
    }
    const PartsHeld held = PartsOf(kind, meant, options);
    const SavedComparison compared = CompareSaved(meant, {gdal->reference, gdal->points}, held, options);
    Conclude("read back by GDAL alone: ", file, meant, held, compared, options, proof);
    proof.is_confirmed = proof.is_exact;
}

/// A sidecar counts only where the raster beside it has no word of its own.
void LookAtRaster(const ReferenceFormat& kind, const BString& file, const BGeoReference& meant,
                  const BSavingOptions& options, BSavingProof::Parts& proof) {
    if (!kind.sidecar || !meant.HasMathTransform()) return;
    const BString raster = FindRasterBeside(file);
    std::string refusal;
    const auto gdal = raster.IsEmpty() ? std::nullopt : ReadRasterByGdalAlone(raster, refusal);
    if (!gdal || (gdal->points.empty() && !gdal->reference.HasMathTransform())) return;
    PartsHeld held;
    held.points = !gdal->points.empty() && kind.points;
    const SavedComparison compared = CompareSaved(meant, {gdal->reference, gdal->points}, held, options);
    if (compared.differences.empty() && IsWithin(compared, options)) return;
    const std::string distance = DistanceText(compared);
    proof.diagnostics.push_back(
        DiagnosticParts{.id = DiagnosticId::kSavedOverridden,
                        .text = BString("GDAL places " + BFileUtilities::GetFileName(raster).StdStr() +
                                        " by another source than this file" +
                                        (distance.empty() ? "" : ", " + distance.substr(8) + " away") +
                                        "; mapanchor sources lists them"),
                        .file = raster}
            .Make());
}

}  // namespace

const ReferenceFormat* FindSavedKind(const BString& file, const BSavingOptions& options) {
    if (options.HasType()) return FindFormatByType(options.GetType());
    const BString extension = BFileUtilities::GetExtension(file).ToLower();
    if (const ReferenceFormat* const row = FindFormatToSave(extension.GetUnits())) return row;
    return FindFormatByTypedName(file);
}

bool KeepsPart(Keeps keeps, const BSavingOptions& options, const ReferenceFormat& kind) {
    const bool by_type = options.HasType() || !kind.named_save;
    return keeps == Keeps::Always || keeps == (by_type ? Keeps::ByType : Keeps::ByName);
}

BSavingProof ProveSave(const ReferenceFormat& kind, const BString& file, const BGeoReference& meant,
                       const BSavingOptions& options) {
    auto proof = std::make_shared<BSavingProof::Parts>();
    try {
        const bool has_reader = kind.typed_read || kind.named_read;
        if (has_reader)
            ReadBack(kind, file, meant, options, *proof);
        else
            ReadBackByGdal(kind, file, meant, options, *proof);
        if (has_reader && proof->is_read) {
            AskGdal(kind, file, meant, options, *proof);
            LookAtRaster(kind, file, meant, options, *proof);
        }
    } catch (const BException& error) {
        proof->is_exact = false;
        proof->text = "not read back: " + error.GetDetailedMessage().StdStr();
        proof->diagnostics.push_back(
            DiagnosticParts{.id = DiagnosticId::kSavedUnreadable, .text = BString(proof->text), .file = file}
                .Make());
    }
    return BSavingProof(std::move(proof));
}

}  // namespace MapAnchor

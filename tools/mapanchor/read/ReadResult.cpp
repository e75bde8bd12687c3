#include "read/ReadFile.h"

#include <MapAnchor/BReading.h>

#include <string_view>

namespace Tool {

using MapAnchor::BDiagnostic;
using MapAnchor::BReading;
using namespace Tellurion;

namespace {

ExitStatus StatusOf(FailureKind kind) {
    if (kind == FailureKind::NoReference) return ExitStatus::NoReference;
    return kind == FailureKind::Unsupported ? ExitStatus::Refused : ExitStatus::Error;
}

std::string PlaceOf(const BDiagnostic& remark) {
    std::string place = remark.GetPlace().StdStr();
    if (remark.GetLine() > 0) place = "line " + std::to_string(remark.GetLine());
    if (place.empty() && remark.GetByteOffset() >= 0)
        place = "byte " + std::to_string(remark.GetByteOffset());
    return place;
}

/// The library's words with what this program offers.
std::string Detail(const BReading& reading) {
    constexpr std::string_view kFolder = " is a folder, not a file.";
    std::string detail = reading.GetFailureDetail().StdStr();
    if (detail.ends_with(kFolder))
        detail = detail.substr(0, detail.size() - kFolder.size()) +
                 " is a folder; mapanchor batch reads the files in it.";
    return detail;
}

std::optional<Failure> FailureOf(const BReading& reading) {
    if (reading.HasReference()) return std::nullopt;
    return Failure{reading.GetFailureType().StdStr(), reading.GetFailureMessage().StdStr(),
                   reading.GetFailureSource().StdStr(), Detail(reading), KindOf(reading.GetOutcome())};
}

}  // namespace

void AddRemarks(const std::vector<BDiagnostic>& remarks, Diagnostics& diagnostics) {
    for (const BDiagnostic& remark : remarks)
        diagnostics.push_back(DiagnosticOf(remark));
}

ExitStatus ReadResult::Status() const {
    if (failure) return StatusOf(failure->kind);
    return AreDoubtful(diagnostics) ? ExitStatus::Warnings : ExitStatus::Done;
}

Diagnostic DiagnosticOf(const BDiagnostic& remark) {
    return {.is_error = remark.GetSeverity() == BDiagnostic::ESeverity::Error,
            .text = remark.GetText().StdStr(),
            .id = remark.GetId().StdStr(),
            .is_note = remark.GetSeverity() == BDiagnostic::ESeverity::Note,
            .file = remark.GetFile().StdStr(),
            .place = PlaceOf(remark)};
}

ReadResult ResultOf(const BReading& reading, const std::string& name) {
    ReadResult result;
    result.file = name;
    result.failure = FailureOf(reading);
    result.reference = reading.GetReference();
    result.points = reading.GetControlPoints();
    result.road = reading.IsByName() ? Road::Name : Road::Type;
    result.kind = reading.GetKind().StdStr();
    result.used_file = reading.GetUsedFile().StdStr();
    for (const BString& file : reading.GetFiles())
        result.files.push_back(file.StdStr());
    result.centre_anchored = reading.IsCentreAnchored();
    if (reading.GetWidth() > 0 && reading.GetHeight() > 0) {
        result.width = reading.GetWidth();
        result.height = reading.GetHeight();
    }
    if (!reading.IsSidecar() || reading.GetUsedFile() != reading.GetFile()) result.raster = name;
    if (reading.GetPdfPage()) result.page = *reading.GetPdfPage();
    result.origins = reading.GetOrigins();
    AddRemarks(reading.GetDiagnostics(), result.diagnostics);
    return result;
}

}  // namespace Tool

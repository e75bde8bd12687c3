#include "read/ReadFile.h"

#include <MapAnchor/BReading.h>

#include <exception>
#include <new>
#include <string_view>

namespace Tool {

using MapAnchor::BDiagnostic;
using MapAnchor::BReading;
using namespace Tellurion;

namespace {

using EOutcome = BReading::EOutcome;

ExitStatus StatusOf(EOutcome outcome) {
    switch (outcome) {
        case EOutcome::NoReference:
            return ExitStatus::NoReference;
        case EOutcome::Refused:
            return ExitStatus::Refused;
        default:
            return ExitStatus::Error;
    }
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
                   reading.GetFailureSource().StdStr(), Detail(reading)};
}

}  // namespace

void AddRemarks(const std::vector<BDiagnostic>& remarks, Diagnostics& diagnostics) {
    for (const BDiagnostic& remark : remarks)
        diagnostics.push_back(DiagnosticOf(remark));
}

std::string Failure::Text() const {
    std::string text = message;
    if (!text.empty() && !detail.empty()) text += " ";
    text += detail;
    while (text.ends_with('\n'))  // some of the library's texts end so
        text.pop_back();
    return text.empty() ? type : text;
}

Failure FailureOf(const BException& error) {
    return {error.GetTypeName(), error.GetMessageText().StdStr(), error.GetSource().StdStr(),
            error.GetDetail().StdStr()};
}

Failure CurrentFailure() {
    try {
        throw;
    } catch (const BException& error) {
        return FailureOf(error);
    } catch (const std::bad_alloc&) {
        return {"std::bad_alloc", "Out of memory.", "", ""};
    } catch (const std::exception& error) {
        return {"std::exception", error.what(), "", ""};
    } catch (...) {
        return {"unknown", "A failure of another library that has no text here.", "", ""};
    }
}

ExitStatus ReadResult::Status() const {
    if (failure) return StatusOf(outcome);
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
    result.outcome = reading.GetOutcome();
    result.reference = reading.GetReference();
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

ReadResult ReadFile(const std::string& name, const ReadOptions& options, LogCollector& log) {
    ReadResult result = ResultOf(BReading::Of(BString(name), options.ForReading()), name);
    result.page_number = options.pdf_page;
    log.MoveTo(result.diagnostics, !result.Ok());
    return result;
}

}  // namespace Tool

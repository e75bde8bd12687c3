#include "raster/kap/BRefKAP.h"

#include "common/policy/DiagnosticIds.h"
#include "common/policy/ReadNotes.h"
#include "common/policy/ReferenceFormat.h"

#include "common/files/FileHead.h"
#include "common/files/InputFile.h"
#include "common/files/PlainNames.h"
#include "common/points/StoreControlPoints.h"
#include "common/storing/FindCoordSys.h"
#include "raster/kap/KapHeader.h"

#include <Tellurion/BLogger.h>
#include <Tellurion/Numbers.h>
#include <Tellurion/ReferenceTags.h>

namespace MapAnchor {

using Tellurion::BFile;
using Tellurion::BGeoReference;
using Tellurion::BLogger;
using Tellurion::BString;
using Tellurion::EFileMode;
using Tellurion::ELogSeverity;
using Tellurion::EMathTransformType;

namespace {

constexpr const char* kSource = "BRefKAP::Read";
constexpr const char* kFallbackDatum = "NAD83";

// The source of another format in a thrown fit is kept for compatibility.
constexpr FailureTexts kTexts = {
    .source = kSource,
    .replaced_source = "BRefTAB::Read",
    .points_line = "BRefKAP::Read Failure setting the BMathTransform ERROR (%ls)"};

KapHeader ReadHeader(BFile& in) {
    FileHead head(in, kLongestKapHeader);
    KapHeader header;
    while (!header.ended && head.Grow())
        header = ParseKapHeader(head.Bytes());
    const bool is_cut = !header.ended && head.Bytes().size() == kLongestKapHeader;
    if (is_cut && (header.has_data || !header.points.empty()))
        BLogger::Instance()->WriteLine(
            ELogSeverity::Error,
            "BRefKAP::Read The header of <%ls> does not end within %zu bytes, the rest of it is not read",
            in.GetPath(), kLongestKapHeader);
    return header;
}

void LogIncompletePoints(const BString& file, const KapHeader& header) {
    for (const int line : header.incomplete_points)
        BLogger::Instance()->WriteLine(
            ELogSeverity::Error, "BRefKAP::Read Skipped the incomplete control point in line %d of <%ls>",
            line, file);
}

void StorePoints(BGeoReference& reference, const KapHeader& header, OnFailure on_failure) {
    if (header.points.empty()) return;
    StoreControlPoints(reference, header.points, EMathTransformType::Affine, {header.width, header.height},
                       on_failure, kTexts);
}

PlainNames LatLong(const BString& datum) {
    return {"LAT-LONG", datum, "METERS"};
}

/// The system of the header's datum or, for one that nobody knows, of the fallback. It
/// is one of degrees whatever the header says of a projection.
void StoreDatum(BGeoReference& reference, const KapHeader& header, const BString& file,
                OnFailure on_failure) {
    if (header.datum.empty()) return;
    BString datum(header.datum);
    datum.Trim();
    PlainNames tried = LatLong(datum);
    const CoordSysTexts texts = {
        kSource, kSource,
        [&tried](const BString& message) {
            return BString::Format(
                "BRefKAP::Read could not read Coordinate System { %ls, %ls, %ls } ERROR (%ls).",
                tried.projection, tried.datum, tried.units, message);
        },
        [&file] { return BString::Format("Could not parse KAP Datum in File <%ls>", file); }};
    const auto look_up_fallback = [&] {
        tried = LatLong(kFallbackDatum);
        return LookUp(tried);
    };
    auto system = FindCoordSys(
        [&] {
            auto found = LookUp(tried);
            return found.IsEmpty() && datum != BString(kFallbackDatum) ? look_up_fallback() : found;
        },
        on_failure, texts);
    // After a failure of the first look-up the fallback is still to be asked.
    if (system.IsEmpty() && tried.datum != BString(kFallbackDatum))
        system = FindCoordSys(look_up_fallback, on_failure, texts);
    if (!system.IsEmpty()) reference.SetCoordSys(system);
    ReadNotes* const notes = ReadNotes::Current();
    if (notes && !system.IsEmpty() && tried.datum != datum)
        notes->Add({.id = DiagnosticId::kSystemReplaced,
                    .text = "the chart's datum \"" + datum.StdStr() + "\" is unknown; " +
                            std::string(kFallbackDatum) + " takes its place",
                    .file = file,
                    .place = "KNP/GD"});
}

void NoteOrigins(const KapHeader& header, const BGeoReference& reference, const BString& file) {
    ReadNotes* const notes = ReadNotes::Explaining();
    if (!notes) return;
    const auto add = [&](const char* value, const std::string& lines, const char* record) {
        if (!lines.empty()) notes->AddOrigin(value, file, lines + " (" + record + ")");
    };
    add("size", LinePlace(header.size_line), "BSB RA");
    add("points", LinePlace(header.first_point_line, header.last_point_line), "REF");
    if (reference.HasCoordSys()) add("system", LinePlace(header.datum_line), "KNP GD");
}

void NoteFacts(const KapHeader& header, const BString& file) {
    ReadNotes* const notes = ReadNotes::Current();
    if (!notes) return;
    notes->SetStatedSize(header.width, header.height);
    header.dropped.Report(file);
    if (header.skew != 0.0 && header.points.empty())
        notes->Add({.id = DiagnosticId::kRotationNotRead,
                    .text = "the chart is turned by " + Tellurion::PrintShortest(header.skew) +
                            " degrees, which is not read",
                    .file = file,
                    .place = "KNP/SK"});
}

}  // namespace

bool BRefKAP::Read(const BString& file, BGeoReference& reference) {
    BFile in(file);
    if (!in.Open(EFileMode::Read, EFileMode::Text)) return false;
    const KapHeader header = ReadHeader(in);
    in.Close();
    LogIncompletePoints(file, header);
    NoteFacts(header, file);
    StorePoints(reference, header, OnFailure::GoOn);
    StoreDatum(reference, header, file, OnFailure::GoOn);
    NoteOrigins(header, reference, file);
    return header.has_data || !header.points.empty();
}

void BRefKAP::Read(const BString& file, const unsigned int& flags, BGeoReference& reference) {
    BFile in(file);
    if (!in.Open(EFileMode::Read, EFileMode::Text)) ThrowUnreadable(kSource, file);
    const KapHeader header = ReadHeader(in);
    in.Close();
    LogIncompletePoints(file, header);
    if (!header.has_data) return;
    const Strictness strictness(flags);
    StorePoints(reference, header, strictness.Transform());
    StoreDatum(reference, header, file, strictness.CoordSys());
    NoteOrigins(header, reference, file);
}

void BRefKAP::Write(const BString&, const BGeoReference&) {
    Refuse(kSaveRefusal);
}

void BRefKAP::Write(const BString&, const unsigned int&, const BGeoReference&) {
    Refuse(kSaveRefusal);
}

ReferenceFormat BRefKAP::Format() {
    return {
        .name = "KAP",
        .title = "BSB nautical chart header",
        .type = Tellurion::EReferenceType::KAP,
        .typed_read = [](const ReadCall& call) { Read(call.file, call.flags, call.reference); },
        .typed_save = [](const SaveCall& call) { Write(call.file, call.flags, call.reference); },
        .named_read = [](const ReadCall& call) { return Read(call.file, call.reference); },
        .refuses_save = true,
        .read_extensions = {Tellurion::REFERENCE_KAP_TAG.GetUnits()},
        .probe = {.rank = 4, .read = [](const ReadCall& call) { return Read(call.file, call.reference); }}};
}

}  // namespace MapAnchor

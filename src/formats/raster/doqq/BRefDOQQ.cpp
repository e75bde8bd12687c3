#include "raster/doqq/BRefDOQQ.h"

#include "common/policy/DiagnosticIds.h"
#include "common/policy/ReadNotes.h"
#include "common/policy/ReferenceFormat.h"

#include "common/files/PlainNames.h"
#include "raster/doqq/DoqHeader.h"

#include <Tellurion/ReferenceTags.h>

#include <iterator>
#include <string>

namespace MapAnchor {

using Tellurion::BGeoReference;
using Tellurion::BString;

namespace {

void NoteOrigins(const BString& file, const DoqHeader& header) {
    ReadNotes* const notes = ReadNotes::Explaining();
    if (!notes) return;
    const auto add = [&](const char* value, std::int64_t at) {
        if (at >= 0) notes->AddOrigin(value, file, BytePlace(static_cast<std::uint64_t>(at)));
    };
    notes->AddOrigin("system", file,
                     BytePlace(DoqHeader::kZoneAt) + " (the zone; the datum is fixed by the reader)");
    add("position", header.position_at);
    add("pixel size", header.pixel_size_at);
}

/// The system is on NAD27, whatever the header states; one that states another datum is misread.
void NoteDatum(const BString& file, const DoqHeader& header) {
    constexpr const char* kDatums[] = {"NAD27", "WGS72", "WGS84", "NAD83"};
    constexpr long kNad27 = 1;
    ReadNotes* const notes = ReadNotes::Current();
    if (!notes || header.datum == kNad27) return;
    const bool is_other = header.datum > kNad27 && header.datum <= static_cast<long>(std::size(kDatums));
    const std::string stated = is_other ? kDatums[header.datum - 1] : "";
    notes->Add({.id = DiagnosticId::kSystemReplaced,
                .severity = is_other ? BDiagnostic::ESeverity::Warning : BDiagnostic::ESeverity::Note,
                .text = is_other ? "the header states the datum " + stated +
                                       ", which is not read; NAD27 takes its place"
                                 : std::string("the header states no datum; it is read as NAD27"),
                .file = file,
                .offset = DoqHeader::kDatumAt});
}

}  // namespace

bool BRefDOQQ::Read(const BString& file, BGeoReference& reference) {
    Tellurion::RandomAccessFile in(file);
    if (!in.IsOpen()) return false;
    const DoqHeader header = ParseDoqHeader(in);
    NoteOrigins(file, header);
    StoreWhatThereIs(reference, header.ToAffine(), {"UTM-" + header.zone + "N", "NAD27", "METERS"},
                     "BRefDOQQ::Read Failure setting the BMathTransform or BCoordSys ERROR (%ls)");
    if (reference.HasCoordSys()) NoteDatum(file, header);
    return true;
}

void BRefDOQQ::Read(const BString&, const unsigned int&, BGeoReference&) {
    throw BGeoReferenceNotSupportedException("BrefDOQQ::Read", "This version of Read is not yet supported");
}

void BRefDOQQ::Write(const BString&, const BGeoReference&) {
    Refuse(kSaveRefusal);
}

void BRefDOQQ::Write(const BString&, const unsigned int&, const BGeoReference&) {
    Refuse(kSaveRefusal);
}

ReferenceFormat BRefDOQQ::Format() {
    return {.name = "DOQ",
            .title = "Digital orthophoto quadrangle header",
            .type = Tellurion::EReferenceType::DOQQ,
            .typed_read = [](const ReadCall& call) { Read(call.file, call.flags, call.reference); },
            .typed_save = [](const SaveCall& call) { Write(call.file, call.flags, call.reference); },
            .named_read = [](const ReadCall& call) { return Read(call.file, call.reference); },
            .refuses_typed_read = true,
            .refuses_save = true,
            .read_extensions = {Tellurion::REFERENCE_DOQ_TAG.GetUnits()}};
}

}  // namespace MapAnchor

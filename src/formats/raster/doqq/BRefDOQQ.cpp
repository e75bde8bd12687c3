#include "raster/doqq/BRefDOQQ.h"

#include "common/DiagnosticIds.h"
#include "common/ReadNotes.h"
#include "common/ReferenceFormat.h"

#include "common/PlainNames.h"
#include "raster/doqq/DoqHeader.h"

#include <Tellurion/ReferenceTags.h>

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

}  // namespace

bool BRefDOQQ::Read(const BString& file, BGeoReference& reference) {
    Tellurion::RandomAccessFile in(file);
    if (!in.IsOpen()) return false;
    const DoqHeader header = ParseDoqHeader(in);
    if (ReadNotes* const notes = ReadNotes::Current())
        notes->Add({.id = DiagnosticId::kSystemReplaced,
                    .text = "the datum is taken for NAD27 and the zone " + header.zone +
                            " for one of the northern hemisphere, whatever the header states",
                    .file = file,
                    .offset = DoqHeader::kZoneAt});
    NoteOrigins(file, header);
    StoreWhatThereIs(reference, header.ToAffine(), {"UTM-" + header.zone + "N", "NAD27", "METERS"},
                     "BRefDOQQ::Read Failure setting the BMathTransform or BCoordSys ERROR (%ls)");
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

#include "sidecar/wld/BRefWLD.h"

#include "common/policy/ReferenceFormat.h"

#include "common/files/InputFile.h"
#include "common/files/OutputFile.h"
#include "common/policy/DiagnosticIds.h"
#include "common/policy/ReadNotes.h"
#include "common/policy/Strictness.h"
#include "common/storing/StoreTransform.h"
#include "sidecar/wld/WorldFile.h"

#include <MapAnchor/BGeoReferenceInvalidReferenceFileException.h>
#include <MapAnchor/BGeoReferenceInvalidTransformException.h>
#include <MapAnchor/BGeoReferenceWriteException.h>
#include <Tellurion/BFile.h>
#include <Tellurion/BFileUtilities.h>
#include <Tellurion/BLogger.h>
#include <Tellurion/ReferenceTags.h>

#include <cmath>

namespace MapAnchor {

using Tellurion::BCoordSys;
using Tellurion::BException;
using Tellurion::BFile;
using Tellurion::BFileUtilities;
using Tellurion::BGeoReference;
using Tellurion::BLogger;
using Tellurion::BString;
using Tellurion::EFileMode;
using Tellurion::ELogSeverity;

namespace {

constexpr const char* kReadSource = "BRefWLD::Read";
constexpr const char* kWriteSource = "BRefWLD::Write";
constexpr FailureTexts kWriteTexts = {.source = kWriteSource, .file_kind = "WLD"};

constexpr FailureTexts kReadTexts = {
    .source = kReadSource,
    .affine_terms_line = "BRefWLD::Read Failed creating Affine(%f %f %f %f %f %f) ERROR (%ls)"};

/// Below this a term counts as zero when read tolerantly; the read by type accepts
/// exact zeros alone.
constexpr double kLooseZero = 1e-7;

bool IsLooseZero(double term) {
    return std::fabs(term) < kLooseZero;
}
bool IsExactZero(double term) {
    return term == 0.0;
}

/// A pixel needs a size: lines 1 and 4, or by way of a quarter turn lines 2 and 3.
template <class IsZero>
bool HasExtent(const WorldFile& world_file, IsZero is_zero) {
    const auto& line = world_file.line;
    if ((!is_zero(line[0]) && !is_zero(line[3])) || (!is_zero(line[1]) && !is_zero(line[2]))) return true;
    BLogger::Instance()->WriteLine(ELogSeverity::Error, "BRefWLD::Read Failure A & E (or B & C) are zero!");
    if (ReadNotes* const notes = ReadNotes::Current())
        notes->Add({.id = DiagnosticId::kScaleZero,
                    .text = "the pixel size of the world file is zero: lines 1 and 4 or lines 2 and 3",
                    .line = 1});
    return false;
}

void NoteOrigins(const BString& file) {
    ReadNotes* const notes = ReadNotes::Explaining();
    if (!notes) return;
    notes->AddOrigin("pixel size", file, "lines 1 and 4");
    notes->AddOrigin("rotation", file, "lines 2 and 3");
    notes->AddOrigin("position", file, "lines 5 and 6");
}

BString PrjBeside(const BString& file) {
    return BFileUtilities::ChangeExtension(file, "prj");
}

/// Whatever is wrong with the prj file, the world file is still read.
void ReadPrjBeside(const BString& file, BGeoReference& reference) {
    try {
        const BString prj = PrjBeside(file);
        BCoordSys* const coord_sys = BCoordSys::FromFile(prj);
        if (!coord_sys) return;
        reference.SetCoordSys(Tellurion::BSharedPtr<BCoordSys>(coord_sys));
        if (ReadNotes* const notes = ReadNotes::Current()) notes->files.push_back(prj);
        if (ReadNotes* const notes = ReadNotes::Explaining()) notes->AddOrigin("system", prj, LinePlace(1));
    } catch (...) {
    }
}

void WritePrjBeside(const BString& file, const BGeoReference& reference) {
    try {
        if (reference.HasCoordSys()) reference.CoordSys->ToFile(PrjBeside(file));
    } catch (...) {
    }
}

AffineTerms GetAffine(const BGeoReference& reference) {
    AffineTerms t;
    reference.MathTransform->GetAffineParameters(t.a, t.b, t.c, t.d, t.e, t.f);
    return t;
}

/// Without strictness a transform that is not affine gives zeros.
AffineTerms GetAffine(const BGeoReference& reference, const BString& file, OnFailure on_failure) {
    try {
        return GetAffine(reference);
    } catch (const BException& error) {
        if (on_failure == OnFailure::GoOn) return {};
        throw BGeoReferenceInvalidTransformException(
            kWriteSource, BString::Format("Can't write WLD file <%ls>, Exception thrown trying to get Affine "
                                          "Parameters : %ls.",
                                          file, error.GetDetailedMessage()));
    }
}

bool WriteLines(OutputFile& out, const AffineTerms& terms) {
    out.Write(FormatWorldFile(WorldFile::FromAffine(terms)));
    return true;
}

bool HasTransformToWrite(const BGeoReference& reference) {
    if (reference.HasMathTransform()) return true;
    BLogger::Instance()->WriteLine(ELogSeverity::Error,
                                   "BRefWLD::Write Reference type requires valid MathTransform.");
    return false;
}

}  // namespace

bool BRefWLD::Read(const BString& file, BGeoReference& reference) {
    BFile in(file);
    if (!in.Open(EFileMode::Read, EFileMode::Text)) return false;
    const WorldFile world_file = ParseWorldFile(in);
    in.Close();
    if (!world_file.IsComplete()) return false;
    const bool stored = HasExtent(world_file, IsLooseZero) &&
                        StoreAffine(reference, world_file.ToAffine(), OnFailure::GoOn, kReadTexts);
    if (stored) NoteOrigins(file);
    ReadPrjBeside(file, reference);
    return stored;
}

void BRefWLD::Read(const BString& file, const unsigned int& flags, BGeoReference& reference) {
    BFile in(file);
    if (!in.Open(EFileMode::Read, EFileMode::Text)) ThrowUnreadable(kReadSource, file);
    const WorldFile world_file = ParseWorldFile(in);
    in.Close();
    if (!world_file.IsComplete())
        throw BGeoReferenceInvalidReferenceFileException(
            kReadSource,
            BString::Format("File <%ls> is an invalid WLD file.  World files require 6 lines that "
                            "define an Affine transform, line (%d) is empty",
                            file, world_file.lines_read + 1));
    if (!HasExtent(world_file, IsExactZero))
        throw BGeoReferenceInvalidReferenceFileException(
            kReadSource,
            BString::Format("File <%ls> is an invalid WLD file.  A & E (or B & C) are zero", file));
    StoreAffine(reference, world_file.ToAffine(), Strictness(flags).Transform(), kReadTexts);
    NoteOrigins(file);
}

bool BRefWLD::Write(const BString& file, const BGeoReference& reference) {
    if (!HasTransformToWrite(reference)) return false;
    AffineTerms terms;
    try {
        terms = GetAffine(reference);
    } catch (...) {
        throw BGeoReferenceWriteException(kWriteSource,
                                          "Couldn't determine the Affine Referencing Parameters");
    }
    OutputFile out(file, kWriteTexts);
    out.OpenOrThrow("WLD write could not open file");
    out.Save([&] { return WriteLines(out, terms); });
    WritePrjBeside(file, reference);
    return true;
}

void BRefWLD::Write(const BString& file, const unsigned int& flags, const BGeoReference& reference) {
    if (!HasTransformToWrite(reference)) return;
    OutputFile out(file, kWriteTexts);
    out.OpenOrThrow(BString::Format("Couldn't open WLD file <%ls> for writing.", file));
    out.Save([&] { return WriteLines(out, GetAffine(reference, file, Strictness(flags).Transform())); });
}

ReferenceFormat BRefWLD::Format() {
    ReferenceFormat format{
        .name = "WLD",
        .title = "World file",
        .type = Tellurion::EReferenceType::WLD,
        .typed_read = [](const ReadCall& call) { Read(call.file, call.flags, call.reference); },
        .typed_save = [](const SaveCall& call) { Write(call.file, call.flags, call.reference); },
        .named_read = [](const ReadCall& call) { return Read(call.file, call.reference); },
        .named_save = [](const SaveCall& call) { return Write(call.file, call.reference); },
        .read_extensions = {Tellurion::REFERENCE_WLD_TAG.GetUnits(), u".tifw", u".jgw", u".jpgw", u".pgw",
                            u".bpw", u".eww", u".sdw", u".wld", u".blw", u".gfw"},
        .probe = {.rank = 3, .read = [](const ReadCall& call) { return Read(call.file, call.reference); }},
        .sidecar = true,
        // In a prj file, which is not written by type.
        .coord_sys = Keeps::ByName,
        .rotation = true,
        .decimals = 12,
        .scale_decimals = 12};
    format.save_extensions = format.read_extensions;
    // Saved like the others, but not read by name: there the content decides.
    format.save_extensions.insert(format.save_extensions.end(), {u".j2w", u".kpw"});
    return format;
}

}  // namespace MapAnchor

#include "raster/adrg/BRefADRG.h"

#include "common/policy/ReferenceFormat.h"

#include "common/files/FileHead.h"
#include "common/files/InputFile.h"
#include "common/files/PlainNames.h"
#include "common/policy/ReadNotes.h"
#include "common/storing/FindCoordSys.h"
#include "common/storing/StoreTransform.h"
#include "raster/adrg/AdrgInfo.h"

#include <MapAnchor/BGeoReferenceInvalidReferenceFileException.h>
#include <Tellurion/BFileUtilities.h>
#include <Tellurion/BImage.h>

#include <algorithm>
#include <cstdint>
#include <optional>

namespace MapAnchor {

using Tellurion::BFile;
using Tellurion::BFileUtilities;
using Tellurion::BGeoReference;
using Tellurion::BString;
using Tellurion::EFileMode;

namespace {

constexpr const char* kSource = "BRefADRG::Read";
// The source of another format in what stands for a caught exception is meant: hosts know it so.
constexpr const char* kThrownSource = "BRefERS::Read";

/// The message about terms without an affine has always named the row's size without its sign.
AffineTerms WithoutSign(const AffineTerms& t) {
    return {t.a, t.b, t.c, t.d, -t.e, t.f};
}

constexpr FailureTexts kTexts = {
    .source = kSource,
    .replaced_source = kThrownSource,
    .affine_line = "BRefADRG::Read Failure setting the BMathTransform ERROR (%ls)"};

CoordSysTexts GetCoordSysTexts() {
    return {kSource, kThrownSource,
            [](const BString& message) {
                return BString::Format("BRefADRG::Read Failure setting the BCoordSys ERROR (%ls)", message);
            },
            [] { return BString("Failed to get the coordinate system LAT-LONG WGS84 METERS."); }};
}

PlainNames Wgs84() {
    return {"LAT-LONG", "WGS84", "METERS"};
}

/// Opens the general information file of an image and names it. The name in lower
/// case goes first; discs hold names in capitals, and some file systems care.
bool OpenBeside(const BString& image, BString& name, std::optional<BFile>& in) {
    constexpr std::size_t kEnding = 5;
    if (image.GetLength() <= kEnding) return in.emplace(name).Open(EFileMode::Read, EFileMode::Binary);
    const BString stem = image.Left(image.GetLength() - kEnding);
    name = stem + BString("1.gen");
    if (in.emplace(name).Open(EFileMode::Read, EFileMode::Binary)) return true;
    const BString capitals = stem + BString("1.GEN");
    if (!in.emplace(capitals).Open(EFileMode::Read, EFileMode::Binary)) return false;
    name = capitals;
    return true;
}

void NoteOrigins(const BString& file, const AdrgInfo& info) {
    constexpr std::size_t kCounts = 16;  // the two counts, of eight characters each
    ReadNotes* const notes = ReadNotes::Explaining();
    if (!notes) return;
    notes->AddOrigin("system", file, "fixed by the format");
    notes->AddOrigin("pixel size", file, BytePlace(info.values_at));
    notes->AddOrigin("position", file, BytePlace(info.values_at + kCounts));
}

/// What `in` says of `image`; nothing when less could be read than the file is long.
std::optional<AdrgInfo> ReadInfo(BFile& in, const BString& image) {
    const bool overview = BFileUtilities::GetExtension(image).ToLower() == BString(".ovr");
    const AdrgLayout layout = overview ? AdrgLayout::Overview : AdrgLayout::GeneralInformation;
    const std::string name = BFileUtilities::GetBasename(image).ToLower().StdStr();
    const auto whole = static_cast<std::size_t>(
        std::clamp<std::int64_t>(in.GetLength(), 0, static_cast<std::int64_t>(kLongestAdrgInfo)));
    FileHead head(in, whole);
    AdrgInfo info = ParseAdrgInfo(head.Bytes(), layout, name);
    while (info.fault != AdrgInfo::Fault::None && head.Grow())
        info = ParseAdrgInfo(head.Bytes(), layout, name);
    if (info.fault != AdrgInfo::Fault::None && head.Bytes().size() < whole) return std::nullopt;
    return info;
}

}  // namespace

bool BRefADRG::Read(const BString& file, BGeoReference& reference, BString& referenceFile) {
    std::optional<BFile> in;
    if (!OpenBeside(file, referenceFile, in)) return false;
    const std::optional<AdrgInfo> info = ReadInfo(*in, file);
    if (!info || info->fault != AdrgInfo::Fault::None) return false;
    NoteOrigins(referenceFile, *info);
    StoreWhatThereIs(reference, info->ToAffine(), Wgs84(),
                     "BRefADRG::Read Failure setting the BMathTransform or BCoordSys ERROR (%ls)");
    return true;
}

void BRefADRG::Read(const BString& file, const unsigned int& flags, BGeoReference& reference) {
    BFile in(file);
    if (!in.Open(EFileMode::Read, EFileMode::Binary)) ThrowUnreadable(kSource, file);
    const std::optional<AdrgInfo> info = ReadInfo(in, file);
    if (!info) return;
    if (info->fault == AdrgInfo::Fault::NoTag)
        throw BGeoReferenceInvalidReferenceFileException(kSource, "Missing ADRG tag.");
    if (info->fault == AdrgInfo::Fault::NoRecord)
        throw BGeoReferenceInvalidReferenceFileException(
            kSource, "Could not read the required values (such as Asz Bs).");
    const Strictness strictness(flags);
    const AffineTerms terms = info->ToAffine();
    const AffineTerms shown = WithoutSign(terms);
    StoreAffine(reference, terms, strictness.Transform(), kTexts, &shown);
    const auto system =
        FindCoordSys([] { return LookUp(Wgs84()); }, strictness.CoordSys(), GetCoordSysTexts());
    if (!system.IsEmpty()) reference.SetCoordSys(system);
}

void BRefADRG::Write(const BString&, const BGeoReference&) {
    Refuse(kSaveRefusal);
}

void BRefADRG::Write(const BString&, const unsigned int&, const BGeoReference&) {
    Refuse(kSaveRefusal);
}

ReferenceFormat BRefADRG::Format() {
    // The name of the file beside counts only when that file answered.
    const NamedRead read = [](const ReadCall& call) {
        BString used = *call.used_file;
        if (!Read(call.file, call.reference, used)) return false;
        *call.used_file = used;
        return true;
    };
    return {.name = "ADRG",
            .title = "ADRG distribution rectangle",
            .type = Tellurion::EReferenceType::Reserved,
            .probe = {.rank = 2, .may_be = Tellurion::BImage::CheckIfADRGReader, .read = read},
            .centre_anchored = true};
}

}  // namespace MapAnchor

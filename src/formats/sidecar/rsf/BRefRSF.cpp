#include "sidecar/rsf/BRefRSF.h"

#include "common/policy/ReferenceFormat.h"

#include "common/files/InputFile.h"
#include "common/files/OutputFile.h"
#include "common/points/PointsToWrite.h"
#include "common/points/StoreControlPoints.h"
#include "common/policy/ReadNotes.h"
#include "common/storing/FindCoordSys.h"
#include "lookups/CoordSysLookups.h"
#include "sidecar/rsf/RsfFile.h"

#include <MapAnchor/BGeoReferenceInvalidCoordSysException.h>
#include <MapAnchor/BGeoReferenceInvalidReferenceFileException.h>
#include <Tellurion/BCoordSysRepository.h>
#include <Tellurion/BLogger.h>
#include <Tellurion/ReferenceTags.h>

#include <utility>

namespace MapAnchor {

using Tellurion::BCoordSys;
using Tellurion::BCoordSysRepository;
using Tellurion::BFile;
using Tellurion::BGeoReference;
using Tellurion::BLogger;
using Tellurion::BPointPair;
using Tellurion::BSharedPtr;
using Tellurion::BString;
using Tellurion::EFileMode;
using Tellurion::ELogSeverity;
using Tellurion::EMathTransformType;

namespace {

constexpr const char* kReadSource = "BRefRSF::Read";
constexpr FailureTexts kReadTexts = {
    .source = kReadSource, .points_line = "BRefRSF::Read Failure setting the BMathTransform ERROR (%ls)"};
constexpr FailureTexts kWriteTexts = {
    .source = "BRefRSF::Write",
    .corners_detail = "Can't write RSF file <%ls>.  When generating GCP's an exception (%ls) was thrown.",
    .file_kind = "RSF"};

using Fault = RsfFile::Fault;

template <class... Args>
[[noreturn]] void ThrowInvalid(const char* format, const Args&... arguments) {
    throw BGeoReferenceInvalidReferenceFileException(kReadSource, BString::Format(format, arguments...));
}

void LogCountDiffers() {
    BLogger::Instance()->WriteLine(
        ELogSeverity::Error, "BRefRSF::Read # of points in the header differs from the # of points listed.");
}

/// The version is no matter yet.
void RequireGoodPoints(const BString& file, const RsfFile& rsf) {
    if (rsf.fault == Fault::NoHeader) ThrowInvalid("File <%ls> is empty.", file);
    if (rsf.fault == Fault::BadHeader)
        ThrowInvalid("Failed while trying to read the header (%ls)", rsf.faulty_line);
    if (rsf.count < 1)
        ThrowInvalid(
            "File <%ls> is an invalid RSF file.  We require at least 1 point, this file only has (%d).", file,
            rsf.count);
    if (rsf.fault == Fault::NoRow)
        ThrowInvalid("Failed while trying to read in the %d row of GCP's.", rsf.faulty_row);
    if (rsf.fault == Fault::BadRow) {
        BLogger::Instance()->WriteLine(
            ELogSeverity::Error, "BRefRSF::Read Failure parsing referencing points from the line : \"%ls\"",
            rsf.faulty_line);
        ThrowInvalid("Failed reading in the row (%d) of the GCP's.", rsf.faulty_row);
    }
    if (rsf.HoldsItsCount()) return;
    LogCountDiffers();
    // The numbers stand the wrong way about for the words; hosts know the text so.
    ThrowInvalid(
        "Number of GCP's in the file (%d) does not match the number indicated in the file header (%d).",
        rsf.count, rsf.points.size());
}

void RequireGoodBlock(const BString& file, const RsfFile& rsf) {
    if (rsf.version < 1 || rsf.version > 4)
        ThrowInvalid("File <%ls> is an invalid RSF file.  Version (%d) has to be between 1 & 4.", file,
                     rsf.version);
    if (rsf.version > 2 && !rsf.HasBlock()) ThrowInvalid("Could not load Version 3 coordinate system Tags");
    if (rsf.version == 4 && !rsf.has_mode) ThrowInvalid("Could not load Version 4 reference mod");
}

BSharedPtr<BCoordSys> FindByPlainNames(const RsfFile& rsf, OnFailure on_failure) {
    const BString& projection = rsf.block[1];
    const BString& datum = rsf.block[2];
    const BString& units = rsf.block[3];
    const auto log_line = [&](const BString& message) {
        return BString::Format(
            "BRefRSF::Read could not read Coordinate System { %ls, %ls, %ls } ERROR (%ls).", projection,
            datum, units, message);
    };
    const auto nothing_found = [&] {
        return BString::Format("Could not read in RSF version 3 Coordinate System strings %ls : %ls : %ls\n",
                               projection, datum, units);
    };
    const auto look_up = [&] {
        return BSharedPtr<BCoordSys>(
            BCoordSysRepository::Instance()->ReadCoordSysFromPlainTextStrings(projection, datum, units));
    };
    return FindCoordSys(look_up, on_failure, {kReadSource, kReadSource, log_line, nothing_found});
}

BSharedPtr<BCoordSys> FindByWkt(const RsfFile& rsf, OnFailure on_failure) {
    const auto log_line = [&](const BString& message) {
        return BString::Format("BRefRSF::Read could not read WKT string <%ls> ERROR (%ls).", rsf.wkt,
                               message);
    };
    const auto nothing_found = [&] { return BString::Format("Could not parse WKT string <%ls>", rsf.wkt); };
    const auto look_up = [&] {
        return BSharedPtr<BCoordSys>(BCoordSysRepository::Instance()->ReadCoordSysFromWKTString(rsf.wkt));
    };
    return FindCoordSys(look_up, on_failure, {kReadSource, kReadSource, log_line, nothing_found});
}

BSharedPtr<BCoordSys> FindSystem(const RsfFile& rsf, OnFailure on_failure) {
    if (rsf.version == 3 && rsf.HasBlock()) return FindByPlainNames(rsf, on_failure);
    if (rsf.version == 4 && !rsf.wkt.IsEmpty()) return FindByWkt(rsf, on_failure);
    return {};
}

void NoteOrigins(const BString& file, const RsfFile& rsf, bool has_system) {
    ReadNotes* const notes = ReadNotes::Explaining();
    if (!notes) return;
    constexpr long kLineOfRows = 2;
    const long block = rsf.LineOfBlock();
    const bool has_wkt = rsf.version == 4;
    const long wkt = block + static_cast<long>(RsfFile::kBlockLines) + 1;  // behind the line of the mode
    notes->AddOrigin("points", file, LinePlace(kLineOfRows, block - 1));
    if (has_system) notes->AddOrigin("system", file, has_wkt ? LinePlace(wkt) : LinePlace(block, block + 2));
}

bool HasPointsOrTransform(const std::vector<Tellurion::BPointPair>& points) {
    if (!points.empty()) return true;
    BLogger::Instance()->WriteLine(
        ELogSeverity::Error,
        "BRefRSF::Write Reference type requires valid Ground Control Points or a MathTransform to "
        "generate them.");
    return false;
}

BString WktOf(const BGeoReference& reference) {
    return reference.HasCoordSys() ? BuildCompoundWKT(reference) : BString();
}

}  // namespace

bool BRefRSF::Read(const BString& file, BGeoReference& reference, EMathTransformType mathType, long width,
                   long height) {
    BFile in(file);
    if (!in.Open(EFileMode::Read, EFileMode::Text)) return false;
    RsfFile rsf = ParseRsf(in, RsfPixels::AlsoFractions);
    in.Close();
    if (rsf.fault != Fault::None) return false;
    // Either of the two may be odd, but not both.
    const bool known_version = rsf.version >= 1 && rsf.version <= 4;
    if (!known_version && rsf.count < 1) return false;
    if (!rsf.HoldsItsCount()) {
        LogCountDiffers();
        return false;
    }
    rsf.dropped.Report(file);
    StoreControlPoints(reference, std::move(rsf.points), mathType, {width, height}, OnFailure::GoOn,
                       kReadTexts);
    const BSharedPtr<BCoordSys> system = FindSystem(rsf, OnFailure::GoOn);
    if (system) reference.SetCoordSys(system);
    NoteOrigins(file, rsf, !system.IsEmpty());
    return true;
}

void BRefRSF::Read(const BString& file, const unsigned int& flags, BGeoReference& reference,
                   EMathTransformType mathType, long width, long height) {
    BFile in(file);
    if (!in.Open(EFileMode::Read, EFileMode::Text)) ThrowUnreadable(kReadSource, file);
    RsfFile rsf = ParseRsf(in, RsfPixels::Whole);
    in.Close();
    const Strictness strictness(flags);
    RequireGoodPoints(file, rsf);
    StoreControlPoints(reference, std::move(rsf.points), mathType, {width, height}, strictness.Transform(),
                       kReadTexts);
    RequireGoodBlock(file, rsf);
    const BSharedPtr<BCoordSys> system = FindSystem(rsf, strictness.CoordSys());
    if (system && system->IsValid()) reference.SetCoordSys(system);
    NoteOrigins(file, rsf, system && system->IsValid());
}

bool BRefRSF::Write(const BString& file, const BGeoReference& reference, long width, long height) {
    OutputFile out(file, kWriteTexts);
    out.OpenOrThrow(BString::Format("Couldn't open RSF file <%ls> for writing.", file));
    return out.Save([&] {
        std::vector<BPointPair> corners;
        const auto& points = PointsToWrite(reference, {width, height}, corners);
        if (!HasPointsOrTransform(points)) return false;
        FormatRsfPoints(points, out.Pieces());
        out.Write(FormatRsfBlock(WktOf(reference)));
        return true;
    });
}

void BRefRSF::Write(const BString& file, const unsigned int& flags, const BGeoReference& reference,
                    long width, long height) {
    const Strictness strictness(flags);
    OutputFile out(file, kWriteTexts);
    out.OpenOrThrow(BString::Format("Couldn't open RSF file <%ls> for writing.", file));
    out.Save([&] {
        // Without points the file is written all the same, with none.
        std::vector<BPointPair> corners;
        FormatRsfPoints(
            PointsToWrite(reference, {width, height}, strictness.Transform(), file, kWriteTexts, corners),
            out.Pieces());
        const BString wkt = WktOf(reference);
        if (reference.HasCoordSys() && wkt.IsEmpty() && strictness.CoordSys() == OnFailure::Throw)
            throw BGeoReferenceInvalidCoordSysException(
                kWriteTexts.source, BString::Format("Couldn't generate a WKT string for CoordSys %ls.",
                                                    reference.CoordSys->GetName()));
        out.Write(FormatRsfBlock(wkt));
        return true;
    });
}

ReferenceFormat BRefRSF::Format() {
    return {
        .name = "RSF",
        .title = "Control point sidecar",
        .type = Tellurion::EReferenceType::RSF,
        .typed_read =
            [](const ReadCall& call) {
                Read(call.file, call.flags, call.reference, call.math_type, call.width, call.height);
            },
        .typed_save =
            [](const SaveCall& call) {
                Write(call.file, call.flags, call.reference, call.width, call.height);
            },
        .named_read =
            [](const ReadCall& call) {
                return Read(call.file, call.reference, call.math_type, call.width, call.height);
            },
        .named_save =
            [](const SaveCall& call) { return Write(call.file, call.reference, call.width, call.height); },
        .read_extensions = {Tellurion::REFERENCE_RSF_TAG.GetUnits()},
        .save_extensions = {Tellurion::REFERENCE_RSF_TAG.GetUnits()},
        .sidecar = true,
        .coord_sys = Keeps::Always,
        .vertical_unit = Keeps::Always,
        .rotation = true,
        .points = true,
        .disabled_points = true,
        .point_names = true,
        .point_heights = true,
        .datum_shift = true,
        .decimals = 15,
        .needs_size = true};
}

}  // namespace MapAnchor

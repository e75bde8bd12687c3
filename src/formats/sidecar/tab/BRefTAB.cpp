#include "sidecar/tab/BRefTAB.h"

#include "common/policy/ReferenceFormat.h"

#include "common/files/InputFile.h"
#include "common/files/OutputFile.h"
#include "common/points/PointsToWrite.h"
#include "common/points/StoreControlPoints.h"
#include "common/policy/ReadNotes.h"
#include "common/storing/FindCoordSys.h"
#include "sidecar/tab/TabFile.h"

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

constexpr const char* kReadSource = "BRefTAB::Read";
constexpr FailureTexts kReadTexts = {
    .source = kReadSource, .points_line = "BRefTAB::Read Failure setting the BMathTransform ERROR (%ls)"};
constexpr FailureTexts kWriteTexts = {
    .source = "BRefTAB::Write",
    .corners_detail = "Can't write TAB file <%ls>.  When generating GCP's an exception (%ls) was thrown.",
    .file_kind = "TAB"};

/// Which systems of a clause are taken.
enum class Systems { All, ValidOnly };

BSharedPtr<BCoordSys> FindSystem(const BString& file, Systems systems, OnFailure on_failure) {
    const auto look_up = [&] {
        BSharedPtr<BCoordSys> system(BCoordSysRepository::Instance()->ReadCoordSysFromFile(file));
        const bool dropped = system && systems == Systems::ValidOnly && !system->IsValid();
        return dropped ? BSharedPtr<BCoordSys>() : system;
    };
    const auto log_line = [&](const BString& message) {
        return BString::Format("BRefTAB::Read could not read Coordinate System from file <%ls> ERROR (%ls).",
                               file, message);
    };
    const auto nothing_found = [&] {
        return BString::Format("Could not parse TAB MIF clause in File <%ls>", file);
    };
    // The source of a clause's own failure has been spelled so from the beginning.
    return FindCoordSys(look_up, on_failure, {kReadSource, "BRefTab::Read", log_line, nothing_found});
}

void NoteOrigins(const BString& file, const TabFile& tab, bool has_system) {
    ReadNotes* const notes = ReadNotes::Explaining();
    if (!notes) return;
    notes->AddOrigin("points", file, LinePlace(tab.first_point_line, tab.last_point_line));
    if (has_system) notes->AddOrigin("system", file, LinePlace(tab.clause_line));
}

bool HasPointsOrTransform(const std::vector<Tellurion::BPointPair>& points) {
    if (!points.empty()) return true;
    BLogger::Instance()->WriteLine(
        ELogSeverity::Error,
        "BRefTAB::Write Reference type requires valid Ground Control Points or a MathTransform to "
        "generate them.");
    return false;
}

BString ClauseOf(const BGeoReference& reference) {
    if (!reference.HasCoordSys()) return kDefaultTabClause;
    return BCoordSysRepository::Instance()->WriteCoordSysToMIFString(*reference.CoordSys);
}

}  // namespace

bool BRefTAB::Read(const BString& file, BGeoReference& reference, EMathTransformType mathType, long width,
                   long height) {
    BFile in(file);
    if (!in.Open(EFileMode::Read, EFileMode::Text)) return false;
    TabFile tab = ParseTab(in);
    in.Close();
    if (!tab.IsRaster()) return false;
    const BSharedPtr<BCoordSys> system = FindSystem(file, Systems::All, OnFailure::GoOn);
    if (system) reference.SetCoordSys(system);
    NoteOrigins(file, tab, !system.IsEmpty());
    tab.dropped.Report(file);
    if (tab.points.empty()) return !system.IsEmpty();
    StoreControlPoints(reference, std::move(tab.points), mathType, {width, height}, OnFailure::GoOn,
                       kReadTexts);
    return true;
}

void BRefTAB::Read(const BString& file, const unsigned int& flags, BGeoReference& reference,
                   EMathTransformType mathType, long width, long height) {
    BFile in(file);
    if (!in.Open(EFileMode::Read, EFileMode::Text)) ThrowUnreadable(kReadSource, file);
    TabFile tab = ParseTab(in);
    in.Close();
    if (!tab.IsRaster())
        throw BGeoReferenceInvalidReferenceFileException(
            kReadSource,
            BString::Format("File <%ls> is an invalid TAB file.  It must have a \"!table\" and be Type "
                            "\"RASTER\".",
                            file));
    const Strictness strictness(flags);
    const BSharedPtr<BCoordSys> system = FindSystem(file, Systems::ValidOnly, strictness.CoordSys());
    if (system) reference.SetCoordSys(system);
    NoteOrigins(file, tab, !system.IsEmpty());
    tab.dropped.Report(file);
    if (!tab.points.empty())
        StoreControlPoints(reference, std::move(tab.points), mathType, {width, height},
                           strictness.Transform(), kReadTexts);
}

bool BRefTAB::Write(const BString& file, const BGeoReference& reference, long width, long height,
                    const BString& imageName) {
    OutputFile out(file, kWriteTexts);
    out.OpenOrThrow("TAB write could not open file");
    return out.Save([&] {
        std::vector<BPointPair> corners;
        const auto& points = PointsToWrite(reference, {width, height}, corners);
        if (!HasPointsOrTransform(points)) return false;
        FormatTab(points, imageName, out.Pieces());
        const BString clause = ClauseOf(reference);
        if (clause.IsEmpty())
            BLogger::Instance()->WriteLine(
                ELogSeverity::Error,
                "BRefTAB::Write Failed to generate valid MIF CoordSys clause, using Default");
        out.Write(clause.IsEmpty() ? BString(kDefaultTabClause) : clause);
        return true;
    });
}

void BRefTAB::Write(const BString& file, const unsigned int& flags, const BGeoReference& reference,
                    long width, long height, const BString& imageName) {
    const Strictness strictness(flags);
    OutputFile out(file, kWriteTexts);
    out.OpenOrThrow(BString::Format("Couldn't open TAB file <%ls> for writing.", file));
    out.Save([&] {
        std::vector<BPointPair> corners;
        const auto& points =
            PointsToWrite(reference, {width, height}, strictness.Transform(), file, kWriteTexts, corners);
        if (points.empty())
            // This one has always named the other format as its source.
            throw BGeoReferenceInvalidReferenceFileException(
                "BRefRSF::Write",
                BString::Format("Can't generate a valid TAB file <%ls>.  We require at least 1 point, this "
                                "reference only has (%d).",
                                file, points.size()));
        FormatTab(points, imageName, out.Pieces());
        const BString clause = ClauseOf(reference);
        if (clause.IsEmpty() && strictness.CoordSys() == OnFailure::Throw)
            throw BGeoReferenceInvalidCoordSysException(
                kWriteTexts.source, BString::Format("Couldn't generate a MIF clause for CoordSys %ls.",
                                                    reference.CoordSys->GetName()));
        out.Write(clause.IsEmpty() ? BString(kDefaultTabClause) : clause);
        return true;
    });
}

ReferenceFormat BRefTAB::Format() {
    return {.name = "TAB",
            .title = "MapInfo TAB raster registration",
            .type = Tellurion::EReferenceType::TAB,
            .typed_read =
                [](const ReadCall& call) {
                    Read(call.file, call.flags, call.reference, call.math_type, call.width, call.height);
                },
            .typed_save =
                [](const SaveCall& call) {
                    Write(call.file, call.flags, call.reference, call.width, call.height, call.image_name);
                },
            .named_read =
                [](const ReadCall& call) {
                    return Read(call.file, call.reference, call.math_type, call.width, call.height);
                },
            .named_save =
                [](const SaveCall& call) {
                    return Write(call.file, call.reference, call.width, call.height, call.image_name);
                },
            .read_extensions = {Tellurion::REFERENCE_TAB_TAG.GetUnits()},
            .save_extensions = {Tellurion::REFERENCE_TAB_TAG.GetUnits()},
            .sidecar = true,
            .coord_sys = Keeps::Always,
            .rotation = true,
            .points = true,
            .point_names = true,
            .datum_shift = true,
            .decimals = 11,
            .own_system_names = true,
            .needs_coord_sys = true,
            .needs_size = true,
            .names_image = true};
}

}  // namespace MapAnchor

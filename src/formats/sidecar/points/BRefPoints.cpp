#include "sidecar/points/BRefPoints.h"

#include "common/files/OutputFile.h"
#include "common/points/ExactPoints.h"
#include "common/points/PointsToWrite.h"
#include "common/points/StoreControlPoints.h"
#include "common/policy/DiagnosticIds.h"
#include "common/policy/ReadNotes.h"
#include "common/policy/ReferenceFormat.h"
#include "common/storing/FindCoordSys.h"
#include "sidecar/points/PointTable.h"

#include <MapAnchor/BGeoReferenceWriteException.h>

namespace MapAnchor {

using Tellurion::BControlPoint;
using Tellurion::BCoordSys;
using Tellurion::BGeoReference;
using Tellurion::BParamList;
using Tellurion::BPointPair;
using Tellurion::BSharedPtr;
using Tellurion::BString;
using Tellurion::EMathTransformType;

namespace {

constexpr const char* kReadSource = "BRefPoints::Read";
constexpr FailureTexts kReadTexts = {.source = kReadSource,
                                     .points_line = "BRefPoints::Read no transform fits the points: %ls"};
constexpr FailureTexts kWriteTexts = {
    .source = "BRefPoints::Write",
    .corners_detail = "File <%ls> is not written: its corners have no position (%ls).",
    .file_kind = "points"};

PointTable Parse(const BString& file) {
    try {
        PointTable table = ParsePointTable(PointFileContent(file, kReadSource), {}, {});
        if (table.Points.empty()) ThrowNoPoints(file, kReadSource);
        return table;
    } catch (const PointFault& fault) {
        ThrowPointFault(file, fault, kReadSource);
    }
}

BSharedPtr<BCoordSys> FindSystem(const BString& file, const BString& text, OnFailure on_failure) {
    if (text.IsEmpty()) return {};
    const auto nothing_found = [&] {
        return BString::Format("File <%ls> names an unknown coordinate system: %ls", file, text);
    };
    const auto log_line = [&](const BString& message) {
        return BString::Format("%ls (%ls)", nothing_found(), message);
    };
    const auto look_up = [&] { return BSharedPtr<BCoordSys>(BCoordSys::FromText(text)); };
    return FindCoordSys(look_up, on_failure, {kReadSource, kReadSource, log_line, nothing_found});
}

void Note(const BString& file, const PointTable& table, bool has_system) {
    ReadNotes* const notes = ReadNotes::Current();
    if (!notes) return;
    notes->exact_points = table.Points;
    for (const BString& warning : table.Warnings)
        notes->Add({.id = DiagnosticId::kReadRemark, .text = warning, .file = file});
    if (!ReadNotes::Explaining()) return;
    notes->AddOrigin("points", file, "table");
    if (has_system) notes->AddOrigin("system", file, "line #CRS");
}

/// In the words of the table before where it means the same system, else by its code where it has one,
/// and in one line otherwise.
BString TextOf(const BGeoReference& reference, const BParamList* params) {
    if (!reference.HasCoordSys()) return {};
    const BString before = params ? params->GetString(BRefPoints::kSystem, BString()) : BString();
    if (!before.IsEmpty()) {
        const BSharedPtr<BCoordSys> system(BCoordSys::FromText(before));
        if (system && system->IsSame(*reference.CoordSys)) return before;
    }
    const BString code = reference.CoordSys->ToEPSGCode();
    return code.IsEmpty() ? reference.CoordSys->ToWholeWKT() : code;
}

}  // namespace

void BRefPoints::Read(const BString& file, const unsigned int& flags, BGeoReference& reference,
                      EMathTransformType mathType, long width, long height) {
    const PointTable table = Parse(file);
    const Strictness strictness(flags);
    StoreExactPoints(reference, table.Points, mathType, {width, height}, strictness.Transform(), kReadTexts);
    const BSharedPtr<BCoordSys> system = FindSystem(file, table.CoordSys, strictness.CoordSys());
    if (system) reference.SetCoordSys(system);
    Note(file, table, !system.IsEmpty());
}

void BRefPoints::Write(const BString& file, const unsigned int& flags, const BGeoReference& reference,
                       long width, long height, const BParamList* params) {
    std::vector<BPointPair> corners;
    const auto& pairs =
        PointsToWrite(reference, {width, height}, Strictness(flags).Transform(), file, kWriteTexts, corners);
    if (pairs.empty())
        throw BGeoReferenceWriteException(
            kWriteTexts.source,
            BString::Format("File <%ls> is not written: the reference has no control points, and the corners "
                            "that stand for them need a transform and the raster's size.",
                            file));
    const std::string text =
        FormatQgisPoints({.Points = ExactPoints::Of(pairs),
                          .CoordSys = TextOf(reference, params),
                          .OldHeader = params && params->GetInteger(kOldHeader, 0) != 0});
    OutputFile out(file, kWriteTexts);
    out.OpenOrThrow(BString::Format("Couldn't open points file <%ls> for writing.", file));
    out.Save([&] {
        out.Write(BString(text));
        return true;
    });
}

ReferenceFormat BRefPoints::Format() {
    return {.name = "POINTS",
            .title = "Control points of QGIS",
            .type = Tellurion::EReferenceType::Points,
            .typed_read =
                [](const ReadCall& call) {
                    Read(call.file, call.flags, call.reference, call.math_type, call.width, call.height);
                },
            .typed_save =
                [](const SaveCall& call) {
                    Write(call.file, call.flags, call.reference, call.width, call.height, call.params);
                },
            .typed_extensions = {u".points"},
            .sidecar = true,
            .coord_sys = Keeps::Always,
            .rotation = true,
            .points = true,
            .point_fractions = true,
            .disabled_points = true,
            .datum_shift = true,
            .needs_size = true};
}

}  // namespace MapAnchor

#include "raster/cadrg/BRefCADRG.h"

#include "common/policy/DiagnosticIds.h"
#include "common/policy/ReadNotes.h"
#include "common/policy/ReferenceFormat.h"

#include "common/files/InputFile.h"
#include "common/files/PlainNames.h"
#include "common/storing/FindCoordSys.h"
#include "common/storing/StoreTransform.h"
#include "raster/cadrg/CadrgFrame.h"

#include <MapAnchor/BGeoReferenceInvalidReferenceFileException.h>
#include <Tellurion/BImage.h>
#include <Tellurion/Numbers.h>

#include <cmath>

namespace MapAnchor {

using Tellurion::BGeoReference;
using Tellurion::BString;

namespace {

constexpr const char* kSource = "BRefCADRG::Read";

constexpr FailureTexts kTexts = {
    .source = kSource,
    .affine_terms_line = "BRefCADRG::Read Failed creating Affine(%f %f %f %f %f %f) ERROR (%ls)"};

CoordSysTexts GetCoordSysTexts() {
    return {kSource, kSource,
            [](const BString& message) {
                return BString::Format("BRefCADRG::Read Failure setting the coordinate system ERROR (%ls)",
                                       message);
            },
            [] { return BString("Failure setting the coordinate system."); }};
}

PlainNames Wgs84() {
    return {"LAT-LONG", "WGS84", "METERS"};
}

/// What is wrong with the frame; null for nothing.
const char* FaultOf(const CadrgFrame& frame) {
    switch (frame.fault) {
        case CadrgFrame::Fault::EndOfHeader:
            return "Could not index to the end of the Header.";
        case CadrgFrame::Fault::LocationSection:
            return "Could not index to the File Location Section.";
        case CadrgFrame::Fault::ComponentTable:
            return "Could not index to the Component Location Section.";
        case CadrgFrame::Fault::TableSize:
            return "Could not read the entire Component section.";
        case CadrgFrame::Fault::NoCoverage:
            return "Coverage Section not found.";
        case CadrgFrame::Fault::None:
            break;
    }
    if (!frame.coverage.IsOnGlobe()) return "Coverage area in invalid (outside of +-90 +-180).";
    if (!frame.coverage.HasExtent()) return "Invalid Coverage area.";
    return nullptr;
}

constexpr double kRows = 1536.0;  // and as many columns

bool IsRectangle(const CadrgCoverage& c) {
    constexpr double kLevel = 1e-6;
    return std::fabs(c.nw_latitude - c.ne_latitude) < kLevel &&
           std::fabs(c.sw_latitude - c.se_latitude) < kLevel &&
           std::fabs(c.nw_longitude - c.sw_longitude) < kLevel &&
           std::fabs(c.ne_longitude - c.se_longitude) < kLevel;
}

/// A frame of a polar zone is not a rectangle of longitude and latitude; the affine meets its
/// north-west corner alone.
void NotePolarFrame(const BString& file, const CadrgCoverage& corners) {
    constexpr double kMetresPerDegree = 111195.08;
    const AffineTerms t = corners.ToAffine();
    const double edge = kRows - 0.5;  // the affine counts from the centre of the first pixel
    const double east = std::remainder(t.a * edge + t.c - corners.se_longitude, 360.0) *
                        std::cos(corners.se_latitude * std::acos(-1.0) / 180.0);
    const double north = t.e * edge + t.f - corners.se_latitude;
    ReadNotes::Current()->Add(
        {.id = DiagnosticId::kPolarFrame,
         .text = "the frame's corners are not a rectangle of longitude and latitude, as which it "
                 "is read; its south-east corner is off by " +
                 Tellurion::PrintFixed(std::hypot(east, north) * kMetresPerDegree / 1000.0, 1) + " km",
         .file = file});
}

/// How far the affine's worst corner is from the stated one, in pixels.
void NoteCornersApart(const BString& file, const CadrgFrame& frame) {
    constexpr double kNoticeable = 0.5;
    const CadrgCoverage& c = frame.coverage;
    const AffineTerms t = c.ToAffine();
    const double edge = kRows - 0.5;
    const double east = std::remainder(t.a * edge + t.c - c.se_longitude, 360.0) / t.a;
    const double north = (t.e * -0.5 + t.f - c.nw_latitude) / t.e;
    const double south = (t.e * edge + t.f - c.se_latitude) / t.e;
    const double worst = std::hypot(east, std::fmax(std::fabs(north), std::fabs(south)));
    if (!(worst > kNoticeable) || !std::isfinite(worst)) return;
    ReadNotes::Current()->Add({.id = DiagnosticId::kFrameCornersDiffer,
                               .text = "the frame's pixel size and its corners contradict each other: 1536 "
                                       "pixels end up to " +
                                       Tellurion::PrintFixed(worst, 2) +
                                       " px from the corners that it states, by which GDAL places it",
                               .file = file,
                               .offset = static_cast<long long>(frame.coverage_at)});
}

void NoteFrame(const BString& file, const CadrgFrame& frame) {
    ReadNotes* const notes = ReadNotes::Current();
    if (!notes) return;
    notes->SetStatedSize(static_cast<long>(kRows), static_cast<long>(kRows));
    if (IsRectangle(frame.coverage))
        NoteCornersApart(file, frame);
    else
        NotePolarFrame(file, frame.coverage);
}

void NoteOrigins(const BString& file, const CadrgFrame& frame) {
    constexpr std::uint64_t kIntervals = 80;  // behind the corners and two resolutions
    ReadNotes* const notes = ReadNotes::Explaining();
    if (!notes) return;
    notes->AddOrigin("system", file, "fixed by the format");
    notes->AddOrigin("position", file, BytePlace(frame.coverage_at) + " (coverage section)");
    notes->AddOrigin("pixel size", file, BytePlace(frame.coverage_at + kIntervals) + " (coverage section)");
}

}  // namespace

bool BRefCADRG::Read(const BString& file, BGeoReference& reference) {
    Tellurion::RandomAccessFile in(file);
    if (!in.IsOpen()) return false;
    const CadrgFrame frame = ParseCadrgFrame(in);
    if (FaultOf(frame)) return false;
    NoteFrame(file, frame);
    NoteOrigins(file, frame);
    StoreWhatThereIs(reference, frame.coverage.ToAffine(), Wgs84(),
                     "BRefCADRG::Read Failure setting the BGeoReference ERROR (%ls)");
    return true;
}

void BRefCADRG::Read(const BString& file, const unsigned int& flags, BGeoReference& reference) {
    Tellurion::RandomAccessFile in(file);
    if (!in.IsOpen()) ThrowUnreadable(kSource, file);
    const CadrgFrame frame = ParseCadrgFrame(in);
    if (const char* fault = FaultOf(frame))
        throw BGeoReferenceInvalidReferenceFileException(
            kSource, BString::Format("File <%ls> is an invalid CADRG file.  %s", file, fault));
    const Strictness strictness(flags);
    StoreAffine(reference, frame.coverage.ToAffine(), strictness.Transform(), kTexts);
    const auto system =
        FindCoordSys([] { return LookUp(Wgs84()); }, strictness.CoordSys(), GetCoordSysTexts());
    if (!system.IsEmpty()) reference.SetCoordSys(system);
}

void BRefCADRG::Write(const BString&, const BGeoReference&) {
    Refuse(kSaveRefusal);
}

void BRefCADRG::Write(const BString&, const unsigned int&, const BGeoReference&) {
    Refuse(kSaveRefusal);
}

ReferenceFormat BRefCADRG::Format() {
    return {.name = "CADRG",
            .title = "CADRG frame",
            .type = Tellurion::EReferenceType::Reserved,
            .probe = {.rank = 1,
                      .may_be = Tellurion::BImage::CheckIfCADRGReader,
                      .read = [](const ReadCall& call) { return Read(call.file, call.reference); }},
            .centre_anchored = true};
}

}  // namespace MapAnchor

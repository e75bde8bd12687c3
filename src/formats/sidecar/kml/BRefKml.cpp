#include "sidecar/kml/BRefKml.h"

#include "common/files/OutputFile.h"
#include "common/policy/DiagnosticIds.h"
#include "common/policy/ReadNotes.h"
#include "common/policy/ReferenceFormat.h"
#include "sidecar/kml/GroundOverlay.h"

#include <MapAnchor/BGeoReferenceInvalidReferenceFileException.h>
#include <MapAnchor/BGeoReferenceWriteException.h>
#include <Tellurion/BControlPoint.h>
#include <Tellurion/BFileUtilities.h>
#include <Tellurion/Numbers.h>

#include <cmath>

namespace MapAnchor {

using namespace Tellurion;

namespace {

constexpr const char* kReadSource = "BRefKml::Read";
constexpr FailureTexts kWriteTexts = {.source = "BRefKml::Write", .file_kind = "KML"};

[[noreturn]] void FailRead(const BString& file, const std::string& why) {
    throw BGeoReferenceInvalidReferenceFileException(
        kReadSource,
        BString::Format("File <%ls> cannot be read as a ground overlay: %ls.", file, BString(why)));
}

[[noreturn]] void RefuseWrite(const BString& file, const char* why) {
    throw BGeoReferenceWriteException(kWriteTexts.source,
                                      BString::Format("File <%ls> is not written: %s.", file, BString(why)));
}

std::vector<BControlPoint> PointsOf(const GroundOverlay& overlay, double width, double height) {
    std::vector<BControlPoint> points(overlay.corners.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        points[i].Column = i == 1 || i == 2 ? width : 0.0;
        points[i].Row = i >= 2 ? height : 0.0;
        points[i].World = BPoint(overlay.corners.at(i).longitude, overlay.corners.at(i).latitude, 0.0);
    }
    return points;
}

void WarnOfInterior(const BString& file, const GroundOverlay& overlay, const BGeoReference& reference,
                    long width, long height) {
    constexpr double kNoticeable = 0.001;
    ReadNotes* const notes = ReadNotes::Current();
    const double error = InteriorError(overlay, reference, width, height);
    if (!notes || error <= kNoticeable) return;
    notes->Add({.id = DiagnosticId::kLostFit,
                .text = BString("a KML overlay has its corners alone; inside, the raster is drawn " +
                                (std::isnan(error) ? std::string("an unknown distance")
                                                   : "up to " + PrintFixed(error, 3) + " pixels") +
                                " from its place"),
                .file = file});
}

}  // namespace

void BRefKml::Read(const BString& file, BGeoReference& reference, long width, long height) {
    GroundOverlay overlay;
    std::string fault;
    if (!ParseKml(file, overlay, fault)) FailRead(file, fault);
    if (width < 1 || height < 1)
        FailRead(file, "the corners are those of a raster whose size is not known; --size WxH gives it");
    const auto fit = overlay.is_box ? EMathTransformType::Affine : EMathTransformType::Projective;
    reference.SetMathTransform(BMathTransform::Fit(
        fit, PointsOf(overlay, static_cast<double>(width), static_cast<double>(height)), 0, 0));
    reference.SetCoordSys(BSharedPtr<BCoordSys>(BCoordSys::FromText("EPSG:4326")));
}

void BRefKml::Write(const BString& file, const BGeoReference& reference, long width, long height,
                    const BString& imageName) {
    if (!reference.HasMathTransform()) RefuseWrite(file, "the reference has no transform");
    if (!reference.HasCoordSys())
        RefuseWrite(file,
                    "KML is in longitude and latitude, and the reference has no coordinate system to "
                    "convert from; --assign-crs or --crs names it");
    if (width < 1 || height < 1)
        RefuseWrite(file,
                    "it states the corners of the raster, whose size is not known; --size WxH gives it");
    const GroundOverlay overlay = OverlayOf(reference, width, height);
    const std::string name = BFileUtilities::GetFileName(imageName.IsEmpty() ? file : imageName).StdStr();
    const std::string text = FormatKml(overlay, name, imageName.StdStr());
    OutputFile out(file, kWriteTexts);
    out.OpenOrThrow(BString::Format("Couldn't open KML file <%ls> for writing.", file));
    out.Save([&] {
        out.Write(BString(text));
        return true;
    });
    WarnOfInterior(file, overlay, reference, width, height);
}

ReferenceFormat BRefKml::Format() {
    return {
        .name = "KML",
        .title = "Ground overlay of KML",
        .type = EReferenceType::Kml,
        .typed_read = [](const ReadCall& call) { Read(call.file, call.reference, call.width, call.height); },
        .typed_save =
            [](const SaveCall& call) {
                Write(call.file, call.reference, call.width, call.height, call.image_name);
            },
        .typed_extensions = {u".kml"},
        .sidecar = true,
        .rotation = true,
        .widest_fit = EMathTransformType::Projective,  // through its corners
        .names_image = true};
}

}  // namespace MapAnchor

#include "sidecar/auxxml/BRefAuxXml.h"

#include "common/files/OutputFile.h"
#include "common/points/StoreControlPoints.h"
#include "common/policy/ReadNotes.h"
#include "common/policy/ReferenceFormat.h"
#include "common/storing/FindCoordSys.h"
#include "common/storing/StoreTransform.h"
#include "raster/gdal/AuxiliaryReference.h"
#include "sidecar/auxxml/AuxXmlText.h"

#include <MapAnchor/BGeoReferenceInvalidReferenceFileException.h>
#include <Tellurion/BCoordSysRepository.h>

namespace MapAnchor {

using namespace Tellurion;

namespace {

constexpr const char* kReadSource = "BRefAuxXml::Read";
constexpr FailureTexts kReadTexts = {.source = kReadSource,
                                     .affine_line = "BRefAuxXml::Read the transform is not usable: %ls",
                                     .points_line = "BRefAuxXml::Read no transform fits the points: %ls"};
constexpr FailureTexts kWriteTexts = {.source = "BRefAuxXml::Write", .file_kind = "auxiliary"};

BSharedPtr<BCoordSys> FindSystem(const BString& file, const BString& text, OnFailure on_failure) {
    const auto nothing_found = [&] {
        return BString::Format("File <%ls> names an unknown coordinate system: %ls", file, text);
    };
    const auto log_line = [&](const BString& message) {
        return BString::Format("%ls (%ls)", nothing_found(), message);
    };
    const auto look_up = [&] {
        return BSharedPtr<BCoordSys>(BCoordSysRepository::Instance()->ReadCoordSysFromWKTString(text));
    };
    return FindCoordSys(look_up, on_failure, {kReadSource, kReadSource, log_line, nothing_found});
}

}  // namespace

void BRefAuxXml::Read(const BString& file, const unsigned int& flags, BGeoReference& reference,
                      EMathTransformType mathType, long width, long height) {
    const std::optional<GdalReference> stated = ReadAuxiliaryReference(file);
    if (!stated)
        throw BGeoReferenceInvalidReferenceFileException(
            kReadSource,
            BString::Format("File <%ls> states no place: it has no SRS, GeoTransform or GCPList.", file));
    const Strictness strictness(flags);
    if (stated->terms)
        StoreAffine(reference, *stated->terms, strictness.Transform(), kReadTexts);
    else if (!stated->exact_points.empty())
        StoreExactPoints(reference, stated->exact_points, mathType, {width, height}, strictness.Transform(),
                         kReadTexts);
    if (ReadNotes* const notes = ReadNotes::Current()) notes->exact_points = stated->exact_points;
    for (const BString& text : stated->well_known_texts) {
        const BSharedPtr<BCoordSys> system = FindSystem(file, text, strictness.CoordSys());
        if (system.IsEmpty()) continue;
        reference.SetCoordSys(system);
        break;
    }
}

void BRefAuxXml::Write(const BString& file, const BGeoReference& reference) {
    const std::string text = TextOfAuxXml(file, reference);
    OutputFile out(file, kWriteTexts);
    out.OpenOrThrow(BString::Format("Couldn't open auxiliary file <%ls> for writing.", file));
    out.Save([&] {
        out.Write(BString(text));
        return true;
    });
}

ReferenceFormat BRefAuxXml::Format() {
    return {.name = "AUX",
            .title = "Auxiliary file of GDAL",
            .type = EReferenceType::AuxXml,
            .typed_read =
                [](const ReadCall& call) {
                    Read(call.file, call.flags, call.reference, call.math_type, call.width, call.height);
                },
            .typed_save = [](const SaveCall& call) { Write(call.file, call.reference); },
            .typed_extensions = {u".aux.xml"},
            .sidecar = true,
            .coord_sys = Keeps::Always,
            .vertical_unit = Keeps::Nothing,
            .rotation = true,
            .points = true,
            .point_fractions = true,
            .skips_disabled_points = true,
            .point_names = true,
            .point_heights = true,
            .min_points = 1,
            .datum_shift = true};
}

}  // namespace MapAnchor

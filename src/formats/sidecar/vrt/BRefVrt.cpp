#include "sidecar/vrt/BRefVrt.h"

#include "common/files/OutputFile.h"
#include "common/policy/ReferenceFormat.h"
#include "sidecar/vrt/VrtText.h"

#include <Tellurion/XmlText.h>

#include <MapAnchor/BGeoReferenceWriteException.h>

namespace MapAnchor {

using namespace Tellurion;

namespace {

constexpr FailureTexts kTexts = {.source = "BRefVrt::Write", .file_kind = "VRT"};

[[noreturn]] void Refuse(const BString& file, const std::string& why) {
    throw BGeoReferenceWriteException(kTexts.source,
                                      BString::Format("File <%ls> is not written: %ls.", file, BString(why)));
}

}  // namespace

void BRefVrt::Write(const BString& file, const BGeoReference& reference, const BString& imageName) {
    if (imageName.IsEmpty()) Refuse(file, "it wraps a raster, and none is named: --image NAME names it");
    if (XmlCharacters(imageName.StdStr()) != imageName.StdStr())
        Refuse(file, "the raster's name has characters that XML cannot have");
    if (!reference.HasMathTransform() && reference.PointPairVector.empty())
        Refuse(file, "the reference has neither control points nor a transform");
    const std::string text = TextOfVrt(file, reference, imageName);
    OutputFile out(file, kTexts);
    out.OpenOrThrow(BString::Format("Couldn't open VRT file <%ls> for writing.", file));
    out.Save([&] {
        out.Write(BString(text));
        return true;
    });
}

ReferenceFormat BRefVrt::Format() {
    return {.name = "VRT",
            .title = "Virtual raster of GDAL",
            .type = EReferenceType::Vrt,
            .typed_save = [](const SaveCall& call) { Write(call.file, call.reference, call.image_name); },
            .typed_extensions = {u".vrt"},
            .coord_sys = Keeps::Always,
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

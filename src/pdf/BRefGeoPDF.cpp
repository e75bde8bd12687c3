#include "BRefGeoPDF.h"

#include "common/policy/ReferenceFormat.h"

namespace MapAnchor {

ReferenceFormat BRefGeoPDF::Format() {
    return {.name = "PDF",
            .title = "Geospatial PDF",
            .type = Tellurion::EReferenceType::GeoPDF,
            // False is no failure by type: the reference says what there is, and the log
            // where a PDF that was not written is.
            .typed_read =
                [](const ReadCall& call) {
                    Read(call.file, call.flags, call.reference, call.math_type, call.width, call.height,
                         call.params);
                },
            .typed_save =
                [](const SaveCall& call) {
                    Write(call.file, call.reference, call.width, call.height, call.params);
                },
            .typed_extensions = {u".pdf"},
            .in_place = true,
            .coord_sys = Keeps::Always,
            .rotation = true,
            .points = true,
            .skips_disabled_points = true,
            .min_points = 4};
}

}  // namespace MapAnchor

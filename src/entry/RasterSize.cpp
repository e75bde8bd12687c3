#include "ReadingSteps.h"

#include "SidecarNames.h"
#include "raster/gdal/GdalReference.h"

#include <Tellurion/BFileUtilities.h>

namespace MapAnchor {

using Tellurion::BFileUtilities;
using Tellurion::BString;

void FindRasterSize(ReadingState& state) {
    const bool is_sidecar = state.kind && state.kind->sidecar;
    const bool is_named = is_sidecar && state.file == state.used_file;
    const BString raster = is_named     ? FindRasterBeside(state.used_file)
                           : is_sidecar ? state.file
                                        : state.used_file;
    if (raster.IsEmpty() || !ReadRasterSize(raster, state.width, state.height)) return;
    if (!state.explains) return;
    std::erase_if(state.origins, [](const auto& origin) { return origin.Value == BString("size"); });
    state.origins.push_back({"size", raster, "header of the raster"});
}

}  // namespace MapAnchor

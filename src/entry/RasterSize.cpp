#include "ReadingSteps.h"

#include "SidecarNames.h"
#include "raster/gdal/GdalReference.h"

#include <Tellurion/BFileUtilities.h>

namespace MapAnchor {

using Tellurion::BFileUtilities;
using Tellurion::BString;

void FindRasterSize(ReadingState& state) {
    const bool is_sidecar = state.kind && state.kind->sidecar;
    if (!is_sidecar) {
        ReadRasterSize(state.used_file, state.width, state.height);
        return;
    }
    const BString raster = state.file == state.used_file ? FindRasterBeside(state.used_file) : state.file;
    if (!raster.IsEmpty()) ReadRasterSize(raster, state.width, state.height);
}

}  // namespace MapAnchor

#include "ReadingSteps.h"

#include "SidecarNames.h"
#include "common/policy/DiagnosticIds.h"
#include "raster/gdal/GdalReference.h"

#include <Tellurion/BFileUtilities.h>
#include <Tellurion/BUnsupportedFileTypeException.h>

namespace MapAnchor {

namespace {

/// The size is more than was asked for, so that it may be missing where nothing reads the raster.
bool ReadSize(const Tellurion::BString& raster, ReadingState& state) {
    try {
        return ReadRasterSize(raster, state.width, state.height);
    } catch (const Tellurion::BUnsupportedFileTypeException& error) {
        state.Add({.id = DiagnosticId::kModuleMissing, .text = error.GetDetail().StdStr(), .file = raster});
        return false;
    }
}

}  // namespace

using Tellurion::BFileUtilities;
using Tellurion::BString;

void FindRasterSize(ReadingState& state) {
    const bool is_sidecar = state.kind && state.kind->sidecar;
    const bool is_named = is_sidecar && state.file == state.used_file;
    const BString raster = is_named     ? FindRasterBeside(state.used_file)
                           : is_sidecar ? state.file
                                        : state.used_file;
    if (raster.IsEmpty() || !ReadSize(raster, state)) return;
    if (!state.explains) return;
    std::erase_if(state.origins, [](const auto& origin) { return origin.Value == BString("size"); });
    state.origins.push_back({"size", raster, "header of the raster"});
}

}  // namespace MapAnchor

#include "ReadingSteps.h"

#include "raster/gdal/GdalReference.h"

#include <Tellurion/BFileUtilities.h>

#include <algorithm>
#include <iterator>
#include <string>

namespace MapAnchor {

using Tellurion::BFileUtilities;
using Tellurion::BString;

namespace {

constexpr const char* kRasterExtensions[] = {"tif", "TIF", "jpg", "JPG", "png",  "PNG",  "jp2", "JP2", "bmp",
                                             "BMP", "gif", "GIF", "img", "tiff", "jpeg", "kap", "KAP"};

bool HasRasterExtension(const BString& file) {
    const BString extension = BFileUtilities::GetExtension(file);
    return std::any_of(std::begin(kRasterExtensions), std::end(kRasterExtensions), [&](const char* known) {
        return extension == BString(std::string(".").append(known));
    });
}

}  // namespace

void FindRasterSize(ReadingState& state) {
    const bool is_sidecar = state.kind && state.kind->sidecar && !HasRasterExtension(state.used_file);
    if (!is_sidecar) {
        ReadRasterSize(state.used_file, state.width, state.height);
        return;
    }
    for (const char* extension : kRasterExtensions) {
        const BString raster = BFileUtilities::ChangeExtension(state.used_file, extension);
        if (BFileUtilities::Exists(raster) && ReadRasterSize(raster, state.width, state.height)) return;
    }
}

}  // namespace MapAnchor

// Rasters: bytes that begin as a TIFF, read by name and by type. What GDAL's
// other drivers make of bytes is not asked here: they may follow names of other files.

#include "ReferenceFuzz.h"

#include <cpl_error.h>
#include <gdal.h>

#include <cstring>

using namespace Tellurion;

namespace {

bool IsTiff(const std::uint8_t* data, std::size_t size) {
    return size >= 4 && (std::memcmp(data, "II", 2) == 0 || std::memcmp(data, "MM", 2) == 0);
}

/// Both reads share what is open here, which spares half the time.
GDALDatasetH OpenShared(const BString& file) {
    static const bool registered = (GDALAllRegister(), true);
    static_cast<void>(registered);
    CPLPushErrorHandler(CPLQuietErrorHandler);
    const GDALDatasetH raster = GDALOpenShared(file.Utf8(), GA_ReadOnly);
    CPLPopErrorHandler();
    return raster;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr unsigned int kStrict =
        MapAnchor::BMapAnchor::kStrictTransform | MapAnchor::BMapAnchor::kStrictCoordSys;
    static const fuzz::MemoryFile memory("tif");
    if (!IsTiff(data, size)) return -1;
    memory.Fill(data, size);
    const GDALDatasetH shared = OpenShared(memory.Path());
    fuzz::ReadByType(EReferenceType::GeoTIFF, memory.Path(), kStrict);
    BGeoReference reference;
    fuzz::ReadByName(memory.Path(), reference);
    if (shared) GDALClose(shared);
    return 0;
}

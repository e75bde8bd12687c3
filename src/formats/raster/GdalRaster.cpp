#include "raster/GdalRaster.h"

#include <mutex>

namespace MapAnchor {

using Tellurion::BString;

namespace {

/// Registering anew costs a look into the folder of plug-ins, so it is done only when
/// the host changed the list of drivers since.
void RegisterDrivers() {
    static std::mutex mutex;
    static int registered = 0;
    const std::lock_guard lock(mutex);
    if (registered > 0 && GDALGetDriverCount() == registered) return;
    GDALAllRegister();
    registered = GDALGetDriverCount();
}

}  // namespace

bool HasGdalDriver(const char* name) {
    RegisterDrivers();
    return GDALGetDriverByName(name) != nullptr;
}

GdalRaster OpenRaster(const BString& file) {
    RegisterDrivers();
    return GdalRaster(GDALDataset::FromHandle(GDALOpenShared(file.Utf8(), GA_ReadOnly)));
}

GdalRaster OpenRasterForUpdate(const BString& file) {
    RegisterDrivers();
    return GdalRaster(GDALDataset::FromHandle(GDALOpen(file.Utf8(), GA_Update)));
}

GdalRaster OpenAuxiliary(const BString& file, GDALDataset& raster) {
    return GdalRaster(GDALFindAssociatedAuxFile(file.Utf8(), GA_ReadOnly, &raster));
}

}  // namespace MapAnchor

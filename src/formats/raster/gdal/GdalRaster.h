#pragma once

#include "raster/gdal/ConfinedFiles.h"
#include "raster/gdal/HasGdalDriver.h"
#include "raster/gdal/RasterKinds.h"

#include <Tellurion/BString.h>

#include <gdal_priv.h>

#include <memory>

namespace MapAnchor {

/// Closes a dataset, and then the files that it saw.
struct GdalCloser {
    void operator()(GDALDataset* dataset) const noexcept { GDALClose(GDALDataset::ToHandle(dataset)); }
    std::shared_ptr<ConfinedFiles> files = {};
};
using GdalRaster = std::unique_ptr<GDALDataset, GdalCloser>;

/// Registers GDAL's drivers where they are not.
void RegisterDrivers();

/// Opens a raster for reading, together with the files beside it that belong to it: see
/// GdalDrivers and ConfinedFiles. Null when no driver knows it or it is not a regular file;
/// what was refused is logged. Registers GDAL's drivers where they are not.
///
/// A name that GDAL itself gives a meaning to, such as "/vsizip/maps.zip/a.tif", is the
/// user's word and goes to the same drivers as it is.
GdalRaster OpenRaster(const Tellurion::BString& file, RasterKinds kinds = RasterKinds::All,
                      Sidecars sidecars = Sidecars::Shown);

/// Opens a raster for writing, by the drivers that may read it. GDAL finds it under `name`,
/// which a layer of its file system may know alone.
GdalRaster OpenRasterForUpdate(const Tellurion::BString& file, const Tellurion::BString& name);
/// Opens it again for reading, by the same driver.
GdalRaster ReopenRaster(const char* driver, const Tellurion::BString& name);

/// The auxiliary file beside a raster, of the kind that holds what its format cannot;
/// null when there is none.
GdalRaster OpenAuxiliary(const GdalRaster& raster);

/// Logs what was refused of the files that a raster saw. False when it must not be used.
bool IsUsable(const GdalRaster& raster);

}  // namespace MapAnchor

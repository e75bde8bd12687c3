#pragma once

#include <Tellurion/BString.h>

#include <gdal_priv.h>

#include <memory>

namespace MapAnchor {

struct GdalCloser {
    void operator()(GDALDataset* dataset) const noexcept { GDALClose(GDALDataset::ToHandle(dataset)); }
};
using GdalRaster = std::unique_ptr<GDALDataset, GdalCloser>;

/// True when the installed GDAL has the driver of that name.
bool HasGdalDriver(const char* name);

/// Opens a raster for reading, or shares one that this thread has open already; null
/// when GDAL does not know it. Registers GDAL's drivers where they are not.
GdalRaster OpenRaster(const Tellurion::BString& file);

/// The same for writing, never shared.
GdalRaster OpenRasterForUpdate(const Tellurion::BString& file);

/// The auxiliary file beside a raster, of the kind that holds what its format cannot;
/// null when there is none.
GdalRaster OpenAuxiliary(const Tellurion::BString& file, GDALDataset& raster);

}  // namespace MapAnchor

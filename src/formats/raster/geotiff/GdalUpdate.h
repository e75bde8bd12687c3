#pragma once

#include "raster/gdal/GdalRaster.h"
#include "raster/geotiff/RasterState.h"
#include "raster/geotiff/StagedCommit.h"
#include "raster/geotiff/StagingFolder.h"

#include <Tellurion/BString.h>
#include <Tellurion/QuietGdal.h>

#include <optional>
#include <string>

namespace MapAnchor {

/// A raster that is open for writing. GDAL writes into memory (StagingFolder) and prints
/// nothing. Close() compares the result with what was set, by its directory or by opening it
/// once more, and only then changes the disk, in one step: whatever fails, and whenever the
/// process ends, the raster is the old one or the new one. Names that begin with "/vsi" are left to
/// GDAL: they may have no disk below them.
class GdalUpdate {
public:
    explicit GdalUpdate(const Tellurion::BString& file);
    ~GdalUpdate();
    GdalUpdate(const GdalUpdate&) = delete;
    GdalUpdate& operator=(const GdalUpdate&) = delete;

    bool IsOpen() const { return raster_ != nullptr; }
    GDALDataset& Raster() const { return *raster_; }
    /// GDAL's text when memory ran out at opening; else empty.
    const std::string& MemoryFault() const { return memory_fault_; }
    /// Why a raster that is open must not be written; else empty.
    const std::string& Refusal() const { return refusal_; }

    /// Writes what was set. Empty on success, else why the raster is what it was.
    std::string Close();

private:
    std::string CheckStaged(const RasterState& wanted);
    RasterState::Layout OldLayout() const;
    std::string CloseStaged();

    Tellurion::BString file_;
    Tellurion::QuietGdal quiet_;
    std::optional<UpdateLock> lock_;
    std::optional<StagingFolder> folder_;
    GdalRaster raster_;
    RasterState::Layout layout_;  ///< as opened; of a GeoTIFF see OldLayout()
    bool has_cloud_layout_ = false;
    std::string driver_;  ///< GDAL's name of it
    std::string memory_fault_;
    std::string refusal_;
};

}  // namespace MapAnchor

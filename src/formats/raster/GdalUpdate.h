#pragma once

#include "raster/GdalRaster.h"

#include <Tellurion/BString.h>
#include <Tellurion/QuietGdal.h>

#include <array>
#include <cstdint>
#include <string>

namespace MapAnchor {

/// The first bytes and the length of a TIFF. A directory that is written anew is
/// appended and then named in the first bytes; with these two restored the file is
/// what it was, as long as the change did not come to its end.
class TiffSavepoint {
public:
    explicit TiffSavepoint(const Tellurion::BString& file);
    /// Does nothing for what is no TIFF.
    void Restore() const;

private:
    std::string path_;
    std::array<char, 16> head_{};
    std::uint64_t length_ = 0;
    bool is_tiff_ = false;
};

/// A raster that is open for writing. GDAL prints nothing while it is. What does not
/// reach the file is taken back: the raster stays as it was, with its pixels.
class GdalUpdate {
public:
    explicit GdalUpdate(const Tellurion::BString& file);
    ~GdalUpdate() { Close(); }
    GdalUpdate(const GdalUpdate&) = delete;
    GdalUpdate& operator=(const GdalUpdate&) = delete;

    bool IsOpen() const { return raster_ != nullptr; }
    GDALDataset& Raster() const { return *raster_; }
    /// GDAL's text when memory ran out at opening; else empty.
    const std::string& MemoryFault() const { return memory_fault_; }

    /// Writes what is pending. Empty on success, else what went wrong.
    std::string Close();

private:
    Tellurion::QuietGdal quiet_;
    TiffSavepoint savepoint_;
    GdalRaster raster_;
    std::string memory_fault_;
};

}  // namespace MapAnchor

#pragma once

#include "raster/GdalRaster.h"

#include <Tellurion/BString.h>
#include <Tellurion/QuietGdal.h>

#include <cstdint>
#include <string>

namespace MapAnchor {

/// What a save may change, as it was before. Of a TIFF the beginning and the length: a
/// directory that is written anew is appended and then named in the first bytes, so
/// that with these two restored the file is what it was. After a write that failed the
/// appended bytes can land behind the first ones; the beginning that is kept is long
/// enough for a directory. Of any raster the file with further metadata that lies
/// beside it.
class Savepoint {
public:
    explicit Savepoint(const Tellurion::BString& file);
    void Restore() const;

private:
    void RestoreTiff() const;
    void RestoreMetadata() const;

    std::string path_;
    std::string head_;
    std::uint64_t length_ = 0;
    bool is_tiff_ = false;
    std::string metadata_path_;
    std::string metadata_;
    bool has_metadata_ = false;
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
    Savepoint savepoint_;
    GdalRaster raster_;
    std::string memory_fault_;
};

}  // namespace MapAnchor

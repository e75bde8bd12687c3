#pragma once

#include <gdal_priv.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

/// What the benchmarks share: a folder of their own, and rasters by GDAL.
namespace bench {

struct DatasetCloser {
    void operator()(GDALDataset* dataset) const { GDALClose(GDALDataset::ToHandle(dataset)); }
};
using Dataset = std::unique_ptr<GDALDataset, DatasetCloser>;

inline Dataset OpenRaster(const std::string& path) {
    return Dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY));
}

/// A temporary folder, removed at the end of the run.
class Folder {
public:
    Folder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "mapanchor-bench-XXXXXX").string();
        if (!mkdtemp(pattern.data())) std::abort();
        path_ = pattern;
        GDALAllRegister();
    }
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string Path(const std::string& name) const { return (path_ / name).string(); }
    std::string Write(const std::string& name, const std::string& content) const {
        std::ofstream(path_ / name, std::ios::binary) << content;
        return Path(name);
    }
    /// A raster of 64 by 64 pixels in three bands, as ERS headers claim.
    std::string MakeRaster(const std::string& name, const char* driver) const {
        GDALDriverManager& drivers = *GetGDALDriverManager();
        const Dataset memory(drivers.GetDriverByName("MEM")->Create("", 64, 64, 3, GDT_Byte, nullptr));
        const Dataset copy(drivers.GetDriverByName(driver)->CreateCopy(Path(name).c_str(), memory.get(),
                                                                       FALSE, nullptr, nullptr, nullptr));
        if (!copy) std::abort();
        return Path(name);
    }

private:
    std::filesystem::path path_;
};

}  // namespace bench

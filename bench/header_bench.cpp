// Reading GeoTIFFs from their headers as people read, against GDAL doing the same by itself;
// one key seen before, and keys that are new each time.

#include "BenchFiles.h"

#include <ogr_spatialref.h>

#include <chrono>
#include <thread>

namespace {

using namespace Tellurion;
using bench::Who;

constexpr int kFiles = 200;

const bench::Folder& Files() {
    static const bench::Folder folder;
    [[maybe_unused]] static const bool filled = [] {
        OGRSpatialReference system;
        system.importFromEPSG(32632);
        auto* driver = GetGDALDriverManager()->GetDriverByName("GTiff");
        for (int i = 0; i < kFiles; ++i) {
            const std::string path = folder.Path("tile" + std::to_string(i) + ".tif");
            const bench::Dataset raster(driver->Create(path.c_str(), 64, 64, 1, GDT_Byte, nullptr));
            double terms[6] = {676000.0 + i, 0.5, 0, 5242000, 0, -0.5};
            raster->SetGeoTransform(terms);
            raster->SetSpatialRef(&system);
        }
        // A folder that has just changed is listed for each file.
        std::this_thread::sleep_for(std::chrono::seconds(4));
        return true;
    }();
    return folder;
}

std::string Next(int& number) {
    number = (number + 1) % kFiles;
    return Files().Path("tile" + std::to_string(number) + ".tif");
}

void Read(benchmark::State& state, bool from_headers) {
    MapAnchor::BReadingOptions options;
    options.SetReadsHeaders(from_headers);
    int number = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(MapAnchor::BReading::Of(BString(Next(number)), options));
}

void Gdal(benchmark::State& state) {
    int number = 0;
    for (auto _ : state) {
        const bench::Dataset raster(
            GDALDataset::FromHandle(GDALOpenShared(Next(number).c_str(), GA_ReadOnly)));
        double terms[6];
        raster->GetGeoTransform(terms);
        benchmark::DoNotOptimize(raster->GetGCPs());
        benchmark::DoNotOptimize(raster->GetProjectionRef());
        benchmark::DoNotOptimize(raster->GetMetadataItem("AREA_OR_POINT"));
    }
}

[[maybe_unused]] const bool kAdded = [] {
    bench::Add(Who::Ours, "read GeoTIFF of a known key", Read, true);
    bench::Add(Who::Gdal, "read GeoTIFF of a known key", Gdal);
    bench::Add(Who::Ours, "read GeoTIFF, headers off", Read, false);
    bench::Add(Who::Gdal, "read GeoTIFF, headers off", Gdal);
    return true;
}();

}  // namespace

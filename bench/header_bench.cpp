// Reading GeoTIFFs from their headers as people read, against GDAL doing the same by itself;
// one key seen before, and keys that are new each time.

#include "BenchFiles.h"

#include <ogr_spatialref.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace Tellurion;
using bench::Who;

/// Files of one system in turn, the first again after the last.
class Tiles {
public:
    /// With a text of its own in each file, no header is as another.
    Tiles(int count, bool have_own_texts)
        : folders_(static_cast<std::size_t>((count + kTilesOfFolder - 1) / kTilesOfFolder)), count_(count) {
        OGRSpatialReference system;
        system.importFromEPSG(32632);
        auto* driver = GetGDALDriverManager()->GetDriverByName("GTiff");
        for (int i = 0; i < count; ++i) {
            const bench::Dataset raster(driver->Create(Path(i).c_str(), 64, 64, 1, GDT_Byte, nullptr));
            double terms[6] = {676000.0 + i, 0.5, 0, 5242000, 0, -0.5};
            raster->SetGeoTransform(terms);
            raster->SetSpatialRef(&system);
            if (have_own_texts) raster->SetMetadataItem("TILE", std::to_string(i).c_str());
        }
        // A folder that has just changed is listed for each file.
        std::this_thread::sleep_for(std::chrono::seconds(4));
    }

    std::string Next() {
        number_ = (number_ + 1) % count_;
        return Path(number_);
    }

private:
    std::string Path(int number) const {
        return folders_[static_cast<std::size_t>(number) / kTilesOfFolder].Path(
            "tile" + std::to_string(number) + ".tif");
    }

    static constexpr int kTilesOfFolder = 200;
    std::vector<bench::Folder> folders_;
    int count_;
    int number_ = 0;
};

Tiles& Known() {
    static Tiles tiles(200, false);
    return tiles;
}

/// More than are remembered, so that each is forgotten when its turn comes again.
Tiles& New() {
    static Tiles tiles(5000, true);
    return tiles;
}

void Read(benchmark::State& state, Tiles& (*of_kind)()) {
    Tiles& tiles = of_kind();
    for (auto _ : state)
        benchmark::DoNotOptimize(MapAnchor::BReading::Of(BString(tiles.Next())));
}

void Gdal(benchmark::State& state, Tiles& (*of_kind)()) {
    Tiles& tiles = of_kind();
    for (auto _ : state) {
        const bench::Dataset raster(
            GDALDataset::FromHandle(GDALOpenShared(tiles.Next().c_str(), GA_ReadOnly)));
        double terms[6];
        raster->GetGeoTransform(terms);
        benchmark::DoNotOptimize(raster->GetGCPs());
        benchmark::DoNotOptimize(raster->GetProjectionRef());
        benchmark::DoNotOptimize(raster->GetMetadataItem("AREA_OR_POINT"));
    }
}

[[maybe_unused]] const bool kAdded = [] {
    bench::Add(Who::Ours, "read GeoTIFF of a known key", Read, Known);
    bench::Add(Who::Gdal, "read GeoTIFF of a known key", Gdal, Known);
    bench::Add(Who::Ours, "read GeoTIFF of a new key", Read, New);
    bench::Add(Who::Gdal, "read GeoTIFF of a new key", Gdal, New);
    return true;
}();

}  // namespace

// Reading a GeoTIFF's reference and saving one into it, against GDAL doing the same by
// itself: open, geotransform, points, system, close.

#include "BenchFiles.h"

#include <MapAnchor/BReading.h>
#include <MapAnchor/BSaving.h>
#include <ogr_spatialref.h>

#include <fcntl.h>
#include <unistd.h>

namespace {

using namespace Tellurion;
using bench::Dataset;
using bench::Who;

constexpr std::array<double, 6> kTerms = {676000.25, 0.5, 0, 5241999.75, 0, -0.5};
constexpr long kSize = 64;

OGRSpatialReference Utm() {
    OGRSpatialReference system;
    system.importFromEPSG(32632);
    return system;
}

/// A folder with a raster that has terms, one that has points, and one to write to.
class Inputs {
public:
    Inputs() {
        const OGRSpatialReference system = Utm();
        auto terms = kTerms;
        const Dataset placed = Make("terms.tif");
        placed->SetGeoTransform(terms.data());
        placed->SetSpatialRef(&system);
        char none[] = "";
        std::array<GDAL_GCP, 4> points{};
        for (std::size_t i = 0; i < points.size(); ++i) {
            const double column = 64.0 * static_cast<double>(i % 2);
            const double row = 64.0 * static_cast<double>(i / 2);
            points[i] = {none, none, column, row, 676000 + column, 5241999 - row, 0};
        }
        Make("points.tif")->SetGCPs(4, points.data(), &system);
    }
    std::string Path(const std::string& name) const { return folder_.Path(name); }
    Dataset Make(const std::string& name) const {
        auto* driver = GetGDALDriverManager()->GetDriverByName("GTiff");
        return Dataset(driver->Create(Path(name).c_str(), 64, 64, 1, GDT_Byte, nullptr));
    }

private:
    bench::Folder folder_;
};

const Inputs& Files() {
    static const Inputs inputs;
    return inputs;
}

void Gdal(benchmark::State& state, const char* name) {
    const std::string path = Files().Path(name);
    for (auto _ : state) {
        const Dataset raster(GDALDataset::FromHandle(GDALOpenShared(path.c_str(), GA_ReadOnly)));
        std::array<double, 6> terms{};
        benchmark::DoNotOptimize(raster->GetGeoTransform(terms.data()));
        const bool has_points = raster->GetGCPCount() > 0;
        benchmark::DoNotOptimize(raster->GetGCPs());
        benchmark::DoNotOptimize(has_points ? raster->GetGCPProjection() : raster->GetProjectionRef());
    }
}

void Read(benchmark::State& state, const char* name) {
    bench::ReadByName(state, Files().Path(name), kSize);
}
void ReadByType(benchmark::State& state, const char* name) {
    bench::ReadByType(state, EReferenceType::GeoTIFF, Files().Path(name), kSize);
}

/// A save appends to the file: each begins with the raster as it was made.
constexpr const char* kBare = "bare.tif";
constexpr const char* kSaved = "saved.tif";

void LayOut() {
    if (!std::filesystem::exists(Files().Path(kBare))) Files().Make(kBare);
    std::filesystem::copy_file(Files().Path(kBare), Files().Path(kSaved),
                               std::filesystem::copy_options::overwrite_existing);
}

void GdalSave(benchmark::State& state) {
    const std::string path = Files().Path(kSaved);
    char* text = nullptr;
    Utm().exportToWkt(&text);
    for (auto _ : state) {
        state.PauseTiming();
        LayOut();
        state.ResumeTiming();
        const Dataset raster(GDALDataset::FromHandle(GDALOpen(path.c_str(), GA_Update)));
        auto terms = kTerms;
        raster->SetGeoTransform(terms.data());
        raster->SetProjection(text);
    }
    CPLFree(text);
}

/// GDAL's own update and, as a safe save does, a wait until the file is on the disk.
void GdalSaveAndSync(benchmark::State& state) {
    const std::string path = Files().Path(kSaved);
    for (auto _ : state) {
        state.PauseTiming();
        LayOut();
        state.ResumeTiming();
        {
            const Dataset raster(GDALDataset::FromHandle(GDALOpen(path.c_str(), GA_Update)));
            auto terms = kTerms;
            const OGRSpatialReference system = Utm();
            raster->SetGeoTransform(terms.data());
            raster->SetSpatialRef(&system);
        }
        const int file = open(path.c_str(), O_RDWR | O_CLOEXEC);
        fdatasync(file);
        close(file);
    }
}

void SaveThrough(benchmark::State& state, bool syncs, bool verifies) {
    const auto reading = MapAnchor::BReading::Of(BString(Files().Path("terms.tif")));
    const BString out(Files().Path(kSaved));
    MapAnchor::BSavingOptions options;
    options.SetSyncs(syncs);
    options.SetVerifies(verifies);
    for (auto _ : state) {
        state.PauseTiming();
        LayOut();
        state.ResumeTiming();
        MapAnchor::BSaving::Of(out, reading.GetReference(), options);
    }
}

void Save(benchmark::State& state) {
    BGeoReference reference;
    BString used;
    MapAnchor::BMapAnchor::Read(BString(Files().Path("terms.tif")), reference, used, kSize, kSize,
                                EMathTransformType::Affine, nullptr);
    const BString out(Files().Path(kSaved));
    for (auto _ : state) {
        state.PauseTiming();
        LayOut();
        state.ResumeTiming();
        MapAnchor::BMapAnchor::Save(out, reference, kSize, kSize, BString(), nullptr);
    }
}
[[maybe_unused]] const bool kAdded = [] {
    for (const auto& [operation, name] :
         {std::pair{"read GeoTIFF", "terms.tif"}, {"read GeoTIFF with points", "points.tif"}}) {
        bench::Add(Who::Ours, operation, Read, name);
        bench::Add(Who::Gdal, operation, Gdal, name);
        bench::Add(Who::Ours, std::string(operation) + " by type", ReadByType, name);
        bench::Add(Who::Gdal, std::string(operation) + " by type", Gdal, name);
    }
    bench::AddBothWays(
        "read GeoTIFF", [] { return Files().Path("terms.tif"); }, kSize);
    bench::Add(Who::Ours, "write GeoTIFF", Save);
    bench::Add(Who::Gdal, "write GeoTIFF", GdalSave);
    bench::Add(Who::Ours, "write GeoTIFF, synced", SaveThrough, true, false)->UseRealTime();
    bench::Add(Who::Gdal, "write GeoTIFF, synced", GdalSaveAndSync)->UseRealTime();
    bench::Add(Who::Ours, "write GeoTIFF, not synced", SaveThrough, false, false)->UseRealTime();
    bench::Add(Who::Gdal, "write GeoTIFF, not synced", GdalSave)->UseRealTime();
    bench::Add(Who::Ours, "write GeoTIFF and prove it", SaveThrough, true, true)->UseRealTime();
    return true;
}();

}  // namespace

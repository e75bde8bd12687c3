// Reading a GeoTIFF's reference and saving one into it, against GDAL doing the same by
// itself: open, geotransform, points, system, close.

#include <MapAnchor/BMapAnchor.h>

#include <benchmark/benchmark.h>
#include <gdal_priv.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

using namespace Tellurion;

constexpr std::array<double, 6> kTerms = {676000.25, 0.5, 0, 5241999.75, 0, -0.5};

struct Closer {
    void operator()(GDALDataset* dataset) const { GDALClose(GDALDataset::ToHandle(dataset)); }
};
using Dataset = std::unique_ptr<GDALDataset, Closer>;

OGRSpatialReference Utm() {
    OGRSpatialReference system;
    system.importFromEPSG(32632);
    return system;
}

/// A folder with a raster that has terms, one that has points, and one to write to.
class Inputs {
public:
    Inputs() {
        std::string pattern = (std::filesystem::temp_directory_path() / "mapanchor-bench-XXXXXX").string();
        if (!mkdtemp(pattern.data())) std::abort();
        folder_ = pattern;
        GDALAllRegister();
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
    ~Inputs() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    Inputs(const Inputs&) = delete;
    Inputs& operator=(const Inputs&) = delete;

    std::string Path(const std::string& name) const { return (folder_ / name).string(); }
    Dataset Make(const std::string& name) const {
        auto* driver = GetGDALDriverManager()->GetDriverByName("GTiff");
        return Dataset(driver->Create(Path(name).c_str(), 64, 64, 1, GDT_Byte, nullptr));
    }

private:
    std::filesystem::path folder_;
};

const Inputs& Files() {
    static const Inputs inputs;
    return inputs;
}

void GeoTiffGdal(benchmark::State& state, const char* name) {
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
BENCHMARK_CAPTURE(GeoTiffGdal, terms, "terms.tif");
BENCHMARK_CAPTURE(GeoTiffGdal, points, "points.tif");

void GeoTiffReadByName(benchmark::State& state, const char* name) {
    const BString file(Files().Path(name));
    for (auto _ : state) {
        BGeoReference reference;
        BString used;
        MapAnchor::BMapAnchor::Read(file, reference, used, 64, 64, EMathTransformType::Affine, nullptr);
        benchmark::DoNotOptimize(reference);
    }
}
BENCHMARK_CAPTURE(GeoTiffReadByName, terms, "terms.tif");
BENCHMARK_CAPTURE(GeoTiffReadByName, points, "points.tif");

void GeoTiffReadByType(benchmark::State& state, const char* name) {
    const BString file(Files().Path(name));
    for (auto _ : state) {
        BGeoReference reference;
        MapAnchor::BMapAnchor::Read(EReferenceType::GeoTIFF, file, reference, 64, 64,
                                    EMathTransformType::Affine, 0, nullptr);
        benchmark::DoNotOptimize(reference);
    }
}
BENCHMARK_CAPTURE(GeoTiffReadByType, terms, "terms.tif");

/// A save appends to the file: each begins with the raster as it was made.
constexpr const char* kBare = "bare.tif";
constexpr const char* kSaved = "saved.tif";

void LayOut() {
    if (!std::filesystem::exists(Files().Path(kBare))) Files().Make(kBare);
    std::filesystem::copy_file(Files().Path(kBare), Files().Path(kSaved),
                               std::filesystem::copy_options::overwrite_existing);
}

void GeoTiffGdalSave(benchmark::State& state) {
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
BENCHMARK(GeoTiffGdalSave);

void GeoTiffSave(benchmark::State& state) {
    BGeoReference reference;
    BString used;
    MapAnchor::BMapAnchor::Read(BString(Files().Path("terms.tif")), reference, used, 64, 64,
                                EMathTransformType::Affine, nullptr);
    const BString out(Files().Path(kSaved));
    for (auto _ : state) {
        state.PauseTiming();
        LayOut();
        state.ResumeTiming();
        MapAnchor::BMapAnchor::Save(out, reference, 64, 64, BString(), nullptr);
    }
}
BENCHMARK(GeoTiffSave);

}  // namespace

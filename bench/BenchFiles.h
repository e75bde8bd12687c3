#pragma once

#include <MapAnchor/BMapAnchor.h>
#include <MapAnchor/BReading.h>

#include <benchmark/benchmark.h>
#include <gdal_priv.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>

/// What the benchmarks share: how they are named, a folder of their own, rasters by
/// GDAL, and the loops that most of them are.
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
    /// The rest after the content is a hole.
    std::string Write(const std::string& name, const std::string& content, std::uintmax_t size) const {
        std::filesystem::resize_file(Write(name, content), size);
        return Path(name);
    }
    /// A raster of 64 by 64 pixels in three bands, as ERS headers claim.
    std::string MakeRaster(const std::string& name, const char* driver) const {
        GDALDriverManager& drivers = *GetGDALDriverManager();
        const Dataset memory(drivers.GetDriverByName("MEM")->Create("", 64, 64, 3, GDT_Byte, nullptr));
        return CopyRaster(name, driver, *memory);
    }
    std::string CopyRaster(const std::string& name, const char* driver, GDALDataset& raster) const {
        const Dataset copy(GetGDALDriverManager()->GetDriverByName(driver)->CreateCopy(
            Path(name).c_str(), &raster, FALSE, nullptr, nullptr, nullptr));
        if (!copy) std::abort();
        return Path(name);
    }

private:
    std::filesystem::path path_;
};

/// A number of /proc/self/status.
inline long StatusKiB(const char* name) {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
        if (word == name) {
            long kibibytes = 0;
            status >> kibibytes;
            return kibibytes;
        }
    return 0;
}

/// Whose time a benchmark measures: ours, a peer's doing the same work, or the floor
/// that no reader can go below. The named read is our own, which the other way is measured against. The walk
/// is the plain search that an index replaces.
enum class Who { Ours, Gdal, PoDoFo, Walk, Floor, Named };

/// Registers a benchmark under "<who>/<operation>"; scripts/performance.py sets those of
/// one operation side by side. $MAPANCHOR_BENCH_ROUNDS fixes the number of rounds, for
/// counting instructions.
template <class... Arguments>
benchmark::internal::Benchmark* Add(Who who, const std::string& operation, Arguments&&... arguments) {
    static constexpr std::array kNames = {"ours", "gdal", "podofo", "walk", "floor", "named"};
    const std::string name = std::string(kNames[static_cast<std::size_t>(who)]) + '/' + operation;
    auto* made = benchmark::RegisterBenchmark(name.c_str(), std::forward<Arguments>(arguments)...);
    if (const char* rounds = std::getenv("MAPANCHOR_BENCH_ROUNDS")) made->Iterations(std::atoi(rounds));
    return made;
}

inline void ReadByName(benchmark::State& state, const std::string& path, long size = 0,
                       Tellurion::EMathTransformType fit = Tellurion::EMathTransformType::Affine) {
    const Tellurion::BString file(path);
    for (auto _ : state) {
        Tellurion::BGeoReference reference;
        Tellurion::BString used;
        MapAnchor::BMapAnchor::Read(file, reference, used, size, size, fit, nullptr);
        benchmark::DoNotOptimize(reference);
    }
}

/// As people read: any file, with diagnostics.
inline void ReadAny(benchmark::State& state, const std::string& path, long size) {
    const Tellurion::BString file(path);
    // A folder that changed in the last seconds is listed for each file, any other once.
    const auto hour_ago = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);
    std::filesystem::last_write_time(std::filesystem::path(path).parent_path(), hour_ago);
    MapAnchor::BReadingOptions options;
    options.SetSize(size, size);
    for (auto _ : state)
        benchmark::DoNotOptimize(MapAnchor::BReading::Of(file, options));
}

/// Both ways beside each other. `path` is a function, called when the benchmark runs.
template <class Path>
void AddBothWays(const std::string& operation, Path path, long size) {
    const std::string name = operation + ", as people read";
    Add(Who::Ours, name, [path, size](benchmark::State& state) { ReadAny(state, path(), size); });
    Add(Who::Named, name, [path, size](benchmark::State& state) { ReadByName(state, path(), size); });
}

inline void ReadByType(benchmark::State& state, Tellurion::EReferenceType type, const std::string& path,
                       long size) {
    const Tellurion::BString file(path);
    for (auto _ : state) {
        Tellurion::BGeoReference reference;
        MapAnchor::BMapAnchor::Read(type, file, reference, size, size, Tellurion::EMathTransformType::Affine,
                                    0, nullptr);
        benchmark::DoNotOptimize(reference);
    }
}

/// GDAL's way to the same answers: open, terms, points, system, close.
inline void OpenByGdal(benchmark::State& state, const std::string& path) {
    for (auto _ : state) {
        const Dataset raster = OpenRaster(path);
        if (!raster) return state.SkipWithError("GDAL does not open it");
        std::array<double, 6> terms{};
        benchmark::DoNotOptimize(raster->GetGeoTransform(terms.data()));
        benchmark::DoNotOptimize(raster->GetGCPs());
        benchmark::DoNotOptimize(raster->GetSpatialRef());
        benchmark::DoNotOptimize(terms);
    }
}

}  // namespace bench

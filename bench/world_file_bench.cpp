// Reading a world file by name, against the floor (open, read, six numbers, close)
// and against GDAL opening a raster that has the same world file.

#include <MapAnchor/BMapAnchor.h>

#include <benchmark/benchmark.h>
#include <cpl_conv.h>
#include <gdal_priv.h>
#include <ogr_spatialref.h>

#include <fcntl.h>
#include <unistd.h>
#include <array>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

using namespace Tellurion;

constexpr const char* kWorldFile = "0.5\n0.0\n0.0\n-0.5\n676000.25\n5241999.75\n";

/// A folder with a small PNG and its world file, once with a prj and once without.
class Inputs {
public:
    Inputs() {
        std::string pattern = (std::filesystem::temp_directory_path() / "mapanchor-bench-XXXXXX").string();
        if (!mkdtemp(pattern.data())) std::abort();
        folder_ = pattern;
        GDALAllRegister();
        for (const char* stem : {"bare", "full"}) {
            MakeRaster(stem);
            std::ofstream(folder_ / (std::string(stem) + ".pgw")) << kWorldFile;
        }
        OGRSpatialReference system;
        system.importFromEPSG(32632);
        char* wkt = nullptr;
        const char* const options[] = {"FORMAT=WKT1_ESRI", nullptr};
        system.exportToWkt(&wkt, options);
        std::ofstream(folder_ / "full.prj") << wkt;
        CPLFree(wkt);
    }
    ~Inputs() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    Inputs(const Inputs&) = delete;
    Inputs& operator=(const Inputs&) = delete;
    std::string Path(const char* name) const { return (folder_ / name).string(); }

private:
    void MakeRaster(const std::string& stem) const {
        auto* memory =
            GetGDALDriverManager()->GetDriverByName("MEM")->Create("", 64, 64, 1, GDT_Byte, nullptr);
        GDALDataset* png = GetGDALDriverManager()->GetDriverByName("PNG")->CreateCopy(
            (folder_ / (stem + ".png")).c_str(), memory, FALSE, nullptr, nullptr, nullptr);
        GDALClose(png);
        GDALClose(memory);
    }

    std::filesystem::path folder_;
};

const Inputs& Files() {
    static const Inputs inputs;
    return inputs;
}

void Floor(benchmark::State& state) {
    const std::string path = Files().Path("bare.pgw");
    for (auto _ : state) {
        std::array<char, 4096> buffer;
        const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        const ssize_t size = read(descriptor, buffer.data(), buffer.size());
        std::array<double, 6> terms{};
        const char* at = buffer.data();
        const char* const end = at + (size > 0 ? size : 0);
        for (double& term : terms) {
            at = std::from_chars(at, end, term).ptr;
            while (at < end && *at == '\n')
                ++at;
        }
        close(descriptor);
        benchmark::DoNotOptimize(terms);
    }
}
BENCHMARK(Floor);

void ReadByName(benchmark::State& state, const char* name) {
    const BString file(Files().Path(name));
    for (auto _ : state) {
        BGeoReference reference;
        BString used;
        MapAnchor::BMapAnchor::Read(file, reference, used, 64, 64, EMathTransformType::Affine, nullptr);
        benchmark::DoNotOptimize(reference);
    }
}
BENCHMARK_CAPTURE(ReadByName, without_prj, "bare.pgw");
BENCHMARK_CAPTURE(ReadByName, with_known_prj, "full.pgw");

void ReadByType(benchmark::State& state) {
    const BString file(Files().Path("bare.pgw"));
    for (auto _ : state) {
        BGeoReference reference;
        MapAnchor::BMapAnchor::Read(EReferenceType::WLD, file, reference, 64, 64, EMathTransformType::Affine,
                                    0, nullptr);
        benchmark::DoNotOptimize(reference);
    }
}
BENCHMARK(ReadByType);

void Gdal(benchmark::State& state, const char* name) {
    const std::string path = Files().Path(name);
    for (auto _ : state) {
        auto* dataset = GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY);
        double terms[6];
        dataset->GetGeoTransform(terms);
        benchmark::DoNotOptimize(dataset->GetSpatialRef());
        benchmark::DoNotOptimize(terms);
        GDALClose(dataset);
    }
}
BENCHMARK_CAPTURE(Gdal, without_prj, "bare.png");
BENCHMARK_CAPTURE(Gdal, with_prj, "full.png");

void Save(benchmark::State& state) {
    BGeoReference reference;
    BString used;
    MapAnchor::BMapAnchor::Read(BString(Files().Path("bare.pgw")), reference, used, 64, 64,
                                EMathTransformType::Affine, nullptr);
    const BString out(Files().Path("out.pgw"));
    for (auto _ : state)
        MapAnchor::BMapAnchor::Save(out, reference, 64, 64, BString(), nullptr);
}
BENCHMARK(Save);

}  // namespace

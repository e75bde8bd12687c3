// Reading RSF, TAB and ERS files of 4, 100 and 10,000 points, against the floor (open,
// read, every number, close) and against GDAL opening a raster with the same sidecar.

#include <MapAnchor/BMapAnchor.h>

#include <benchmark/benchmark.h>
#include <gdal_priv.h>

#include "BenchFiles.h"

#include <fcntl.h>
#include <unistd.h>
#include <charconv>
#include <map>
#include <string>
#include <vector>

namespace {

using namespace Tellurion;

constexpr int kColumns = 128;

std::string RsfText(int points) {
    std::string text = "4 " + std::to_string(points) + "\n";
    for (int i = 0; i < points; ++i)
        text += "\"Point " + std::to_string(i) + "\" " + std::to_string(i / kColumns * 2) + ' ' +
                std::to_string(i % kColumns * 2) + " 0 " + std::to_string(5242000 - i / kColumns) +
                ".123456789012345 " + std::to_string(676000 + i % kColumns) + ".123456789012345 0.00000 1\n";
    return text + "NONE\nNONE\nNONE\nNONE\n0";
}

std::string TabText(int points) {
    std::string text =
        "!table\n!version 300\n!charset WindowsLatin1\n\nDefinition Table\n  File \"map.tif\"\n  Type "
        "\"RASTER\"\n";
    for (int i = 0; i < points; ++i)
        text += "  (" + std::to_string(676000 + i % kColumns) + ".12345678901, " +
                std::to_string(5242000 - i / kColumns) + ".12345678901) (" +
                std::to_string(i % kColumns * 2) + ", " + std::to_string(i / kColumns * 2) +
                ") Label \"Point " + std::to_string(i) + (i + 1 < points ? "\",\n" : "\"\n");
    return text + "CoordSys Earth Projection 8, 104, \"m\", 9, 0, 0.9996, 500000, 0";
}

const std::string& Input(const std::string& name, int points) {
    static const bench::Folder folder;
    static std::map<std::string, std::string> made;
    const std::string key = name + std::to_string(points);
    auto& path = made[key];
    if (!path.empty()) return path;
    if (name == "rsf") path = folder.Write(key + ".rsf", RsfText(points));
    if (name == "tab") path = folder.Write(key + ".tab", TabText(points));
    if (name == "tif") {
        Input("tab", points);
        path = folder.MakeRaster("tab" + std::to_string(points) + ".tif", "GTiff");
    }
    if (name == "ers") {
        BGeoReference reference;
        const std::unique_ptr<BMathTransform> affine(
            BMathTransform::CreateAffine(0.5, 0, 676000.25, 0, -0.5, 5241999.75, true));
        reference.SetMathTransform(*affine);
        reference.SetCoordSys(BSharedPtr<BCoordSys>(BCoordSys::FromEPSGCode("32632")));
        path = folder.Path("map.ers");
        MapAnchor::BMapAnchor::Save(EReferenceType::ERS, BString(path), reference, 64, 64,
                                    BString(folder.MakeRaster("map-raster.tif", "GTiff")), 0, nullptr);
    }
    return path;
}

/// The least that any reader does: every number of every byte read once.
void Floor(benchmark::State& state, const char* kind) {
    const std::string path = Input(kind, static_cast<int>(state.range(0)));
    for (auto _ : state) {
        const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        std::string bytes(static_cast<std::size_t>(lseek(descriptor, 0, SEEK_END)), '\0');
        bytes.resize(
            static_cast<std::size_t>(std::max<ssize_t>(pread(descriptor, bytes.data(), bytes.size(), 0), 0)));
        close(descriptor);
        std::vector<double> numbers;
        const char* const end = bytes.data() + bytes.size();
        for (const char* at = bytes.data(); at < end;) {
            double number = 0.0;
            const auto result = std::from_chars(at, end, number);
            if (result.ec == std::errc()) numbers.push_back(number);
            at = result.ptr == at ? at + 1 : result.ptr;
        }
        benchmark::DoNotOptimize(numbers.data());
    }
}

void ReadByName(benchmark::State& state, const char* kind, EMathTransformType fit) {
    const BString file(Input(kind, static_cast<int>(state.range(0))));
    for (auto _ : state) {
        BGeoReference reference;
        BString used;
        MapAnchor::BMapAnchor::Read(file, reference, used, 64, 64, fit, nullptr);
        benchmark::DoNotOptimize(reference);
    }
    state.counters["per_point"] =
        benchmark::Counter(static_cast<double>(state.range(0)),
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void Gdal(benchmark::State& state, const char* kind) {
    const std::string path = Input(kind, static_cast<int>(state.range(0)));
    for (auto _ : state) {
        const bench::Dataset raster = bench::OpenRaster(path);
        double terms[6];
        benchmark::DoNotOptimize(raster->GetGeoTransform(terms));
        benchmark::DoNotOptimize(raster->GetGCPs());
        benchmark::DoNotOptimize(raster->GetSpatialRef());
    }
}

constexpr auto kAffine = EMathTransformType::Affine;
constexpr auto kNoFit = EMathTransformType::None;

BENCHMARK_CAPTURE(Floor, rsf, "rsf")->Arg(4)->Arg(100)->Arg(10000);
BENCHMARK_CAPTURE(ReadByName, rsf, "rsf", kNoFit)->Arg(4)->Arg(100)->Arg(10000);
BENCHMARK_CAPTURE(ReadByName, rsf_affine, "rsf", kAffine)->Arg(4)->Arg(100)->Arg(10000);
BENCHMARK_CAPTURE(Floor, tab, "tab")->Arg(4)->Arg(100)->Arg(10000);
BENCHMARK_CAPTURE(ReadByName, tab, "tab", kNoFit)->Arg(4)->Arg(100)->Arg(10000);
BENCHMARK_CAPTURE(ReadByName, tab_affine, "tab", kAffine)->Arg(4)->Arg(100)->Arg(10000);
BENCHMARK_CAPTURE(Gdal, tab, "tif")->Arg(4)->Arg(100)->Arg(10000);
BENCHMARK_CAPTURE(Floor, ers, "ers")->Arg(4);
BENCHMARK_CAPTURE(ReadByName, ers, "ers", kAffine)->Arg(4);
BENCHMARK_CAPTURE(Gdal, ers, "ers")->Arg(4);

}  // namespace

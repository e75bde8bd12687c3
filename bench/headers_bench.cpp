// Reading MrSID, ECW and JPEG 2000 by name: JPEG 2000 against GDAL opening the same
// file, the others against the floor (open, read the head, close). Small and large
// files, whose rest is a hole.

#include <MapAnchor/BMapAnchor.h>

#include <benchmark/benchmark.h>
#include <gdal_priv.h>

#include "HeaderFiles.h"
#include "TempFolder.h"

#include <fcntl.h>
#include <unistd.h>
#include <array>
#include <filesystem>
#include <string>

namespace {

using namespace Tellurion;

constexpr std::uintmax_t kSmall = std::uintmax_t{2} << 20;
constexpr std::uintmax_t kLarge = std::uintmax_t{200} << 20;

class Inputs {
public:
    Inputs() {
        GDALAllRegister();
        const HeaderFiles::Ecw named{.datum = "EPSG:32633", .projection = "EPSG:32633"};
        const std::string records =
            HeaderFiles::SidPlace(5, 6, 7, 8) + HeaderFiles::SidShort(HeaderFiles::kSidProjected, 32633);
        for (const auto& [stem, size] : {std::pair{"small", kSmall}, {"large", kLarge}}) {
            Write(std::string(stem) + ".ecw", HeaderFiles::Ecw2(named), size);
            Write(std::string(stem) + ".sid", HeaderFiles::Sid2(records), size);
        }
        Write("plain.ecw", HeaderFiles::Ecw2({}), kSmall);
        MakeJp2();
        // The code stream is the last box, without a length, so that it may grow.
        std::filesystem::copy_file(folder_ / "small.jp2", folder_ / "large.jp2");
        std::filesystem::resize_file(folder_ / "large.jp2", kLarge);
    }
    std::string Path(const char* name) const { return folder_ / name; }

private:
    void Write(const std::string& name, const std::string& bytes, std::uintmax_t size) const {
        std::filesystem::resize_file(folder_.Write(name, bytes), size);
    }
    void MakeJp2() const {
        auto* memory =
            GetGDALDriverManager()->GetDriverByName("MEM")->Create("", 256, 256, 1, GDT_Byte, nullptr);
        std::array<double, 6> terms = {500000, 10, 0, 4100000, 0, -10};
        memory->SetGeoTransform(terms.data());
        OGRSpatialReference system;
        system.importFromEPSG(32633);
        memory->SetSpatialRef(&system);
        GDALClose(GetGDALDriverManager()
                      ->GetDriverByName("JP2OpenJPEG")
                      ->CreateCopy(Path("small.jp2").c_str(), memory, FALSE, nullptr, nullptr, nullptr));
        GDALClose(memory);
    }

    TempFolder folder_;
};

const Inputs& Files() {
    static const Inputs inputs;
    return inputs;
}

void HeaderFloor(benchmark::State& state) {
    const std::string path = Files().Path("small.ecw");
    for (auto _ : state) {
        std::array<char, 128> head;
        const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        benchmark::DoNotOptimize(pread(descriptor, head.data(), head.size(), 0));
        close(descriptor);
        benchmark::DoNotOptimize(head);
    }
}
BENCHMARK(HeaderFloor);

void HeaderByName(benchmark::State& state, const char* name) {
    const BString file(Files().Path(name));
    for (auto _ : state) {
        BGeoReference reference;
        BString used;
        MapAnchor::BMapAnchor::Read(file, reference, used, 0, 0, EMathTransformType::Affine, nullptr);
        benchmark::DoNotOptimize(reference);
    }
}
BENCHMARK_CAPTURE(HeaderByName, ecw_without_system, "plain.ecw");
BENCHMARK_CAPTURE(HeaderByName, ecw_2_mb, "small.ecw");
BENCHMARK_CAPTURE(HeaderByName, ecw_200_mb, "large.ecw");
BENCHMARK_CAPTURE(HeaderByName, sid_2_mb, "small.sid");
BENCHMARK_CAPTURE(HeaderByName, sid_200_mb, "large.sid");
BENCHMARK_CAPTURE(HeaderByName, jp2_small, "small.jp2");
BENCHMARK_CAPTURE(HeaderByName, jp2_200_mb, "large.jp2");

void GdalJp2(benchmark::State& state, const char* name) {
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
BENCHMARK_CAPTURE(GdalJp2, small, "small.jp2");
BENCHMARK_CAPTURE(GdalJp2, large, "large.jp2");

}  // namespace

// World files by name and by type, against the floor (open, read, six numbers, close)
// and against GDAL opening a raster that has the same world file.

#include "BenchFiles.h"

#include <cpl_conv.h>
#include <ogr_spatialref.h>

#include <fcntl.h>
#include <unistd.h>
#include <charconv>

namespace {

using namespace Tellurion;
using bench::Who;

constexpr const char* kWorldFile = "0.5\n0.0\n0.0\n-0.5\n676000.25\n5241999.75\n";
constexpr long kSize = 64;

/// A small PNG and its world file, once with a prj and once without.
const bench::Folder& Files() {
    static const bench::Folder folder;
    [[maybe_unused]] static const bool filled = [] {
        for (const char* stem : {"bare", "full"}) {
            folder.MakeRaster(std::string(stem) + ".png", "PNG");
            folder.Write(std::string(stem) + ".pgw", kWorldFile);
        }
        OGRSpatialReference system;
        system.importFromEPSG(32632);
        char* wkt = nullptr;
        const char* const options[] = {"FORMAT=WKT1_ESRI", nullptr};
        system.exportToWkt(&wkt, options);
        folder.Write("full.prj", wkt);
        CPLFree(wkt);
        return true;
    }();
    return folder;
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

void Read(benchmark::State& state, const char* name) {
    bench::ReadByName(state, Files().Path(name), kSize);
}
void ReadByType(benchmark::State& state) {
    bench::ReadByType(state, EReferenceType::WLD, Files().Path("bare.pgw"), kSize);
}
void Gdal(benchmark::State& state, const char* name) {
    bench::OpenByGdal(state, Files().Path(name));
}

void Save(benchmark::State& state) {
    BGeoReference reference;
    BString used;
    MapAnchor::BMapAnchor::Read(BString(Files().Path("bare.pgw")), reference, used, kSize, kSize,
                                EMathTransformType::Affine, nullptr);
    const BString out(Files().Path("out.pgw"));
    for (auto _ : state)
        MapAnchor::BMapAnchor::Save(out, reference, kSize, kSize, BString(), nullptr);
}

[[maybe_unused]] const bool kAdded = [] {
    bench::Add(Who::Ours, "read world file", Read, "bare.pgw");
    bench::Add(Who::Gdal, "read world file", Gdal, "bare.png");
    bench::Add(Who::Floor, "read world file", Floor);
    bench::Add(Who::Ours, "read world file with a known prj", Read, "full.pgw");
    bench::Add(Who::Gdal, "read world file with a known prj", Gdal, "full.png");
    bench::Add(Who::Ours, "read world file by type", ReadByType);
    bench::Add(Who::Gdal, "read world file by type", Gdal, "bare.png");
    bench::Add(Who::Floor, "read world file by type", Floor);
    bench::AddBothWays(
        "read world file with a known prj", [] { return Files().Path("full.pgw"); }, kSize);
    bench::Add(Who::Ours, "write world file", Save);
    return true;
}();

}  // namespace

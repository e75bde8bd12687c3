// Reading RSF, TAB and ERS files of 4, 100 and 10,000 points, against the floor (open,
// read, every number, close) and against GDAL opening a raster with the same sidecar.

#include "BenchFiles.h"

#include <fcntl.h>
#include <unistd.h>
#include <charconv>
#include <cmath>
#include <map>
#include <vector>

namespace {

using namespace Tellurion;
using bench::Who;

constexpr long kSize = 64;

/// The columns of a square grid of points.
int ColumnsOf(int points) {
    return static_cast<int>(std::lround(std::sqrt(points)));
}

std::string RsfText(int points) {
    const int columns = ColumnsOf(points);
    std::string text = "4 " + std::to_string(points) + "\n";
    for (int i = 0; i < points; ++i)
        text += "\"Point " + std::to_string(i) + "\" " + std::to_string(i / columns * 2) + ' ' +
                std::to_string(i % columns * 2) + " 0 " + std::to_string(5242000 - i / columns) +
                ".123456789012345 " + std::to_string(676000 + i % columns) + ".123456789012345 0.00000 1\n";
    return text + "NONE\nNONE\nNONE\nNONE\n0";
}

std::string TabText(int points) {
    const int columns = ColumnsOf(points);
    std::string text =
        "!table\n!version 300\n!charset WindowsLatin1\n\nDefinition Table\n  File \"map.tif\"\n  Type "
        "\"RASTER\"\n";
    for (int i = 0; i < points; ++i)
        text += "  (" + std::to_string(676000 + i % columns) + ".12345678901, " +
                std::to_string(5242000 - i / columns) + ".12345678901) (" + std::to_string(i % columns * 2) +
                ", " + std::to_string(i / columns * 2) + ") Label \"Point " + std::to_string(i) +
                (i + 1 < points ? "\",\n" : "\"\n");
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
        MapAnchor::BMapAnchor::Save(EReferenceType::ERS, BString(path), reference, kSize, kSize,
                                    BString(folder.MakeRaster("map-raster.tif", "GTiff")), 0, nullptr);
    }
    return path;
}

/// The least that any reader does: every number of every byte read once.
void Floor(benchmark::State& state, const char* kind, int points) {
    const std::string path = Input(kind, points);
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

void Read(benchmark::State& state, const char* kind, int points, EMathTransformType fit) {
    bench::ReadByName(state, Input(kind, points), kSize, fit);
    state.counters["per_point"] = benchmark::Counter(
        points, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void Gdal(benchmark::State& state, const char* kind, int points) {
    bench::OpenByGdal(state, Input(kind, points));
}

/// Into another format, from the points and the affine of the TAB file.
void Save(benchmark::State& state, const char* extension, int points) {
    BGeoReference reference;
    BString used;
    MapAnchor::BMapAnchor::Read(BString(Input("tab", points)), reference, used, kSize, kSize,
                                EMathTransformType::Affine, nullptr);
    const BString out(Input("tab", points) + ".out." + extension);
    const BString image(Input("tif", points));
    for (auto _ : state)
        MapAnchor::BMapAnchor::Save(out, reference, kSize, kSize, image, nullptr);
}

[[maybe_unused]] const bool kAdded = [] {
    for (const int points : {4, 100, 10000}) {
        const std::string count = " of " + std::to_string(points) + " points";
        for (const char* kind : {"rsf", "tab"}) {
            const std::string with_fit = std::string("read ") + kind + count;
            const std::string bare = with_fit + ", no fit";
            bench::Add(Who::Ours, with_fit, Read, kind, points, EMathTransformType::Affine);
            bench::Add(Who::Floor, with_fit, Floor, kind, points);
            bench::Add(Who::Ours, bare, Read, kind, points, EMathTransformType::None);
            bench::Add(Who::Floor, bare, Floor, kind, points);
            bench::Add(Who::Ours, std::string("write ") + kind + count, Save, kind, points);
        }
        bench::Add(Who::Gdal, "read tab" + count, Gdal, "tif", points);
        bench::Add(Who::Gdal, "read tab" + count + ", no fit", Gdal, "tif", points);
    }
    bench::AddBothWays(
        "read tab of 4 points", [] { return Input("tab", 4); }, kSize);
    bench::Add(Who::Ours, "read ers", Read, "ers", 4, EMathTransformType::Affine);
    bench::Add(Who::Gdal, "read ers", Gdal, "ers", 4);
    bench::Add(Who::Floor, "read ers", Floor, "ers", 4);
    bench::Add(Who::Ours, "write ers", Save, "ers", 4);
    return true;
}();

}  // namespace

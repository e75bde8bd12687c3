// Reading charts, frames, rectangles and orthophoto headers by name, against GDAL
// opening the same file. Small and large files, whose rest is a hole.

#include <MapAnchor/BMapAnchor.h>

#include <benchmark/benchmark.h>
#include <gdal_priv.h>

#include "ChartFiles.h"
#include "TempFolder.h"

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

using namespace Tellurion;
using MapAnchor::AdrgValues;
using MapAnchor::DoqFile;
using MapAnchor::FrameFile;

constexpr std::uintmax_t kSmall = std::uintmax_t{2} << 20;
constexpr std::uintmax_t kLarge = std::uintmax_t{200} << 20;

/// GDAL opens such files only with all of their sections and their pixels: for that a
/// folder of real files is asked for, as $MAPANCHOR_CORPUS.
std::string Real(const char* name) {
    const char* corpus = std::getenv("MAPANCHOR_CORPUS");
    return corpus ? std::string(corpus) + "/" + name : std::string();
}

class Inputs {
public:
    Inputs() {
        GDALAllRegister();
        std::string chart = "!Bay\r\nVER/2.0\r\nBSB/NA=Bay,RA=200,100,DU=254\r\nKNP/SC=1,GD=WGS84\r\n";
        for (int i = 1; i < 128; ++i)
            chart += "RGB/" + std::to_string(i) + ",1,2,3\r\n";
        chart +=
            "REF/1,0,0,48.5,-123.25\r\nREF/2,199,0,48.5,-121.25\r\nREF/3,199,99,47.5,-121.25\r\n"
            "REF/4,0,99,47.5,-123.25\r\nIFM/7\r\n\x1A";
        chart += std::string("\0\7", 2);
        DoqFile doq;
        doq.line = 600;
        std::string quad = doq.Bytes();
        MapAnchor::Put(quad, 144, "   500   600  1");
        MapAnchor::Put(quad, 162, "  0");
        for (const auto& [stem, size] : {std::pair{"small", kSmall}, {"large", kLarge}}) {
            const std::string name(stem);
            Write(name + ".kap", chart, size);
            Write(name + ".on1", FrameFile().Bytes(), size);
            Write(name + ".doq", quad, size);
            Write(name + "001.img", MapAnchor::AdrgLeader(true), size);
            folder_.Write(name + "001.gen", MapAnchor::AdrgLeader() + AdrgValues().Overview(name + "001") +
                                                AdrgValues().Record(name + "001"));
        }
    }
    std::string Path(const std::string& name) const { return folder_ / name; }

private:
    void Write(const std::string& name, const std::string& bytes, std::uintmax_t size) const {
        std::filesystem::resize_file(folder_.Write(name, bytes), size);
    }
    TempFolder folder_;
};

const Inputs& Files() {
    static const Inputs inputs;
    return inputs;
}

void Read(benchmark::State& state, const std::string& path) {
    const BString file(path);
    for (auto _ : state) {
        BGeoReference reference;
        BString used;
        MapAnchor::BMapAnchor::Read(file, reference, used, 0, 0, EMathTransformType::Affine, nullptr);
        benchmark::DoNotOptimize(reference);
    }
}

void Chart(benchmark::State& state, const char* name) {
    Read(state, Files().Path(name));
}
BENCHMARK_CAPTURE(Chart, kap_2MB, "small.kap");
BENCHMARK_CAPTURE(Chart, kap_200MB, "large.kap");
BENCHMARK_CAPTURE(Chart, cadrg_2MB, "small.on1");
BENCHMARK_CAPTURE(Chart, cadrg_200MB, "large.on1");
BENCHMARK_CAPTURE(Chart, adrg_2MB, "small001.img");
BENCHMARK_CAPTURE(Chart, adrg_200MB, "large001.img");
BENCHMARK_CAPTURE(Chart, doq_2MB, "small.doq");
BENCHMARK_CAPTURE(Chart, doq_200MB, "large.doq");

void RealChart(benchmark::State& state, const char* name) {
    const std::string path = Real(name);
    if (path.empty()) return state.SkipWithError("set MAPANCHOR_CORPUS");
    Read(state, path);
}
BENCHMARK_CAPTURE(RealChart, kap, "kap/rgbsmall.kap");
BENCHMARK_CAPTURE(RealChart, cadrg, "cadrg/001zc013.on1");
BENCHMARK_CAPTURE(RealChart, adrg, "adrg/SMALL_ADRG/ABCDEF01.GEN");

void Open(benchmark::State& state, const std::string& path) {
    GDALAllRegister();
    for (auto _ : state) {
        GDALDataset* dataset = GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY);
        if (!dataset) return state.SkipWithError("GDAL does not open it");
        double terms[6];
        dataset->GetGeoTransform(terms);
        benchmark::DoNotOptimize(dataset->GetSpatialRef());
        benchmark::DoNotOptimize(dataset->GetGCPs());
        benchmark::DoNotOptimize(terms);
        GDALClose(dataset);
    }
}

void ChartGdal(benchmark::State& state, const char* name) {
    Open(state, Files().Path(name));
}
BENCHMARK_CAPTURE(ChartGdal, doq_2MB, "small.doq");
BENCHMARK_CAPTURE(ChartGdal, doq_200MB, "large.doq");

void RealChartGdal(benchmark::State& state, const char* name) {
    const std::string path = Real(name);
    if (path.empty()) return state.SkipWithError("set MAPANCHOR_CORPUS");
    Open(state, path);
}
BENCHMARK_CAPTURE(RealChartGdal, kap, "kap/rgbsmall.kap");
BENCHMARK_CAPTURE(RealChartGdal, cadrg, "cadrg/001zc013.on1");
BENCHMARK_CAPTURE(RealChartGdal, adrg, "adrg/SMALL_ADRG/ABCDEF01.GEN");

}  // namespace

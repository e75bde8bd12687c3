// Reading charts, frames, rectangles and orthophoto headers by name, against GDAL
// opening the same file. Small and large files, whose rest is a hole.

#include "BenchFiles.h"
#include "ChartFiles.h"

#include <string_view>

namespace {

using bench::Who;
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
            folder_.Write(name + ".kap", chart, size);
            folder_.Write(name + ".on1", FrameFile().Bytes(), size);
            folder_.Write(name + ".doq", quad, size);
            folder_.Write(name + "001.img", MapAnchor::AdrgLeader(true), size);
            folder_.Write(name + "001.gen", MapAnchor::AdrgLeader() + AdrgValues().Overview(name + "001") +
                                                AdrgValues().Record(name + "001"));
        }
    }
    std::string Path(const std::string& name) const { return folder_.Path(name); }

private:
    bench::Folder folder_;
};

const Inputs& Files() {
    static const Inputs inputs;
    return inputs;
}

/// A made file by its name, or one of the corpus by the path there.
std::string PathOf(const char* name) {
    return std::string_view(name).find('/') == std::string_view::npos ? Files().Path(name) : Real(name);
}

void Read(benchmark::State& state, const char* name) {
    const std::string path = PathOf(name);
    if (path.empty()) return state.SkipWithError("set MAPANCHOR_CORPUS");
    bench::ReadByName(state, path);
}

void Gdal(benchmark::State& state, const char* name) {
    const std::string path = PathOf(name);
    if (path.empty()) return state.SkipWithError("set MAPANCHOR_CORPUS");
    Files();  // registers the drivers
    bench::OpenByGdal(state, path);
}

[[maybe_unused]] const bool kAdded = [] {
    for (const auto& [operation, name] : {std::pair{"read kap of 2 MB", "small.kap"},
                                          {"read kap of 200 MB", "large.kap"},
                                          {"read cadrg of 2 MB", "small.on1"},
                                          {"read cadrg of 200 MB", "large.on1"},
                                          {"read adrg of 2 MB", "small001.img"},
                                          {"read adrg of 200 MB", "large001.img"}})
        bench::Add(Who::Ours, operation, Read, name);
    for (const auto& [operation, name] : {std::pair{"read doq of 2 MB", "small.doq"},
                                          {"read doq of 200 MB", "large.doq"},
                                          {"read kap", "kap/rgbsmall.kap"},
                                          {"read cadrg", "cadrg/001zc013.on1"},
                                          {"read adrg", "adrg/SMALL_ADRG/ABCDEF01.GEN"}}) {
        bench::Add(Who::Ours, operation, Read, name);
        bench::Add(Who::Gdal, operation, Gdal, name);
    }
    return true;
}();

}  // namespace

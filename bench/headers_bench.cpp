// Reading MrSID, ECW and JPEG 2000 by name: JPEG 2000 against GDAL opening the same
// file, the others against the floor (open, read the head, close). Small and large
// files, whose rest is a hole.

#include "BenchFiles.h"
#include "HeaderFiles.h"

#include <fcntl.h>
#include <unistd.h>

namespace {

using bench::Who;

constexpr std::uintmax_t kSmall = std::uintmax_t{2} << 20;
constexpr std::uintmax_t kLarge = std::uintmax_t{200} << 20;

class Inputs {
public:
    Inputs() {
        const HeaderFiles::Ecw named{.datum = "EPSG:32633", .projection = "EPSG:32633"};
        const std::string records =
            HeaderFiles::SidPlace(5, 6, 7, 8) + HeaderFiles::SidShort(HeaderFiles::kSidProjected, 32633);
        for (const auto& [stem, size] : {std::pair{"small", kSmall}, {"large", kLarge}}) {
            folder_.Write(std::string(stem) + ".ecw", HeaderFiles::Ecw2(named), size);
            folder_.Write(std::string(stem) + ".sid", HeaderFiles::Sid2(records), size);
        }
        folder_.Write("plain.ecw", HeaderFiles::Ecw2({}), kSmall);
        MakeJp2();
        // The code stream is the last box, without a length, so that it may grow.
        std::filesystem::copy_file(Path("small.jp2"), Path("large.jp2"));
        // No other file has its stem, as no other raster in most folders has.
        std::filesystem::copy_file(Path("small.jp2"), Path("alone.jp2"));
        std::filesystem::resize_file(Path("large.jp2"), kLarge);
    }
    std::string Path(const char* name) const { return folder_.Path(name); }

private:
    void MakeJp2() const {
        const bench::Dataset memory(
            GetGDALDriverManager()->GetDriverByName("MEM")->Create("", 256, 256, 1, GDT_Byte, nullptr));
        std::array<double, 6> terms = {500000, 10, 0, 4100000, 0, -10};
        memory->SetGeoTransform(terms.data());
        OGRSpatialReference system;
        system.importFromEPSG(32633);
        memory->SetSpatialRef(&system);
        folder_.CopyRaster("small.jp2", "JP2OpenJPEG", *memory);
    }

    bench::Folder folder_;
};

const Inputs& Files() {
    static const Inputs inputs;
    return inputs;
}

void Floor(benchmark::State& state) {
    const std::string path = Files().Path("small.ecw");
    for (auto _ : state) {
        std::array<char, 128> head;
        const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        benchmark::DoNotOptimize(pread(descriptor, head.data(), head.size(), 0));
        close(descriptor);
        benchmark::DoNotOptimize(head);
    }
}

void Read(benchmark::State& state, const char* name) {
    bench::ReadByName(state, Files().Path(name));
}
void Gdal(benchmark::State& state, const char* name) {
    bench::OpenByGdal(state, Files().Path(name));
}

[[maybe_unused]] const bool kAdded = [] {
    for (const auto& [operation, name] : {std::pair{"read ecw without a system", "plain.ecw"},
                                          {"read ecw of 2 MB", "small.ecw"},
                                          {"read ecw of 200 MB", "large.ecw"},
                                          {"read sid of 2 MB", "small.sid"},
                                          {"read sid of 200 MB", "large.sid"}}) {
        bench::Add(Who::Ours, operation, Read, name);
        bench::Add(Who::Floor, operation, Floor);
    }
    for (const auto& [operation, name] :
         {std::pair{"read jp2", "small.jp2"}, {"read jp2 of 200 MB", "large.jp2"}}) {
        bench::Add(Who::Ours, operation, Read, name);
        bench::Add(Who::Gdal, operation, Gdal, name);
    }
    bench::AddBothWays(
        "read jp2", [] { return Files().Path("alone.jp2"); }, 0);
    return true;
}();

}  // namespace

// Files that are cut, spoiled or huge, of every kind that is read by its header: an
// answer comes, and it costs what was asked for.

#include "raster/BRefCADRG.h"

#include "ChartFiles.h"
#include "HeaderFiles.h"
#include "Reading.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <optional>

namespace MapAnchor {
namespace {

using namespace Tellurion;
using HeaderFiles::Bytes;

struct Kind {
    const char* name;  ///< so that the front door finds its reader
    std::string bytes;
    std::optional<EReferenceType> type = {};  ///< where there is a road by type
    bool pixels_follow = true;
};

std::vector<Kind> SmallFiles() {
    FrameFile little;
    little.big_endian = false;
    DoqFile doq;
    doq.line = 90;
    const auto tags = HeaderFiles::Placed({1024, 0, 1, 1, 3072, 0, 1, 32633, 1026, 34737, 4, 0}, "abcd");
    const std::string records = HeaderFiles::SidPlace(1, 2, 3, 4) +
                                HeaderFiles::SidShort(HeaderFiles::kSidProjected, 32633) +
                                HeaderFiles::SidText("IMAGE::WKT", "GEOGCS[]");
    return {{"chart.kap",
             "BSB/RA=20,10\nKNP/GD=NAD27\n    PP=1\nREF/1,0,0,1,1\nREF/2,9,0,1,2\nREF/3,9,9,2,2\n\x1A",
             EReferenceType::KAP},
            {"frame.on1", FrameFile().Bytes()},
            {"frame.on2", little.Bytes()},
            {"TPSGI001.gen", AdrgLeader() + "ADRG" + AdrgValues().Record("TPSGI001")},
            {"quad.doq", doq.Bytes()},
            {"a.ecw", HeaderFiles::Ecw2({.datum = "WGS84"}), EReferenceType::ECW},
            {"b.ecw", HeaderFiles::Ecw3(tags), EReferenceType::ECW, false},
            {"c.sid", HeaderFiles::Sid2(records), EReferenceType::MrSID},
            {"d.sid", HeaderFiles::Sid3(records, {1, 2, 3, 4, 5, 6}), EReferenceType::MrSID, false},
            {"e.jp2", HeaderFiles::Jp2(tags), EReferenceType::ECW, false}};
}

void ExpectFinite(const BGeoReference& reference) {
    if (!reference.HasMathTransform()) return;
    for (const double term : References::Terms(reference))
        EXPECT_TRUE(std::isfinite(term));
}

/// Every road either gives a transform that is finite or fails in the library's way;
/// anything else leaves the test.
void ReadAll(const Kind& kind, const std::string& path, const std::string& spoiled) {
    SCOPED_TRACE(kind.name + spoiled);
    BGeoReference typed;
    if (kind.type) Roads::Read(*kind.type, path, typed, Roads::kStrict);
    ExpectFinite(typed);
    ExpectFinite(ReadByName(path).reference);
}

TEST(HostileFiles, CutAtEveryLength) {
    const TempFolder folder;
    const LogCapture quiet;
    for (const Kind& kind : SmallFiles()) {
        const std::string path = folder.Write(kind.name, kind.bytes);
        ASSERT_TRUE(ReadByName(path).reference.HasMathTransform()) << kind.name;
        for (std::size_t length = kind.bytes.size(); length-- > 0;) {
            std::filesystem::resize_file(path, length);
            ReadAll(kind, path, " cut at " + std::to_string(length));
            BGeoReference reference;
            // A frame has nothing behind its coverage, so nothing can be missing.
            const bool frame = std::string(kind.name).starts_with("frame");
            EXPECT_FALSE(frame && BRefCADRG::Read(BString(path), reference)) << length;
        }
    }
}

void PutByte(const std::string& path, std::size_t at, char byte) {
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(static_cast<std::streamoff>(at));
    file.put(byte);
    ASSERT_TRUE(file.flush());
}

TEST(HostileFiles, EveryByteSpoiled) {
    const TempFolder folder;
    const LogCapture quiet;
    for (const Kind& kind : SmallFiles()) {
        const std::string path = folder.Write(kind.name, kind.bytes);
        for (std::size_t at = 0; at < kind.bytes.size(); ++at) {
            for (const char byte : {'\x00', '\xFF', '\x80', '-', static_cast<char>(~kind.bytes[at])}) {
                PutByte(path, at, byte);
                ReadAll(kind, path, " spoiled at " + std::to_string(at));
            }
            PutByte(path, at, kind.bytes[at]);
        }
        EXPECT_TRUE(ReadByName(path).reference.HasMathTransform()) << kind.name;
    }
}

/// The bytes that this process has read so far, from whatever file.
long BytesRead() {
    std::ifstream io("/proc/self/io");
    std::string label;
    long bytes = -1;
    io >> label >> bytes;
    return label == "rchar:" ? bytes : -1;
}

// Pixels by the hundred megabytes, as a hole without a line end, behind the header.
TEST(HostileFiles, PixelsAreNotRead) {
    const TempFolder folder;
    const LogCapture quiet;
    ASSERT_GE(BytesRead(), 0) << "the kernel's count of bytes read is needed";
    for (const Kind& kind : SmallFiles()) {
        if (!kind.pixels_follow) continue;
        const std::string path = folder.Write(kind.name, kind.bytes);
        ReadByName(path);  // the coordinate system's database is open by now
        std::filesystem::resize_file(path, std::uintmax_t{512} << 20);
        const long before = BytesRead();
        EXPECT_EQ(ReadByName(path).thrown.type, "") << kind.name;
        EXPECT_LT(BytesRead() - before, 100'000) << kind.name;
    }
}

// A walk over boxes goes forward, and ends; counts in records are those that a 32 bit
// product would let through.
TEST(HostileFiles, BoxesAndRecordsThatLeadNowhere) {
    std::string chain;
    for (int i = 0; i < 100000; ++i)
        chain += HeaderFiles::Box("free", "");
    const auto boxes = [](const std::string& head) {
        return HeaderFiles::Jp2Start() + head + HeaderFiles::GeoBox(HeaderFiles::Placed({3072, 0, 1, 32633}));
    };
    const auto long_box = [](std::uint64_t length) { return Bytes().U32(1).Text("free").Big(length).text; };
    const auto record = [](std::size_t count, std::size_t dimension) {
        const std::string name = "IMAGE::XY_ORIGIN";
        Bytes b;
        b.U32(name.size() + 20).Text(name).U8(0).U32(7).U32(count).U32(2).U32(dimension).U32(dimension);
        return HeaderFiles::Sid2(b.text + std::string(16, '\x40'));
    };
    const struct {
        const char* name;
        std::string bytes;
    } cases[] = {
        {"shorter_than_its_header.jp2", boxes(Bytes().U32(7).Text("free").text)},
        {"back_to_its_start_in_64_bits.jp2", boxes(long_box(0))},
        {"around_the_end_of_64_bits.jp2", boxes(long_box(~std::uint64_t{0} - 19))},
        {"four_gigabytes.jp2", boxes(Bytes().U32(0xFFFFFFFF).Text("free").text)},
        {"a_hundred_thousand.jp2", boxes(chain)},
        {"none_of_a_large_dimension.sid", record(0, 0x10000)},
        {"product_beyond_64_bits.sid", record(0xFFFFFFFF, 0xFFFF)},
        {"product_beyond_32_bits.sid", record(2, 0x80000001)},
    };
    const TempFolder folder;
    for (const auto& test : cases) {
        BGeoReference reference;
        EXPECT_EQ(Roads::Read(folder.Write(test.name, test.bytes), reference).type, kNoReference)
            << test.name;
    }
}

// A large file is read where its header points, and nowhere else.
TEST(HostileFiles, MetadataBehindFourGigabytesOfNothing) {
    const TempFolder folder;
    constexpr std::uint64_t kSize = std::uint64_t{5} << 30;
    const std::string start = HeaderFiles::Jp2Start();
    const auto file = folder.Write("a.jp2", start + Bytes().U32(1).Text("jp2c").Big(kSize).text);
    std::filesystem::resize_file(file, start.size() + kSize);
    std::ofstream(file, std::ios::binary | std::ios::app)
        << HeaderFiles::GeoBox(HeaderFiles::Placed({3072, 0, 1, 32633}));
    BGeoReference reference;
    ASSERT_EQ(Roads::Read(file, reference).type, "");
    EXPECT_EQ(References::Terms(reference)[2], 500000.0);
}

}  // namespace
}  // namespace MapAnchor

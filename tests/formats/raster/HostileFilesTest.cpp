// Files that are cut, spoiled or huge, of every kind that is read by its header: a result
// comes, and it costs what was asked for.

#include "raster/cadrg/BRefCADRG.h"

#include "ChartFiles.h"
#include "HeaderFiles.h"
#include "Reading.h"

#include <cmath>
#include <filesystem>
#include <fstream>

namespace MapAnchor {
namespace {

using namespace Tellurion;
using namespace HeaderFiles;

struct Kind {
    std::string name;  ///< whose extension selects the reader
    std::string bytes;
    EReferenceType type = EReferenceType::Reserved;  ///< where it can be read by type
    bool pixels_follow = true;
};

std::vector<Kind> SmallFiles() {
    FrameFile little;
    little.big_endian = false;
    const auto tags = Placed({1024, 0, 1, 1, 3072, 0, 1, 32633, 1026, 34737, 4, 0}, "abcd");
    const std::string records =
        SidPlace(1, 2, 3, 4) + SidShort(kSidProjected, 32633) + SidText("IMAGE::WKT", "GEOGCS[]");
    return {{"chart.kap",
             "BSB/RA=20,10\nKNP/GD=NAD27\n    PP=1\nREF/1,0,0,1,1\nREF/2,9,0,1,2\nREF/3,9,9,2,2\n\x1A",
             EReferenceType::KAP},
            {"frame.on1", FrameFile().Bytes()},
            {"frame.on2", little.Bytes()},
            {"TPSGI001.gen", AdrgLeader() + "ADRG" + AdrgValues().Record("TPSGI001")},
            {"quad.doq", DoqFile{.line = 90}.Bytes()},
            {"a.ecw", Ecw2({.datum = "WGS84"}), EReferenceType::ECW},
            {"b.ecw", Ecw3(tags), EReferenceType::ECW, false},
            {"c.sid", Sid2(records), EReferenceType::MrSID},
            {"d.sid", Sid3(records, {1, 2, 3, 4, 5, 6}), EReferenceType::MrSID, false},
            {"e.jp2", Jp2(tags), EReferenceType::ECW, false}};
}

/// Each read either gives a transform that is finite or fails in the library's way;
/// anything else leaves the test.
void ReadAll(const Kind& kind, const std::string& path, const char* how, std::size_t at) {
    SCOPED_TRACE(kind.name + how + std::to_string(at));
    BGeoReference typed;
    if (kind.type != EReferenceType::Reserved) Roads::Read(kind.type, path, typed, Roads::kStrict);
    for (const BGeoReference& reference : {typed, ReadByName(path).reference})
        for (const double term : reference.HasMathTransform() ? References::Terms(reference) : Six{})
            EXPECT_TRUE(std::isfinite(term));
}

TEST(HostileFiles, CutAtEveryLengthAndSpoiledAtEveryByte) {
    const TempFolder folder;
    const LogCapture quiet;
    for (const Kind& kind : SmallFiles()) {
        const std::string path = folder.Write(kind.name, kind.bytes);
        ASSERT_TRUE(ReadByName(path).reference.HasMathTransform()) << kind.name;
        for (std::size_t at = 0; at < kind.bytes.size(); ++at)
            for (const char byte : {'\x00', '\xFF', '\x80', '-', static_cast<char>(~kind.bytes[at])}) {
                std::string spoiled = kind.bytes;
                spoiled[at] = byte;
                folder.Write(kind.name, spoiled);
                ReadAll(kind, path, " spoiled at ", at);
            }
        folder.Write(kind.name, kind.bytes);
        for (std::size_t length = kind.bytes.size(); length-- > 0;) {
            std::filesystem::resize_file(path, length);
            ReadAll(kind, path, " cut at ", length);
            // A frame has nothing behind its coverage, so nothing can be missing.
            BGeoReference reference;
            EXPECT_FALSE(kind.name.starts_with("frame") && BRefCADRG::Read(BString(path), reference))
                << length;
        }
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
    const TempFolder folder;
    const std::string placed = GeoBox(Placed({3072, 0, 1, 32633}));
    const auto expect = [&](const char* name, const std::string& bytes) {
        BGeoReference reference;
        EXPECT_EQ(Roads::Read(folder.Write(name, bytes), reference).type, kNoReference) << name;
    };
    const auto box = [](std::size_t length) { return Bytes().U32(length).Text("free"); };
    const auto record = [](std::size_t count, std::size_t dimension) {
        Bytes b;
        b.U32(36).Text("IMAGE::XY_ORIGIN").U8(0).U32(7).U32(count).U32(2).U32(dimension).U32(dimension);
        return Sid2(b.text + std::string(16, '\x40'));
    };
    std::string chain;
    for (int i = 0; i < 100000; ++i)
        chain += Box("free", "");
    expect("shorter_than_its_header.jp2", Jp2Start() + box(7).text + placed);
    expect("back_to_its_start_in_64_bits.jp2", Jp2Start() + box(1).Big(std::uint64_t{0}).text + placed);
    expect("around_the_end.jp2", Jp2Start() + box(1).Big(~std::uint64_t{0} - 19).text + placed);
    expect("four_gigabytes.jp2", Jp2Start() + box(0xFFFFFFFF).text + placed);
    expect("a_hundred_thousand.jp2", Jp2Start() + chain + placed);
    expect("none_of_a_large_dimension.sid", record(0, 0x10000));
    expect("product_beyond_64_bits.sid", record(0xFFFFFFFF, 0xFFFF));
    expect("product_beyond_32_bits.sid", record(2, 0x80000001));
    // A large file is read where its header points, and nowhere else.
    constexpr std::uint64_t kSize = std::uint64_t{5} << 30;
    const auto file = folder.Write("a.jp2", Jp2Start() + Bytes().U32(1).Text("jp2c").Big(kSize).text);
    std::filesystem::resize_file(file, Jp2Start().size() + kSize);
    std::ofstream(file, std::ios::binary | std::ios::app) << placed;
    EXPECT_EQ(References::Terms(Good(file))[2], 500000.0);
}

}  // namespace
}  // namespace MapAnchor

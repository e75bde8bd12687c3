// Bytes that mean harm: what they end in does not matter here, that they end does.

#include <gtest/gtest.h>

#include "HeaderFiles.h"
#include "LogCapture.h"
#include "References.h"
#include "Roads.h"
#include "TempFolder.h"

#include <cmath>

#include <unistd.h>

namespace MapAnchor {
namespace {

using namespace Tellurion;
using HeaderFiles::Bytes;

struct Kind {
    const char* name;
    EReferenceType type;
    std::string bytes;
};

std::vector<Kind> SmallFiles() {
    const auto tags = HeaderFiles::Placed({1024, 0, 1, 1, 3072, 0, 1, 32633, 1026, 34737, 4, 0}, "abcd");
    const std::string records = HeaderFiles::SidPlace(1, 2, 3, 4) +
                                HeaderFiles::SidShort(HeaderFiles::kSidProjected, 32633) +
                                HeaderFiles::SidText("IMAGE::WKT", "GEOGCS[]");
    return {{"a.ecw", EReferenceType::ECW, HeaderFiles::Ecw2({.datum = "WGS84"})},
            {"b.ecw", EReferenceType::ECW, HeaderFiles::Ecw3(tags)},
            {"c.sid", EReferenceType::MrSID, HeaderFiles::Sid2(records)},
            {"d.sid", EReferenceType::MrSID, HeaderFiles::Sid3(records, {1, 2, 3, 4, 5, 6})},
            {"e.jp2", EReferenceType::ECW, HeaderFiles::Jp2(tags)}};
}

/// Every road either gives a transform that is finite or fails in the library's way;
/// anything else leaves the test.
void ReadAll(const Kind& kind, const std::string& file) {
    BGeoReference reference;
    Roads::Read(kind.type, file, reference, Roads::kStrict);
    Roads::Read(file, reference);
    if (!reference.HasMathTransform()) return;
    for (const double term : References::Terms(reference))
        EXPECT_TRUE(std::isfinite(term));
}

TEST(HostileHeaders, CutAtEveryLength) {
    const TempFolder folder;
    const LogCapture quiet;
    for (const Kind& kind : SmallFiles())
        for (std::size_t length = 0; length < kind.bytes.size(); ++length) {
            SCOPED_TRACE(std::string(kind.name) + " cut at " + std::to_string(length));
            ReadAll(kind, folder.Write(kind.name, kind.bytes.substr(0, length)));
        }
}

TEST(HostileHeaders, EveryByteTurnedAround) {
    const TempFolder folder;
    const LogCapture quiet;
    for (const Kind& kind : SmallFiles())
        for (std::size_t at = 0; at < kind.bytes.size(); ++at) {
            SCOPED_TRACE(std::string(kind.name) + " turned at " + std::to_string(at));
            std::string bytes = kind.bytes;
            bytes[at] = static_cast<char>(~bytes[at]);
            ReadAll(kind, folder.Write(kind.name, bytes));
        }
}

struct BoxCase {
    const char* name;
    std::string bytes;
};

// A walk over boxes goes forward, and ends.
TEST(HostileHeaders, BoxesThatLeadNowhere) {
    std::string chain;
    for (int i = 0; i < 100000; ++i)
        chain += HeaderFiles::Box("free", "");
    const std::string good = HeaderFiles::GeoBox(HeaderFiles::Placed({3072, 0, 1, 32633}));
    const BoxCase cases[] = {
        {"shorter_than_its_header", Bytes().U32(7).Text("free").text + good},
        {"back_to_its_start_in_64_bits", Bytes().U32(1).Text("free").Big(std::uint64_t{0}).text + good},
        {"around_the_end_of_64_bits", Bytes().U32(1).Text("free").Big(~std::uint64_t{0} - 19).text + good},
        {"four_gigabytes", Bytes().U32(0xFFFFFFFF).Text("free").text + good},
        {"a_hundred_thousand", chain + good},
    };
    const TempFolder folder;
    for (const BoxCase& c : cases) {
        SCOPED_TRACE(c.name);
        BGeoReference reference;
        const auto file = folder.Write("a.jp2", HeaderFiles::Jp2Start() + c.bytes);
        EXPECT_EQ(Roads::Read(file, reference).type, "BFileContentNotValidException");
    }
}

// Counts that a 32 bit product would let through.
TEST(HostileHeaders, RecordsThatClaimTooMuch) {
    const auto record = [](std::size_t count, std::size_t dimension) {
        const std::string name = "IMAGE::XY_ORIGIN";
        return Bytes()
                   .U32(name.size() + 20)
                   .Text(name)
                   .U8(0)
                   .U32(7)
                   .U32(count)
                   .U32(2)
                   .U32(dimension)
                   .U32(dimension)
                   .text +
               std::string(16, '\x40');
    };
    const TempFolder folder;
    for (const auto& [count, dimension] :
         {std::pair<std::size_t, std::size_t>{0, 0x10000}, {0xFFFFFFFF, 0xFFFF}, {2, 0x80000001}}) {
        BGeoReference reference;
        const auto file = folder.Write("a.sid", HeaderFiles::Sid2(record(count, dimension)));
        EXPECT_EQ(Roads::Read(file, reference).type, "BFileContentNotValidException");
    }
}

// A large file is read where its header points, and nowhere else.
TEST(HostileHeaders, MetadataBehindFourGigabytesOfNothing) {
    const TempFolder folder;
    const auto file = folder.Write(
        "a.jp2", HeaderFiles::Jp2Start() + Bytes().U32(1).Text("jp2c").Big(std::uint64_t{5} << 30).text);
    const std::uint64_t start = std::filesystem::file_size(file) - 16 + (std::uint64_t{5} << 30);
    std::filesystem::resize_file(file, start);
    {
        std::ofstream out(file, std::ios::binary | std::ios::app);
        out << HeaderFiles::GeoBox(HeaderFiles::Placed({3072, 0, 1, 32633}));
    }
    BGeoReference reference;
    ASSERT_EQ(Roads::Read(file, reference).type, "");
    EXPECT_EQ(References::Terms(reference)[2], 500000.0);
}

}  // namespace
}  // namespace MapAnchor

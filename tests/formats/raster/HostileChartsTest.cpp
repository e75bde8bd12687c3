// Chart and frame files that are cut, spoiled or huge: an answer comes, and it costs
// what was asked for.

#include "raster/BRefADRG.h"
#include "raster/BRefCADRG.h"

#include <gtest/gtest.h>

#include "ChartFiles.h"
#include "LogCapture.h"
#include "Reading.h"
#include "TempFolder.h"

#include <cmath>
#include <filesystem>
#include <fstream>

namespace MapAnchor {
namespace {

using namespace Tellurion;

struct Kind {
    const char* file;  ///< named so that the front door finds its reader
    std::string bytes;
};

std::vector<Kind> SmallFiles() {
    FrameFile little;
    little.big_endian = false;
    DoqFile doq;
    doq.line = 90;
    return {{"chart.kap",
             "BSB/RA=20,10\nKNP/GD=NAD27\n    PP=1\nREF/1,0,0,1,1\nREF/2,9,0,1,2\nREF/3,9,9,2,2\n\x1A"},
            {"frame.on1", FrameFile().Bytes()},
            {"frame.on2", little.Bytes()},
            {"TPSGI001.gen", AdrgLeader() + "ADRG" + AdrgValues().Record("TPSGI001")},
            {"quad.doq", doq.Bytes()}};
}

/// A transform that was read is one: finite terms.
void ExpectSound(const NamedRead& read, const std::string& what) {
    if (!read.reference.HasMathTransform()) return;
    for (const double term : TermsOf(read.reference))
        EXPECT_TRUE(std::isfinite(term)) << what;
}

TEST(HostileCharts, CutAtEveryLength) {
    const TempFolder folder;
    const LogCapture log;
    for (const Kind& kind : SmallFiles()) {
        const std::string path = folder.Write(kind.file, kind.bytes);
        ASSERT_TRUE(ReadByName(path).reference.HasMathTransform()) << kind.file;
        for (std::size_t length = kind.bytes.size(); length-- > 0;) {
            std::filesystem::resize_file(path, length);
            ExpectSound(ReadByName(path), kind.file + std::to_string(length));
            BGeoReference reference;
            // A frame has nothing behind its coverage, so nothing can be missing.
            const bool frame = std::string(kind.file).starts_with("frame");
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

TEST(HostileCharts, EveryByteSpoiled) {
    const TempFolder folder;
    const LogCapture log;
    for (const Kind& kind : SmallFiles()) {
        const std::string path = folder.Write(kind.file, kind.bytes);
        for (std::size_t at = 0; at < kind.bytes.size(); ++at) {
            for (const char byte : {'\x00', '\xFF', '\x80', '-'}) {
                PutByte(path, at, byte);
                ExpectSound(ReadByName(path), kind.file + std::to_string(at));
            }
            PutByte(path, at, kind.bytes[at]);
        }
        EXPECT_TRUE(ReadByName(path).reference.HasMathTransform()) << kind.file;
    }
}

// Pixels by the hundred megabytes, as a hole without a line end, behind the header.
TEST(HostileCharts, PixelsAreNotRead) {
    const TempFolder folder;
    const LogCapture log;
    ASSERT_GE(BytesRead(), 0) << "the kernel's count of bytes read is needed";
    for (const Kind& kind : SmallFiles()) {
        const std::string path = folder.Write(kind.file, kind.bytes);
        ReadByName(path);  // the coordinate system's database is open by now
        std::filesystem::resize_file(path, std::uintmax_t{512} << 20);
        const long before = BytesRead();
        EXPECT_EQ(ReadByName(path).thrown.type, "") << kind.file;
        EXPECT_LT(BytesRead() - before, 100'000) << kind.file;
    }
}

}  // namespace
}  // namespace MapAnchor

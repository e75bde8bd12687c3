// The cursor over bytes and the file that is read in windows.

#include <Tellurion/RandomAccessFile.h>
#include "common/files/ByteReader.h"

#include <gtest/gtest.h>

#include "TempFolder.h"

#include <sys/stat.h>
#include <limits>

namespace MapAnchor {
namespace {

using namespace std::string_view_literals;
using Tellurion::BString;

TEST(ByteReader, ReadsNumbersAndTexts) {
    constexpr std::string_view kBytes = "\x80\x01\xFE\xFF\x00\x00\x01\x02\x40\x09\x21\xFB\x54\x44\x2D\x18"sv;
    ByteReader big(kBytes), little(kBytes, ByteOrder::Little), text("RAW\0rubbish,name\0rest"sv);
    EXPECT_EQ(big.U16(), 0x8001);
    EXPECT_EQ(big.S16(), -257);
    EXPECT_EQ(big.U32(), 0x102U);
    EXPECT_EQ(big.F64(), 3.141592653589793);
    EXPECT_TRUE(big.Ok() && big.AtEnd());
    EXPECT_EQ(little.U64(), 0x02010000FFFE0180U);
    little.SetOrder(ByteOrder::Big);
    EXPECT_EQ(little.U8(), 0x40);
    EXPECT_EQ(text.Text(12), "RAW");
    EXPECT_EQ(text.TextToNul(), "name");
    EXPECT_EQ(text.TextToNul(), "");  // without its NUL it is none
    EXPECT_FALSE(text.Ok());
}

TEST(ByteReader, FailsOnceAndForAllBeyondTheEnd) {
    const auto after = [](auto read) {
        ByteReader reader("\x01\x02\x03"sv);
        reader.U8();
        read(reader);
        return !reader.Ok() && reader.U8() == 0 && reader.Bytes(1).empty() && !reader.Skip(0);
    };
    EXPECT_TRUE(after([](ByteReader& r) { EXPECT_EQ(r.U32(), 0U); }));
    EXPECT_TRUE(after([](ByteReader& r) { EXPECT_TRUE(r.Bytes(3).empty()); }));
    EXPECT_TRUE(after([](ByteReader& r) { r.Skip(std::numeric_limits<std::uint64_t>::max()); }));
    EXPECT_TRUE(after([](ByteReader& r) { EXPECT_FALSE(r.Seek(4)); }));
    ByteReader at_end("\x01"sv);
    EXPECT_TRUE(at_end.Seek(1) && at_end.Bytes(0).empty() && at_end.Ok());
}

TEST(RandomAccessFile, ReadsRegularFilesAndNothingBeyondTheirEnd) {
    const TempFolder folder;
    Tellurion::RandomAccessFile file;
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    for (const char* name : {"missing", "", "pipe"})
        EXPECT_FALSE(file.Open(BString(folder / name)) || file.IsOpen()) << name;
    EXPECT_EQ(file.Window(0, 1), "");
    ASSERT_TRUE(file.Open(BString(folder.Write("a.bin", "0123456789"))));
    EXPECT_EQ(file.Size(), 10U);
    EXPECT_EQ(file.Window(3, 4), "3456");
    EXPECT_EQ(file.Window(8, std::numeric_limits<std::size_t>::max()), "89");
    EXPECT_EQ(file.Window(std::numeric_limits<std::uint64_t>::max(), 1), "");
    EXPECT_EQ(file.Read(2, 3), "234");
    EXPECT_EQ(file.Read(7, 4), "789");  // from what was kept, and cut at the end
    EXPECT_EQ(file.Read(1, 2), "12");   // before what was kept
    EXPECT_EQ(file.Read(10, 1), "");
}

}  // namespace
}  // namespace MapAnchor

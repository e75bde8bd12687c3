#include <Tellurion/BFile.h>

#include <gtest/gtest.h>

#include "TempFolder.h"

#include <unistd.h>
#include <vector>

namespace Tellurion {
namespace {

using Lines = std::vector<std::string>;

Lines Read(const std::string& path, std::size_t limit = 0) {
    BFile file{BString(path)};
    EXPECT_TRUE(file.Open(EFileMode::Read, EFileMode::Text));
    Lines lines;
    for (BString line; file.ReadLine(line, limit);)
        lines.push_back(line.StdStr());
    EXPECT_TRUE(file.atEOF());
    return lines;
}

TEST(BFile, ReadsLinesWithoutTheirEnds) {
    const std::string chunk(5000, 'x');  // longer than the first read
    const std::pair<std::string, Lines> cases[] = {
        {"a\nb\n", {"a", "b"}},     {"", {}},
        {"a\r\nb\r\n", {"a", "b"}}, {"Z\xFCrich \x80\nok\n", {"Z\xC3\xBCrich \xE2\x82\xAC", "ok"}},
        {"a\nb", {"a", "b"}},       {"Z\xC3\xBCrich\n", {"Z\xC3\xBCrich"}},
        {"\n\r\nc", {"", "", "c"}}, {chunk + "\n" + chunk + "\r\n" + chunk, {chunk, chunk, chunk}},
        {"\357\273\277a\n", {"a"}}};
    const TempFolder folder;
    for (const auto& [content, lines] : cases)
        EXPECT_EQ(Read(folder.Write("file", content)), lines);
    EXPECT_EQ(Read(folder.Write("limit", "12345678\r\n1234567890\n"), 9),
              (Lines{"12345678", "123456789", "0"}));
}

// A file that is not a text must not cost memory without bound.
TEST(BFile, StopsAtTheMaximumLengthOfALine) {
    const TempFolder folder;
    const std::string path = folder.Write("zeros", "");
    ASSERT_EQ(truncate(path.c_str(), off_t{1} << 33), 0);  // a sparse file of 8 GiB
    BFile file{BString(path)};
    ASSERT_TRUE(file.Open(EFileMode::Read, EFileMode::Text));
    std::string_view line;
    ASSERT_TRUE(file.ReadLineBytes(line));
    EXPECT_EQ(line.size(), BFile::kLongestLine);
    EXPECT_TRUE(file.atEOF());
    EXPECT_FALSE(file.ReadLineBytes(line));
}

TEST(BFile, WritesAnyBytesAndReadsThemBack) {
    const TempFolder folder;
    const std::string content = "raw \xFF byte\n" + std::string(10000, 'y');
    BFile file(BString(folder / "\303\234ber.txt"));
    EXPECT_EQ(file.GetLength(), -1);
    ASSERT_TRUE(file.Open(EFileMode::Write, EFileMode::Text));
    EXPECT_TRUE(file.WriteLine(BString(content)));
    EXPECT_TRUE(file.Close());
    EXPECT_FALSE(file.WriteLine("late"));
    ASSERT_TRUE(file.Open(EFileMode::Read, EFileMode::Binary));
    EXPECT_EQ(file.GetLength(), 10011);
    BString line;
    ASSERT_TRUE(file.ReadLine(line, 0));
    std::string rest(20000, '\0');
    rest.resize(file.Read(rest.data(), rest.size()));
    EXPECT_EQ("raw \xFF byte\n" + rest, content);
    EXPECT_TRUE(file.atEOF());
}

TEST(BFile, ReportsWhatCannotBeOpenedOrWritten) {
    const TempFolder folder;
    const std::string before_nul = folder.Write("there", "x") + std::string("\0.txt", 5);
    for (const std::string& path : {folder / "missing", folder / ".", before_nul, std::string()})
        EXPECT_FALSE(BFile(BString(path)).Open(EFileMode::Read, EFileMode::Text)) << path;
    EXPECT_FALSE(BFile(BString(folder / "missing/file")).Open(EFileMode::Write, EFileMode::Text));
    // The line is buffered: only Close() meets the full device.
    BFile full{BString("/dev/full")};
    ASSERT_TRUE(full.Open(EFileMode::Write, EFileMode::Text));
    full.WriteLine("lost\n");
    EXPECT_FALSE(full.Close());
}

}  // namespace
}  // namespace Tellurion

#include <Tellurion/BFile.h>

#include <gtest/gtest.h>

#include "TempFolder.h"

#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace Tellurion {
namespace {

std::vector<std::string> Lines(const std::string& path, std::size_t limit = 0) {
    BFile file{BString(path)};
    EXPECT_TRUE(file.Open(EFileMode::Read, EFileMode::Text));
    std::vector<std::string> lines;
    for (BString line; file.ReadLine(line, limit);)
        lines.push_back(line.StdStr());
    EXPECT_TRUE(file.atEOF());
    return lines;
}

struct LineCase {
    const char* name;
    std::string content;
    std::vector<std::string> lines;
};

TEST(BFile, LinesComeWithoutTheirEnds) {
    const std::string chunk(5000, 'x');  // longer than the first read
    const std::vector<LineCase> cases = {
        {"unix", "a\nb\n", {"a", "b"}},
        {"windows", "a\r\nb\r\n", {"a", "b"}},
        {"last_without_end", "a\nb", {"a", "b"}},
        {"empty_lines", "\n\r\nc", {"", "", "c"}},
        {"empty", "", {}},
        {"only_an_end", "\n", {""}},
        {"mark", "\357\273\277a\n", {"a"}},
        {"latin", "Z\xFCrich \x80\nok\n", {"Z\xC3\xBCrich \xE2\x82\xAC", "ok"}},
        {"utf8", "Z\xC3\xBCrich\n", {"Z\xC3\xBCrich"}},
        {"across_reads", chunk + "\n" + chunk + "\r\n" + chunk, {chunk, chunk, chunk}},
    };
    const TempFolder folder;
    for (const LineCase& test : cases)
        EXPECT_EQ(Lines(folder.Write(test.name, test.content)), test.lines) << test.name;
    EXPECT_EQ(Lines(folder.Write("limit", "[Transform Settings]\r\nabcdefghijklmnopqrstuvwxyz\n"), 22),
              (std::vector<std::string>{"[Transform Settings]", "abcdefghijklmnopqrstuv", "wxyz"}));
}

// Nothing that is no text file may cost memory without bound.
TEST(BFile, AFileWithoutLineEndsStopsAtTheLongestLine) {
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

TEST(BFile, WhatWasWrittenReadsBack) {
    const TempFolder folder;
    const BString path(folder / "\303\234ber.txt");
    BFile out(path);
    ASSERT_TRUE(out.Open(EFileMode::Write, EFileMode::Text));
    const std::string odd = "raw \xFF byte";
    EXPECT_TRUE(out.WriteLine("erste\n"));
    EXPECT_TRUE(out.WriteLine(BString(odd)));
    EXPECT_TRUE(out.Close());
    EXPECT_TRUE(out.Close());
    EXPECT_FALSE(out.WriteLine("late"));
    EXPECT_EQ(TempFolder::Slurp(path.StdStr()), "erste\n" + odd);
}

TEST(BFile, ReadsBytesAndTellsItsLength) {
    const TempFolder folder;
    const std::string content(10000, 'y');
    BFile file{BString(folder.Write("bytes", "line\n" + content))};
    EXPECT_EQ(file.GetLength(), -1);
    ASSERT_TRUE(file.Open(EFileMode::Read, EFileMode::Binary));
    EXPECT_EQ(file.GetLength(), 10005);
    BString line;
    ASSERT_TRUE(file.ReadLine(line, 0));
    std::string rest(20000, '\0');
    rest.resize(file.Read(rest.data(), rest.size()));
    EXPECT_EQ(rest, content);
    EXPECT_TRUE(file.atEOF());
    EXPECT_EQ(file.Read(rest.data(), 1), 0U);
}

TEST(BFile, OpenTellsWhatCannotBeRead) {
    const TempFolder folder;
    const auto opens = [](const std::string& path, EFileMode access) {
        return BFile(BString(path)).Open(access, EFileMode::Text);
    };
    EXPECT_FALSE(opens(folder / "missing", EFileMode::Read));
    EXPECT_FALSE(opens(folder / ".", EFileMode::Read));
    EXPECT_FALSE(opens(folder / "missing/file", EFileMode::Write));
    EXPECT_FALSE(opens(folder.Write("there", "x") + std::string("\0.txt", 5), EFileMode::Read));
    EXPECT_FALSE(opens("", EFileMode::Read));
}

// The device takes the bytes into no buffer at all: only the close can tell.
TEST(BFile, AFullDeviceIsToldAtTheLatestByClose) {
    BFile file{BString("/dev/full")};
    ASSERT_TRUE(file.Open(EFileMode::Write, EFileMode::Text));
    file.WriteLine("lost\n");
    EXPECT_FALSE(file.Close());
    EXPECT_FALSE(file.Close());
}

}  // namespace
}  // namespace Tellurion

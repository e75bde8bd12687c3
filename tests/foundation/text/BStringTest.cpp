#include <Tellurion/BString.h>

#include <gtest/gtest.h>

#include <random>
#include <thread>
#include <vector>

namespace Tellurion {
namespace {

TEST(BString, AnyBytesSurviveTheWayThroughUtf16) {
    const std::vector<std::string> cases = {
        "plain",
        "M\xC3\xBCnchen \xE6\xB1\x89 \xF0\x9F\x97\xBA",  // two, three and four byte sequences
        "\xFF\xFE\x80",
        "M\xFCnchen",  // no UTF-8
        "\xC0\xAF",
        "\xED\xA0\x80",  // overlong, a surrogate
        "\xE2\x82",
        "\xF4\x90\x80\x80",  // cut short, past the last code point
        std::string("a\0b", 3)};
    for (const std::string& bytes : cases)
        EXPECT_EQ(BString(bytes).StdStr(), bytes);

    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        std::string bytes(random() % 12, '\0');
        for (char& c : bytes)
            c = static_cast<char>(random());
        ASSERT_EQ(BString(bytes).StdStr(), bytes);
    }
}

TEST(BString, CountsAndComparesCodeUnits) {
    EXPECT_EQ(BString("\xC3\xBC").GetLength(), 1U);
    EXPECT_EQ(BString("\xF0\x9F\x97\xBA").GetLength(), 2U);
    EXPECT_EQ(BString(L"Stra\u00DFe"), BString("Stra\303\237e"));
    EXPECT_NE(BString("a"), BString("A"));
    EXPECT_EQ(BString(L"\U0001F5FA").WideStr(), L"\U0001F5FA");
    EXPECT_TRUE(BString(static_cast<const char*>(nullptr)).IsEmpty());
}

TEST(BString, LoneSurrogatesAreReplacedOnTheWayOut) {
    EXPECT_EQ(BString(std::u16string(u"a\xD83D")).StdStr(), "a\xEF\xBF\xBD");
}

TEST(BString, CutsAndEdits) {
    const BString text("abcdef");
    EXPECT_EQ(text.Left(2), BString("ab"));
    EXPECT_EQ(text.Right(2), BString("ef"));
    EXPECT_EQ(text.Left(99), text);
    EXPECT_EQ(text.Right(99), text);
    EXPECT_TRUE(text.StartsWith("abc"));
    EXPECT_FALSE(text.StartsWith("abcdefg"));
    EXPECT_TRUE(text.EndsWith("ef"));
    EXPECT_FALSE(text.EndsWith("xabcdef"));
    EXPECT_EQ(BString(" \t a b \r\n").Trim(), BString("a b"));
    EXPECT_EQ(BString("\t \n").Trim(), BString());
    EXPECT_EQ(BString("aXbXX").ReplaceAll("X", "XX"), BString("aXXbXXXX"));
    EXPECT_EQ(BString("abc").ReplaceAll("", "x"), BString("abc"));
    EXPECT_EQ(BString("aXbXX").RemoveAll("X"), BString("ab"));
    EXPECT_EQ(BString(".TIF \xC3\x84\xC5\xBD\xCE\xA9\xD0\x96").ToLower(),
              BString(".tif \xC3\xA4\xC5\xBE\xCF\x89\xD0\xB6"));
    EXPECT_EQ(BString("\xC3\xA4\xC5\xBE\xCF\x89\xD0\xB6 i").ToUpper(),
              BString("\xC3\x84\xC5\xBD\xCE\xA9\xD0\x96 I"));
}

TEST(BString, NarrowFormFollowsEveryChange) {
    BString text("a");
    EXPECT_STREQ(text.Ascii(), "a");
    text += 'b';
    text += L"c";
    text += BString("d");
    EXPECT_STREQ(text.Ascii(), "abcd");
    text.ToUpper();
    EXPECT_STREQ(text.Utf8(), "ABCD");
    text = "x";
    EXPECT_STREQ(text.Ascii(), "x");
    BString moved(std::move(text));
    EXPECT_STREQ(moved.Ascii(), "x");
    text = std::move(moved);
    EXPECT_STREQ(text.Ascii(), "x");
}

TEST(BString, NarrowFormMayBeAskedFromManyThreads) {
    const BString shared("gemeinsam");
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([&shared] { EXPECT_STREQ(shared.Ascii(), "gemeinsam"); });
    for (std::thread& thread : threads)
        thread.join();
}

}  // namespace
}  // namespace Tellurion

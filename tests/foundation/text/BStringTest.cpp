#include <Tellurion/BString.h>

#include <gtest/gtest.h>

#include <random>
#include <thread>
#include <vector>

namespace Tellurion {
namespace {

TEST(BString, KeepsAnyBytes) {
    std::vector<std::string> cases = {"M\xC3\xBCnchen \xE6\xB1\x89 \xF0\x9F\x97\xBA",
                                      "M\xFCnchen",        // not UTF-8
                                      "\xED\xA0\x80",      // a surrogate
                                      "\xF4\x90\x80\x80",  // beyond the last code point
                                      "\xE2\x82",
                                      std::string("a\0b", 3)};
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        std::string& bytes = cases.emplace_back(random() % 12, '\0');
        for (char& c : bytes)
            c = static_cast<char>(random());
    }
    for (const std::string& bytes : cases)
        ASSERT_EQ(BString(bytes).StdStr(), bytes);
    EXPECT_EQ(BString(std::u16string(u"a\xD83D")).StdStr(), "a\xEF\xBF\xBD");
}

TEST(BString, ConvertsAndCountsCodeUnits) {
    EXPECT_EQ(BString("\xF0\x9F\x97\xBA").GetLength(), 2U);
    EXPECT_EQ(BString(L"Stra\u00DFe"), BString("Stra\303\237e"));
    EXPECT_EQ(BString(L"\U0001F5FA").WideStr(), L"\U0001F5FA");
    EXPECT_TRUE(BString(static_cast<const char*>(nullptr)).IsEmpty());
    EXPECT_NE(BString("a"), BString("A"));
}

TEST(BString, CutsAndEdits) {
    const BString text("abcdef");
    EXPECT_EQ(text.Left(2) + text.Right(2) + text.Left(99) + text.Right(99), BString("abefabcdefabcdef"));
    EXPECT_TRUE(text.StartsWith("abc") && text.EndsWith("ef"));
    EXPECT_FALSE(text.StartsWith("abcdefg") || text.EndsWith("xabcdef"));
    EXPECT_EQ(BString(" \t a b \r\n").Trim(), BString("a b"));
    EXPECT_EQ(BString("\t \n").Trim(), BString());
    EXPECT_EQ(BString("aXbXX").ReplaceAll("X", "XX"), BString("aXXbXXXX"));
    EXPECT_EQ(BString("abc").ReplaceAll("", "x").RemoveAll("b"), BString("ac"));
    const BString lower(".tif \xC3\xA4\xC5\xBE\xCF\x89\xD0\xB6"),
        upper(".TIF \xC3\x84\xC5\xBD\xCE\xA9\xD0\x96");
    EXPECT_EQ(BString(upper).ToLower(), lower);
    EXPECT_EQ(BString(lower).ToUpper(), upper);
}

TEST(BString, RenewsItsNarrowFormAfterEveryChange) {
    BString text("a");
    EXPECT_STREQ(text.Ascii(), "a");
    text += 'b';
    text += L"c";
    EXPECT_STREQ(text.Ascii(), "abc");
    text.ToUpper();
    EXPECT_STREQ(text.Utf8(), "ABC");
    text = "x";
    EXPECT_STREQ(text.Ascii(), "x");
    BString moved(std::move(text));
    EXPECT_STREQ(moved.Ascii(), "x");
    text = std::move(moved);
    EXPECT_STREQ(text.Ascii(), "x");
    const BString shared("gemeinsam");
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([&shared] { EXPECT_STREQ(shared.Ascii(), "gemeinsam"); });
    for (std::thread& thread : threads)
        thread.join();
}

}  // namespace
}  // namespace Tellurion

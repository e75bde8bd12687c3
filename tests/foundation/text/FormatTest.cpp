#include <Tellurion/BString.h>

#include <gtest/gtest.h>

#include "PlainLocale.h"

#include <cfloat>
#include <climits>
#include <cstdio>
#include <limits>
#include <random>

namespace Tellurion {
namespace {

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

template <class... Args>
std::string Printf(const char* format, Args... arguments) {
    const PlainLocale plain;
    char buffer[2048];
    const int length = std::snprintf(buffer, sizeof buffer, format, arguments...);
    return {buffer, static_cast<std::size_t>(length)};
}

TEST(Format, NumbersReadAsPrintfWritesThem) {
    const double reals[] = {0.0,     -0.0,    1.5,   -2.675,    1e22,    1e-8,    123456789.987654321,
                            DBL_MAX, DBL_MIN, 1e300, 0.1 + 0.2, 99999.5, -1e-300, 0.5,
                            2.5};
    for (const char* format : {"%f", "%lf", "%.12lf", "%.0f", "%10.3f|", "%-12.2f|", "%+.1f", "% .2f",
                               "%012.4f", "%e", "%.3E", "%g", "%.17g", "%G"})
        for (const double value : reals)
            EXPECT_EQ(BString::Format(format, value).StdStr(), Printf(format, value)) << format;
    for (const char* format : {"%d", "%i", "%5d|", "%-5d|", "%05d", "%+d", "%.4d", "%x", "%X", "%#x", "%o"})
        for (const int value : {0, 1, 42, 77777, INT_MAX})
            EXPECT_EQ(BString::Format(format, value).StdStr(), Printf(format, value)) << format;
    EXPECT_EQ(BString::Format("%d %ld %lld", INT_MIN, LONG_MIN, LLONG_MIN).StdStr(),
              Printf("%d %ld %lld", INT_MIN, LONG_MIN, LLONG_MIN));
    EXPECT_EQ(BString::Format("%zu", SIZE_MAX).StdStr(), Printf("%zu", SIZE_MAX));
}

#pragma GCC diagnostic pop

TEST(Format, TextsOfAllKinds) {
    const BString name("M\303\274ller");
    EXPECT_EQ(BString::Format("<%ls> <%s> <%ls> <%s>", name, "b", L"c", std::string("d")).StdStr(),
              "<M\303\274ller> <b> <c> <d>");
    EXPECT_EQ(BString::Format(L"<%ls> %d", name, 7).StdStr(), "<M\303\274ller> 7");
    EXPECT_EQ(BString::Format("%6s|%-6s|%.2s", "abc", "abc", "abc").StdStr(), "   abc|abc   |ab");
    EXPECT_EQ(BString::Format("%c%c", 'x', 65).StdStr(), "xA");
    EXPECT_EQ(BString::Format("100%% %s", static_cast<const char*>(nullptr)).StdStr(), "100% (null)");
}

// A format that does not fit its arguments must never read what is not there.
TEST(Format, MismatchesAreHarmless) {
    EXPECT_EQ(BString::Format("%s %ls", 1, 2.5).StdStr(), "1 2.500000");
    EXPECT_EQ(BString::Format("%d %f", "text", BString("more")).StdStr(), "text more");
    EXPECT_EQ(BString::Format("%d and %d", 1).StdStr(), "1 and %d");
    EXPECT_EQ(BString::Format("%n %y %", 1).StdStr(), "%n %y %");
    EXPECT_EQ(BString::Format("no conversion", 1, 2).StdStr(), "no conversion");
    EXPECT_EQ(BString::Format("%f", std::numeric_limits<double>::quiet_NaN()).StdStr(), "nan");
    EXPECT_EQ(BString::Format("%5.1f|%f", std::numeric_limits<double>::infinity(), -HUGE_VAL).StdStr(),
              "  inf|-inf");
    EXPECT_LE(BString::Format("%99999999999d", 1).GetLength(), 5000U);
    EXPECT_LE(BString::Format("%.99999999999f", 0.1).GetLength(), 5000U);
}

}  // namespace
}  // namespace Tellurion

#include <Tellurion/BString.h>

#include <gtest/gtest.h>

#include "PlainLocale.h"

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdio>

namespace Tellurion {
namespace {

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

template <class... Args>
void ExpectAsPrintf(const char* format, Args... arguments) {
    const PlainLocale plain;
    char expected[2048];
    std::snprintf(expected, sizeof expected, format, arguments...);
    EXPECT_EQ(BString::Format(format, arguments...).StdStr(), expected) << format;
}

TEST(Format, PrintsNumbersAsPrintfDoes) {
    const double reals[] = {-0.0, 0.5, -2.675, 1e22, 1e-8, 123456789.987654321, DBL_MAX, DBL_MIN, 99999.5};
    for (const char* format : {"%f", "%lf", "%.12lf", "%.0f", "%10.3f|", "%-12.2f|", "%+.1f", "% .2f",
                               "%012.4f", "%e", "%.3E", "%g", "%.17g", "%G"})
        for (const double value : reals)
            ExpectAsPrintf(format, value);
    for (const char* format : {"%d", "%i", "%5d|", "%-5d|", "%05d", "%+d", "%.4d", "%x", "%X", "%#x", "%o"})
        for (const int value : {0, 42, 77777, INT_MAX})
            ExpectAsPrintf(format, value);
    ExpectAsPrintf("%d %ld %lld %zu", INT_MIN, LONG_MIN, LLONG_MIN, SIZE_MAX);
}

#pragma GCC diagnostic pop

// A format that does not fit its arguments must not read what is not there.
TEST(Format, AcceptsTextsOfAllKindsAndAnyMismatch) {
    const BString name("M\303\274ller");
    const std::pair<BString, const char*> cases[] = {
        {BString::Format("<%ls> <%s> <%ls> <%s>", name, "b", L"c", std::string("d")),
         "<M\303\274ller> <b> <c> <d>"},
        {BString::Format("%6s|%-6s|%.2s", "abc", "abc", "abc"), "   abc|abc   |ab"},
        {BString::Format("%c%c", 'x', 65), "xA"},
        {BString::Format("100%% %s", static_cast<const char*>(nullptr)), "100% (null)"},
        {BString::Format("%s %ls", 1, 2.5), "1 2.500000"},
        {BString::Format("%d %f", "text", BString("more")), "text more"},
        {BString::Format("%d and %d", 1), "1 and %d"},
        {BString::Format("%n %y %", 1), "%n %y %"},
        {BString::Format("no conversion", 1, 2), "no conversion"},
        {BString::Format("%05f|%5.1f|%f", std::nan(""), HUGE_VAL, -HUGE_VAL), "  nan|  inf|-inf"}};
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(text.StdStr(), expected);
    EXPECT_LE(BString::Format("%99999999999d", 1).GetLength(), 5000U);
    EXPECT_LE(BString::Format("%.99999999999f", 0.1).GetLength(), 5000U);
}

}  // namespace
}  // namespace Tellurion

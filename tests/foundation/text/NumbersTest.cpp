#include <Tellurion/Numbers.h>

#include <gtest/gtest.h>

#include "PlainLocale.h"

#include <bit>
#include <cmath>
#include <cstdlib>
#include <random>
#include <sstream>

namespace Tellurion {
namespace {

// The reference is the C library in the locale "C", whatever the program's locale is.
TEST(Numbers, ParsesAsAtofAndStrtolDo) {
    const PlainLocale plain;
    std::istringstream reals(
        "1|-2.5|+3| \t\v7.25|1,5|.5|5.|-.5e1x|1e5|1e|1e+|1E-3 rest|abc|| |-|+-1|--1|- "
        "1|inf|-INF|infinity|infin"
        "|nan|-nan|nan(1)|0x10|0x1.8p3|-0x1p-2|0x|0x.8|0xg|0x1p2000|1e999|-1e999|1e400x|1e-999|4.9e-324"
        "|2e-324|1.7976931348623157e308|9007199254740993|00012|1_000|1.2.3|\302\2405|5\xE9");
    for (std::string text; std::getline(reals, text, '|');) {
        const double got = ParseDouble(text), expected = std::atof(text.c_str());
        EXPECT_TRUE(got == expected || (std::isnan(got) && std::isnan(expected))) << text << ": " << got;
        EXPECT_TRUE(std::isnan(got) || std::signbit(got) == std::signbit(expected)) << text;
    }
    std::istringstream wholes(
        "0|42|-42|+7|  12abc|3.9||x|+-1|- 1|9223372036854775807|99999999999999999999|-99999999999999999999");
    for (std::string text; std::getline(wholes, text, '|');)
        EXPECT_EQ(ParseLong(text), std::strtol(text.c_str(), nullptr, 10)) << text;
    EXPECT_EQ(ParseDouble("0." + std::string(100000, '0') + "1"), 0.0);
    EXPECT_EQ(ParseDouble(std::string_view("12345", 3)), 123.0);  // reads nothing behind the view
}

TEST(Numbers, ScanDoubleConsumesTheNumberAlone) {
    std::string_view text = " 1.5,2";
    double value = 0.0;
    EXPECT_TRUE(ScanDouble(text, value));
    EXPECT_FALSE(ScanDouble(text, value));
    EXPECT_EQ(value, 1.5);
    EXPECT_EQ(text, ",2");
}

TEST(Numbers, PrintsWhatReadsBackAsTheSameDouble) {
    std::mt19937_64 random(11);
    for (int round = 0; round < 20000; ++round) {
        const double value = std::bit_cast<double>(random());
        ASSERT_TRUE(!std::isfinite(value) || ParseDouble(PrintShortest(value)) == value) << value;
    }
    EXPECT_EQ(PrintShortest(500000), "500000");
    EXPECT_EQ(PrintShortest(-0.00001), "-0.00001");
    EXPECT_EQ(PrintShortest(1e16), "1e+16");
    EXPECT_EQ(PrintFixed(1e300, 2).size(), 304U);
    EXPECT_EQ(PrintFixed(-0.5, 0), "-0");
    EXPECT_EQ(PrintFixed(5e-324, 5000).substr(0, 4), "0.00");
}

}  // namespace
}  // namespace Tellurion

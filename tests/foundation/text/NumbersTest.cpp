#include <Tellurion/Numbers.h>

#include <gtest/gtest.h>

#include "PlainLocale.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>

namespace Tellurion {
namespace {

bool SameDouble(double a, double b) {
    return (std::isnan(a) && std::isnan(b)) || (a == b && std::signbit(a) == std::signbit(b));
}

double Atof(const char* text) {
    const PlainLocale plain;
    return std::atof(text);
}

// The C library's atof in the C locale is the measure, whatever the program's is.
TEST(Numbers, ParseDoubleReadsWhatAtofReads) {
    const char* cases[] = {"1",       "-2.5",
                           "+3",      "  \t\v7.25",
                           "1,5",     ".5",
                           "5.",      "-.5e1x",
                           "1e5",     "1e",
                           "1e+",     "1E-3 rest",
                           "abc",     "",
                           " ",       "-",
                           "+-1",     "--1",
                           "- 1",     "inf",
                           "-INF",    "infinity",
                           "infin",   "nan",
                           "-nan",    "nan(1)",
                           "0x10",    "0x1.8p3",
                           "-0x1p-2", "0x",
                           "0x.8",    "0xg",
                           "1e999",   "-1e999",
                           "1e-999",  "4.9e-324",
                           "2e-324",  "0x1p2000",
                           "1e400x",  "1.7976931348623157e308",
                           "00012",   "1_000",
                           "1.2.3",   "\302\2405",
                           "5\xE9",   "9007199254740993"};
    for (const char* text : cases)
        EXPECT_TRUE(SameDouble(ParseDouble(text), Atof(text))) << text << " gives " << ParseDouble(text);
    const std::string long_number = "0." + std::string(100000, '0') + "1";
    EXPECT_EQ(ParseDouble(long_number), 0.0);
    EXPECT_EQ(ParseDouble(std::string(100000, ' ') + "5"), 5.0);
    EXPECT_EQ(ParseDouble(std::string_view("12345", 3)), 123.0);  // no look past the view
}

TEST(Numbers, ScanDoubleMovesPastTheNumberAndNoFurther) {
    std::string_view text = " 1.5,2";
    double value = 0.0;
    ASSERT_TRUE(ScanDouble(text, value));
    EXPECT_EQ(value, 1.5);
    EXPECT_EQ(text, ",2");
    EXPECT_FALSE(ScanDouble(text, value));
    EXPECT_EQ(text, ",2");
    EXPECT_EQ(value, 1.5);
}

TEST(Numbers, ParseLongReadsWhatAtolReads) {
    for (const char* text : {"0", "42", "-42", "+7", "  12abc", "3.9", "-3.9", "", "x", "+-1", "- 1",
                             "99999999999999999999", "-99999999999999999999", "9223372036854775807"})
        EXPECT_EQ(ParseLong(text), std::strtol(text, nullptr, 10)) << text;
}

TEST(Numbers, PrintShortestReadsBackTheSameDouble) {
    std::mt19937_64 random(11);
    for (int round = 0; round < 20000; ++round) {
        const double value = std::bit_cast<double>(random());
        if (std::isfinite(value)) {
            ASSERT_EQ(ParseDouble(PrintShortest(value)), value);
        }
    }
    EXPECT_EQ(PrintShortest(0.1), "0.1");
    EXPECT_EQ(PrintShortest(500000), "500000");
    EXPECT_EQ(PrintShortest(-0.00001), "-0.00001");
    EXPECT_EQ(PrintShortest(1e16), "1e+16");
    EXPECT_EQ(PrintFixed(1e300, 2).size(), 304U);
    EXPECT_EQ(PrintFixed(-0.5, 0), "-0");
    EXPECT_EQ(PrintFixed(5e-324, 5000).substr(0, 4), "0.00");
}

}  // namespace
}  // namespace Tellurion

// Page points to pixels, by numbers worked out by hand.

#include "import/PageFrame.h"

#include <gtest/gtest.h>

#include <limits>

namespace MapAnchor {
namespace {

using Box = std::vector<double>;

const Box kLetter = {0, 0, 612, 792};

struct PixelCase {
    const char* name;
    Box viewport;
    Box shown;
    long width;
    long height;
    std::pair<double, double> fraction;
    std::int32_t column;
    std::int32_t row;
};

const PixelCase kPixels[] = {
    {"top_left_of_the_page", kLetter, kLetter, 612, 792, {0, 1}, 0, 0},
    {"bottom_right_of_the_page", kLetter, kLetter, 612, 792, {1, 0}, 612, 792},
    {"left_and_above_of_a_smaller_box", kLetter, {10, 10, 602, 782}, 592, 772, {0, 1}, -10, -10},
    {"viewport_inside_the_page", {100, 200, 500, 600}, kLetter, 1224, 1584, {0.5, 0.25}, 600, 984},
    {"half_a_pixel_goes_up", {0, 0, 10, 10}, {0, 0, 10, 10}, 10, 10, {0.25, 1}, 3, 0},
    {"half_a_pixel_below_zero_goes_up_too", {-10, 0, 0, 10}, {0, 0, 10, 10}, 10, 10, {0.75, 1}, -2, 0},
    {"scales_differ", {0, 0, 10, 10}, {0, 0, 10, 10}, 20, 50, {0.5, 0.9}, 10, 5},
};

TEST(PageFrame, PixelsCountFromTheTop) {
    for (const PixelCase& c : kPixels) {
        SCOPED_TRACE(c.name);
        const auto pixel = PageFrame(c.viewport, c.shown, c.width, c.height).PixelAt(c.fraction);
        ASSERT_TRUE(pixel);
        EXPECT_EQ(pixel->column, c.column);
        EXPECT_EQ(pixel->row, c.row);
    }
}

TEST(PageFrame, CountsNothingBeyond32Bits) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const PageFrame frame(kLetter, kLetter, 612, 792);
    for (const auto& fraction :
         {std::pair{4e6, 0.0}, {0.0, -4e6}, {kNan, 0.0}, {0.0, kInfinity}, {1e300, 0.0}})
        EXPECT_FALSE(frame.PixelAt(fraction)) << fraction.first << " " << fraction.second;
    EXPECT_TRUE(frame.PixelAt({3e6, 0.0}));
}

TEST(PageFrame, BoxWithoutExtentIsNone) {
    EXPECT_TRUE(PageFrame(kLetter, kLetter, 1, 1).HasExtent());
    EXPECT_FALSE(PageFrame(kLetter, {5, 0, 5, 792}, 1, 1).HasExtent());
    EXPECT_FALSE(PageFrame(kLetter, {0, 9, 612, 9}, 1, 1).HasExtent());
    EXPECT_FALSE(PageFrame(kLetter, {0, 0, std::numeric_limits<double>::infinity(), 9}, 1, 1).HasExtent());
}

TEST(PageFrame, MatrixCountsFromTheLowerLeftAndMixesItsDivisors) {
    // Twice as many columns as points, four times as many rows.
    const PageFrame frame({0, 0, 100, 50}, {0, 0, 100, 50}, 200, 200);
    const AffineTerms t = frame.AffineOf({10, 3, 5, 8, 1000, 2000});
    EXPECT_EQ(t.a, 5.0);
    EXPECT_EQ(t.b, -2.5);  // c by the horizontal scale
    EXPECT_EQ(t.c, 200 * 2.5 + 1000);
    EXPECT_EQ(t.d, 0.75);  // b by the vertical one
    EXPECT_EQ(t.e, -2.0);
    EXPECT_EQ(t.f, 2000 + 200 * 2.0);
}

}  // namespace
}  // namespace MapAnchor

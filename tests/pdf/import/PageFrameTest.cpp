// Page points to pixels, by numbers worked out by hand.

#include "import/PageFrame.h"

#include <gtest/gtest.h>

#include <limits>

namespace MapAnchor {
namespace {

using Box = std::vector<double>;

const Box kLetter = {0, 0, 612, 792};
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct PixelCase {
    Box viewport;
    Box shown;
    long width;
    long height;
    std::pair<double, double> fraction;
    std::pair<int, int> pixel;
};

TEST(PageFrame, PixelsCountFromTheTop) {
    const PixelCase cases[] = {
        {kLetter, kLetter, 612, 792, {0, 1}, {0, 0}},
        {kLetter, kLetter, 612, 792, {1, 0}, {612, 792}},
        {kLetter, {10, 10, 602, 782}, 592, 772, {0, 1}, {-10, -10}},
        {{100, 200, 500, 600}, kLetter, 1224, 1584, {0.5, 0.25}, {600, 984}},
        // Half a pixel goes up, below zero too.
        {{0, 0, 10, 10}, {0, 0, 10, 10}, 10, 10, {0.25, 1}, {3, 0}},
        {{-10, 0, 0, 10}, {0, 0, 10, 10}, 10, 10, {0.75, 1}, {-2, 0}},
        {{0, 0, 10, 10}, {0, 0, 10, 10}, 20, 50, {0.5, 0.9}, {10, 5}},
    };
    for (const PixelCase& c : cases) {
        const auto pixel = PageFrame(c.viewport, c.shown, c.width, c.height).PixelAt(c.fraction);
        ASSERT_TRUE(pixel);
        EXPECT_EQ(std::pair(pixel->column, pixel->row), c.pixel);
    }
}

TEST(PageFrame, RefusesWhatCannotBeCounted) {
    const PageFrame frame(kLetter, kLetter, 612, 792);
    for (const auto& fraction :
         {std::pair{4e6, 0.0}, {0.0, -4e6}, {kInfinity - kInfinity, 0.0}, {0.0, kInfinity}, {1e300, 0.0}})
        EXPECT_FALSE(frame.PixelAt(fraction)) << fraction.first << " " << fraction.second;
    EXPECT_TRUE(frame.PixelAt({3e6, 0.0}));
    EXPECT_TRUE(frame.HasExtent());
    for (const Box& shown : {Box{5, 0, 5, 792}, {0, 9, 612, 9}, {0, 0, kInfinity, 9}})
        EXPECT_FALSE(PageFrame(kLetter, shown, 1, 1).HasExtent());
}

TEST(PageFrame, MatrixCountsFromTheLowerLeftAndMixesItsDivisors) {
    // Twice as many columns as points, four times as many rows: c is divided by the horizontal
    // scale and b by the vertical one.
    const PageFrame frame({0, 0, 100, 50}, {0, 0, 100, 50}, 200, 200);
    const AffineTerms t = frame.AffineOf({10, 3, 5, 8, 1000, 2000});
    EXPECT_EQ((Box{t.a, t.b, t.c, t.d, t.e, t.f}),
              (Box{5.0, -2.5, 200 * 2.5 + 1000, 0.75, -2.0, 2000 + 200 * 2.0}));
}

}  // namespace
}  // namespace MapAnchor

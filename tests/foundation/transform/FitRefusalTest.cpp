#include "Warps.h"

#include <Thrown.h>

#include <gtest/gtest.h>

#include <cmath>
#include <iterator>
#include <limits>
#include <string>

namespace Tellurion {
namespace {

using Type = EMathTransformType;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

struct Point {
    long column, row;
    double x, y;
};

struct RefusalCase {
    const char* name;
    Type type;
    std::vector<Point> points;
    const char* detail;
};

/// Points of a second order transform, or of anything that is no line, at the pixels.
std::vector<Point> Bent(const std::vector<std::pair<long, long>>& pixels) {
    std::vector<Point> points;
    for (const auto& [column, row] : pixels) {
        const auto c = static_cast<double>(column), r = static_cast<double>(row);
        points.push_back({column, row, 5e5 + c + 1e-4 * c * r, 5e6 - r + 1e-4 * c * c});
    }
    return points;
}

using At = std::vector<Point>;

const RefusalCase kRefusals[] = {
    {"affine_of_two", Type::Affine, At({{0, 0, 1, 1}, {9, 0, 2, 1}}),
     "The affine fit needs 3 points, 2 of 2 are enabled"},
    {"conformal_of_one", Type::Conformal, At({{0, 0, 1, 1}}),
     "The conformal fit needs 2 points, 1 of 1 are enabled"},
    {"second_order_of_five", Type::Polynomial2, Bent({{0, 0}, {9, 0}, {0, 9}, {9, 9}, {5, 3}}),
     "The second order polynomial fit needs 6 points, 5 of 5 are enabled"},
    {"third_order_of_none",
     Type::Polynomial3,
     {},
     "The third order polynomial fit needs 10 points, 0 of 0 are enabled"},
    {"projective_of_three", Type::Projective, Bent({{0, 0}, {9, 0}, {0, 9}}),
     "The projective fit needs 4 points, 3 of 3 are enabled"},
    {"spline_of_two", Type::ThinPlateSpline, Bent({{0, 0}, {9, 0}}),
     "The thin plate spline fit needs 3 points, 2 of 2 are enabled"},
    {"bilinear_of_three", Type::Bilinear, Bent({{0, 0}, {9, 0}, {0, 9}}),
     "The bilinear fit needs 4 points, 3 of 3 are enabled"},

    {"pixels_coincide", Type::Affine, At({{7, 7, 1, 1}, {7, 7, 2, 1}, {7, 7, 1, 2}, {8, 7, 1, 2}}),
     "The affine fit needs points at 3 different pixels, the 4 enabled ones coincide at 2"},
    {"conformal_pixels_coincide", Type::Conformal, At({{7, 7, 1, 1}, {7, 7, 2, 1}}),
     "The conformal fit needs points at 2 different pixels, the 2 enabled ones coincide at 1"},
    {"spline_repeats_a_pixel", Type::ThinPlateSpline,
     At({{0, 0, 0, 0}, {9, 5, 9, 1}, {0, 9, 0, 9}, {9, 5, 8, 8}}),
     "The thin plate spline fit takes each pixel once, points 2 and 4 coincide at (9, 5)"},
    {"world_coincides", Type::Conformal, At({{0, 0, 5e6, 1}, {9, 9, 5e6, 1}}),
     "The conformal fit needs different positions, the world positions of the 2 enabled points coincide"},
    {"world_coincides_but_for_rounding", Type::Affine,
     At({{0, 0, 5e6, 1}, {9, 0, 5e6 + 1e-9, 1}, {0, 9, 5e6, 1}}),
     "The affine fit needs different positions, the world positions of the 3 enabled points coincide"},

    {"pixels_on_a_line", Type::Affine, At({{0, 0, 0, 0}, {1, 3, 1, 0}, {2, 6, 0, 1}, {1000, 3000, 1, 1}}),
     "The affine fit needs an area, the pixels of the 4 enabled points lie on a line"},
    {"pixels_on_a_column", Type::ThinPlateSpline, At({{5, 0, 0, 0}, {5, 3, 1, 0}, {5, 9, 0, 1}}),
     "The thin plate spline fit needs an area, the pixels of the 3 enabled points lie on a line"},
    {"world_on_a_line", Type::Projective,
     At({{0, 0, 5e5, 5e6},
         {9, 0, 5e5 + .1, 5e6 + .3},
         {0, 9, 5e5 + .2, 5e6 + .6},
         {9, 9, 5e5 + .7, 5e6 + 2.1}}),
     "The projective fit needs an area, the world positions of the 4 enabled points lie on a line"},
    {"world_on_a_parallel", Type::Bilinear,
     At({{0, 0, 1, 48.1}, {9, 0, 2, 48.1}, {0, 9, 3, 48.1}, {9, 9, 5, 48.1}}),
     "The bilinear fit needs an area, the world positions of the 4 enabled points lie on a line"},
    {"world_on_a_parallel_but_for_rounding", Type::Affine,
     At({{0, 0, 0, 5e6}, {9, 0, 9, 5e6}, {0, 9, 3, 5e6 + 1e-9}, {9, 9, 7, 5e6}}),
     "The affine fit needs an area, the world positions of the 4 enabled points lie on a line"},

    {"circle", Type::Polynomial2, Bent({{10, 0}, {-10, 0}, {0, 10}, {0, -10}, {6, 8}, {8, -6}, {-6, 8}}),
     "The second order polynomial fit is left open, the pixels of the 7 enabled points lie on one curve of "
     "its order"},
    {"two_lines", Type::Polynomial2, Bent({{0, 0}, {100, 0}, {900, 0}, {0, 700}, {200, 700}, {901, 700}}),
     "The second order polynomial fit is left open, the pixels of the 6 enabled points lie on one curve of "
     "its order"},
    {"three_lines", Type::Polynomial3,
     Bent({{0, 0}, {1, 0}, {5, 0}, {7, 0}, {0, 4}, {2, 4}, {5, 4}, {0, 9}, {2, 9}, {4, 9}, {6, 9}}),
     "The third order polynomial fit is left open, the pixels of the 11 enabled points lie on one curve of "
     "its order"},
    {"diamond", Type::Bilinear, Bent({{0, 10}, {10, 0}, {0, -10}, {-10, 0}}),
     "The bilinear fit is left open, the pixels of the 4 enabled points lie on one curve of its order"},
    {"three_of_four_on_a_line", Type::Projective, Bent({{0, 0}, {50, 50}, {90, 90}, {0, 90}}),
     "The projective fit is left open, three of the 4 enabled points lie on a line"},
    {"all_but_one_on_a_line", Type::Projective,
     At({{0, 0, 0, 0}, {1, 1, 1, 1}, {2, 2, 2, 2}, {5, 5, 5, 5}, {0, 9, 0, 9}}),
     "The projective fit is left open, too many of the 5 enabled points lie on a line"},

    {"a_corner_turned_in", Type::Projective,
     At({{0, 0, 0, 0}, {100, 0, 1, 0}, {0, 100, 0, 1}, {100, 100, .2, .2}}),
     "The projective fit through the 4 enabled points puts point 1 on or beyond its horizon"},
    {"nothing_linear", Type::Affine,
     At({{-1, -1, 1, -1}, {1, -1, 1, -1}, {-1, 1, 1, 1}, {1, 1, 1, 1}, {0, 0, 0, 0}}),
     "The affine fit through the 5 enabled points cannot be inverted"},
    {"both_hands_at_once", Type::Conformal,
     At({{77, 99, 0.7, 0.9}, {411, 99, 0.3, 0.9}, {77, 433, 0.3, 0.9}, {411, 433, 0.7, 0.9}}),
     "The conformal fit through the 4 enabled points cannot be inverted"},
    {"folded_on_a_parabola", Type::Polynomial2,
     At({{0, 0, 0, 0}, {1, 0, 1, 1}, {2, 0, 2, 4}, {0, 1, 0, 0}, {1, 1, 1, 1}, {0, 2, 0, 0}, {2, 2, 2, 4}}),
     "The second order polynomial fit through the 7 enabled points cannot be inverted"},

    {"nan_in_the_world", Type::Affine, At({{0, 0, 1, 1}, {9, 0, 2, kNan}, {0, 9, 1, 2}}),
     "The world position of point 2 (2, nan) is not a finite number in range"},
    {"infinity_in_the_world", Type::ThinPlateSpline,
     At({{0, 0, 1, 1}, {9, 0, 2, 2}, {0, 9, -std::numeric_limits<double>::infinity(), 2}}),
     "The world position of point 3 (-inf, 2) is not a finite number in range"},
    {"no_such_type", static_cast<Type>(8), Bent({{0, 0}, {9, 0}, {0, 9}}), "There is no fit of type 8"},
    {"negative_type", static_cast<Type>(-1), {}, "There is no fit of type -1"},
};

std::vector<BPointPair> PairsOf(const std::vector<Point>& points) {
    std::vector<BPointPair> pairs;
    for (const Point& point : points)
        pairs.push_back(PointAt(point.column, point.row, {point.x, point.y}));
    return pairs;
}

TEST(FitRefusal, SaysWhatIsWrong) {
    for (const RefusalCase& c : kRefusals) {
        SCOPED_TRACE(c.name);
        const Thrown thrown =
            WhatIsThrown([&] { BMathTransform(c.type, PairsOf(c.points), kWidth, kHeight, true); });
        EXPECT_EQ(thrown.type, "BException");
        EXPECT_EQ(thrown.source, "BMathTransform::BMathTransform");
        EXPECT_EQ(thrown.detail, c.detail);
    }
}

// The neighbours of the refusals: as near as that, and still a fit.
TEST(FitAcceptance, TakesWhatIsOnlyNearlyOpen) {
    const std::pair<Type, std::vector<Point>> cases[] = {
        {Type::Affine, Bent({{0, 0}, {100000, 100000}, {50000, 50001}})},
        {Type::Affine, {{7, 7, 1, 1}, {7, 7, 1.5, 1}, {8, 7, 2, 1}, {7, 8, 1, 2}}},
        {Type::Polynomial2, Bent({{1000, 0}, {-1000, 0}, {0, 1000}, {0, -1000}, {600, 800}, {800, -601}})},
        {Type::Projective, Bent({{0, 0}, {5000, 5010}, {9000, 9000}, {0, 9000}})},
        {Type::Conformal, {{0, 0, 5e6, 1}, {9, 9, 5e6 + 1e-3, 1}}},
    };
    for (const auto& [type, points] : cases) {
        const Thrown thrown = WhatIsThrown(
            [&, fit = type, pairs = PairsOf(points)] { BMathTransform(fit, pairs, 0, 0, true); });
        EXPECT_EQ(thrown.detail, "");
    }
}

TEST(FitRefusalOfSize, TheSplineHasALimit) {
    const Warp straight = [](double u, double v) { return Place{u, v}; };
    const auto pairs = GridOn(straight, kUtm, 64);  // 4096
    EXPECT_EQ(WhatIsThrown([&] { BMathTransform(Type::ThinPlateSpline, pairs, 0, 0, true); }).detail,
              "The thin plate spline fit takes up to 4000 points, 4096 are enabled");
    EXPECT_TRUE(BMathTransform(Type::Polynomial3, pairs, 0, 0, true).IsValid());
}

// Pixels and positions from the whole range of their types, most of them nonsense.
TEST(FitOfAnything, IsAFitOrAFailure) {
    std::mt19937_64 random(2);
    const double odd[] = {0,     -0.0,    5e-324, 1e-300,
                          1e300, 1.7e308, kNan,   -std::numeric_limits<double>::infinity()};
    std::uniform_real_distribution<double> part(-1.0, 1.0);
    int fits = 0, failures = 0;
    for (int round = 0; round < 4000; ++round) {
        const double pixels = std::pow(10, round % 11), scale = std::pow(10, round % 37 - 18);
        std::vector<BPointPair> pairs;
        for (std::size_t count = random() % 16; pairs.size() < count;) {
            Place world = {scale * part(random), 1e6 + scale * part(random)};
            if (random() % 50 == 0) world.x = odd[random() % std::size(odd)];
            pairs.push_back(PointAt(static_cast<long>(pixels * part(random)),
                                    static_cast<long>(pixels * part(random)), world, random() % 9 != 0));
        }
        const auto failure = WhatIsThrown([&] {
            const BMathTransform fit(static_cast<Type>(round % 7), pairs, static_cast<unsigned>(random()), 9,
                                     true);
            double x = pixels * part(random), y = odd[random() % std::size(odd)];
            if (fit.ConvertSourceToTarget(x, y)) {
                EXPECT_TRUE(std::isfinite(x) && std::isfinite(y));
            }
            if (fit.ConvertTargetToSource(x, y)) {
                EXPECT_TRUE(std::isfinite(x) && std::isfinite(y));
            }
        });
        ++(failure.type.empty() ? fits : failures);
    }
    EXPECT_GT(fits, 500);
    EXPECT_GT(failures, 500);
}

}  // namespace
}  // namespace Tellurion

#include "Warps.h"

#include <Thrown.h>

#include <limits>
#include <string>

namespace Tellurion {
namespace {

using Type = EMathTransformType;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Point {
    long column, row;
    double x, y;
};
using At = std::vector<Point>;

/// Points of a second order transform, or of anything that is not a line, at the pixels.
At Bent(const std::vector<std::pair<long, long>>& pixels) {
    At points;
    for (const auto& [column, row] : pixels) {
        const auto c = static_cast<double>(column), r = static_cast<double>(row);
        points.push_back({column, row, 5e5 + c + 1e-4 * c * r, 5e6 - r + 1e-4 * c * c});
    }
    return points;
}

/// "" for a fit, else how it was refused.
std::string RefusalOf(Type type, const At& points) {
    std::vector<BPointPair> pairs;
    for (const Point& point : points)
        pairs.push_back(PointAt(point.column, point.row, {point.x, point.y}));
    const Thrown thrown = WhatIsThrown([&] { BMathTransform(type, pairs, kWidth, kHeight, true); });
    EXPECT_TRUE(thrown.type.empty() || thrown.source == "BMathTransform::BMathTransform") << thrown.source;
    return thrown.detail;
}

TEST(FitRefusal, StatesHowManyPointsAreMissing) {
    At points = Bent({{0, 0}, {9, 0}, {0, 9}, {9, 9}, {5, 3}, {1, 2}, {8, 5}, {4, 7}, {3, 1}});
    const auto expect = [&](Type type, const std::string& name, std::size_t needed) {
        points.resize(needed - 1);
        const std::string given = std::to_string(needed - 1);
        EXPECT_EQ(RefusalOf(type, points), "The " + name + " fit needs " + std::to_string(needed) +
                                               " points, " + given + " of " + given + " are enabled");
    };
    expect(Type::Polynomial3, "third order polynomial", 10);
    expect(Type::Polynomial2, "second order polynomial", 6);
    expect(Type::Projective, "projective", 4);
    expect(Type::Bilinear, "bilinear", 4);
    expect(Type::Affine, "affine", 3);
    expect(Type::ThinPlateSpline, "thin plate spline", 3);
    expect(Type::Conformal, "conformal", 2);
    EXPECT_EQ(RefusalOf(static_cast<Type>(8), points), "There is no fit of type 8");
}

void ExpectRefused(Type type, const char* phrase, const At& points) {
    const std::string detail = RefusalOf(type, points);
    EXPECT_NE(detail.find(phrase), std::string::npos) << detail;
}

TEST(FitRefusal, StatesWhatIsWrongWithThePoints) {
    ExpectRefused(Type::Affine, "needs points at 3 different pixels, the 4 enabled ones coincide at 2",
                  {{7, 7, 1, 1}, {7, 7, 2, 1}, {7, 7, 1, 2}, {8, 7, 1, 2}});
    ExpectRefused(Type::ThinPlateSpline, "takes each pixel once, points 2 and 4 coincide at (9, 5)",
                  {{0, 0, 0, 0}, {9, 5, 9, 1}, {0, 9, 0, 9}, {9, 5, 8, 8}});
    ExpectRefused(Type::Conformal, "world positions of the 2 enabled points coincide",
                  {{0, 0, 5e6, 1}, {9, 9, 5e6, 1}});
    // But for the rounding of large coordinates.
    ExpectRefused(Type::Affine, "coincide", {{0, 0, 5e6, 1}, {9, 0, 5e6 + 1e-9, 1}, {0, 9, 5e6, 1}});
    ExpectRefused(Type::Affine, "the pixels of the 4 enabled points lie on a line",
                  {{0, 0, 0, 0}, {1, 3, 1, 0}, {2, 6, 0, 1}, {1000, 3000, 1, 1}});
    ExpectRefused(Type::ThinPlateSpline, "the pixels of the 3", {{5, 0, 0, 0}, {5, 3, 1, 0}, {5, 9, 0, 1}});
    ExpectRefused(Type::Projective, "the world positions of the 4 enabled points lie on a line",
                  {{0, 0, 5, 5e6}, {9, 0, 6, 5e6 + 3}, {0, 9, 7, 5e6 + 6}, {9, 9, 12, 5e6 + 21}});
    ExpectRefused(Type::Bilinear, "the world positions of the 4 enabled points lie on a line",
                  {{0, 0, 0, 5e6}, {9, 0, 9, 5e6}, {0, 9, 3, 5e6 + 1e-9}, {9, 9, 7, 5e6}});
    // A circle, three lines, a diamond.
    ExpectRefused(Type::Polynomial2, "left open, the pixels of the 7 enabled points lie on one curve",
                  Bent({{10, 0}, {-10, 0}, {0, 10}, {0, -10}, {6, 8}, {8, -6}, {-6, 8}}));
    ExpectRefused(Type::Polynomial3, "lie on one curve of its order",
                  Bent({{0, 0}, {1, 0}, {5, 0}, {7, 0}, {0, 4}, {2, 4}, {5, 4}, {0, 9}, {2, 9}, {4, 9}}));
    ExpectRefused(Type::Bilinear, "one curve", Bent({{0, 10}, {10, 0}, {0, -10}, {-10, 0}}));
    ExpectRefused(Type::Projective, "three of the 4", Bent({{0, 0}, {50, 50}, {90, 90}, {0, 90}}));
    ExpectRefused(Type::Projective, "too many of the 5 enabled points lie on a line",
                  {{0, 0, 0, 0}, {1, 1, 1, 1}, {2, 2, 2, 2}, {5, 5, 5, 5}, {0, 9, 0, 9}});
    ExpectRefused(Type::Projective, "puts point 1 on or beyond its horizon",
                  {{0, 0, 0, 0}, {100, 0, 1, 0}, {0, 100, 0, 1}, {100, 100, .2, .2}});
    ExpectRefused(Type::Affine, "5 enabled points cannot be inverted",
                  {{-1, -1, 1, -1}, {1, -1, 1, -1}, {-1, 1, 1, 1}, {1, 1, 1, 1}, {0, 0, 0, 0}});
    // As many for either handedness; folded on a parabola.
    ExpectRefused(Type::Conformal, "cannot be inverted",
                  {{77, 99, .7, .9}, {411, 99, .3, .9}, {77, 433, .3, .9}, {411, 433, .7, .9}});
    ExpectRefused(Type::Polynomial2, "cannot be inverted",
                  {{0, 0, 0, 0}, {1, 0, 1, 1}, {2, 0, 2, 4}, {0, 1, 0, 0}, {1, 1, 1, 1}, {2, 2, 2, 4}});
    ExpectRefused(Type::Affine, "position of point 2 (2, nan) is not a finite number in range",
                  {{0, 0, 1, 1}, {9, 0, 2, kNan}, {0, 9, 1, 2}});
    ExpectRefused(Type::Bilinear, "point 1 (-inf, 2)", {{0, 0, -kInfinity, 2}, {9, 0, 2, 2}, {}, {}});
}

// As near to a refusal as that, and still a fit.
TEST(FitRefusal, AcceptsWhatIsOnlyNearlyWrong) {
    const std::pair<Type, At> cases[] = {
        {Type::Affine, Bent({{0, 0}, {100000, 100000}, {50000, 50001}})},
        {Type::Affine, {{7, 7, 1, 1}, {7, 7, 1.5, 1}, {8, 7, 2, 1}, {7, 8, 1, 2}}},
        {Type::Polynomial2, Bent({{1000, 0}, {-1000, 0}, {0, 1000}, {0, -1000}, {600, 800}, {800, -601}})},
        {Type::Projective, Bent({{0, 0}, {5000, 5010}, {9000, 9000}, {0, 9000}})},
        {Type::Conformal, {{0, 0, 5e6, 1}, {9, 9, 5e6 + 1e-3, 1}}}};
    for (const auto& [type, points] : cases)
        EXPECT_EQ(RefusalOf(type, points), "");
    At many;
    for (long i = 0; i < 4001; ++i)
        many.push_back({i, i * i, 0, 0});
    ExpectRefused(Type::ThinPlateSpline, "takes up to 4000 points, 4001 are enabled", many);
}

// Pixels and positions from the whole range of their types, most of them nonsense.
TEST(FitRefusal, EndsInAFitOrAFailureForAnyPoints) {
    std::mt19937_64 random(2);
    const double odd[] = {0, -0.0, 5e-324, 1e-300, 1e300, 1.7e308, kNan, -kInfinity};
    std::uniform_real_distribution<double> part(-1.0, 1.0);
    int fits = 0, failures = 0;
    for (int round = 0; round < 4000; ++round) {
        const double pixels = std::pow(10, round % 11), scale = std::pow(10, round % 37 - 18);
        const auto pixel = [&] { return static_cast<long>(pixels * part(random)); };
        std::vector<BPointPair> pairs;
        for (std::size_t count = random() % 16; pairs.size() < count;) {
            Place world = {scale * part(random), 1e6 + scale * part(random)};
            if (random() % 50 == 0) world.x = odd[random() % 8];
            pairs.push_back(PointAt(pixel(), pixel(), world, random() % 9 != 0));
        }
        const Thrown failure = WhatIsThrown([&] {
            const BMathTransform fit(static_cast<Type>(round % 7), pairs, static_cast<unsigned>(random()), 9,
                                     true);
            double x = pixels * part(random), y = odd[random() % 8];
            EXPECT_TRUE(!fit.ConvertSourceToTarget(x, y) || (std::isfinite(x) && std::isfinite(y)));
            EXPECT_TRUE(!fit.ConvertTargetToSource(x, y) || (std::isfinite(x) && std::isfinite(y)));
        });
        ++(failure.type.empty() ? fits : failures);
    }
    EXPECT_GT(fits, 500);
    EXPECT_GT(failures, 500);
}

}  // namespace
}  // namespace Tellurion

#include "Warps.h"

#include <utility>

namespace Tellurion {
namespace {

using Type = EMathTransformType;

Place Skewed(double u, double v) {
    return {0.02 + 0.95 * u + 0.03 * v, -0.01 - 0.04 * u + 1.02 * v};
}
Place Turned(double u, double v) {
    return {0.96 * u - 0.28 * 0.8 * v, 0.28 * 1.25 * u + 0.96 * v};
}
Place TurnedOver(double u, double v) {
    return {0.96 * u + 0.28 * 0.8 * v, 0.28 * 1.25 * u - 0.96 * v};
}
Place Quadratic(double u, double v) {
    return {u + 0.05 * u * u - 0.04 * u * v + 0.02 * v * v, v - 0.03 * u * u + 0.06 * u * v + 0.01 * v * v};
}
Place Cubic(double u, double v) {
    return {u + 0.05 * u * u * v - 0.04 * v * v * v, v + 0.03 * u * u * u - 0.05 * u * v * v + 0.02 * u * u};
}
/// Its slope in the middle is a hundredth of that at the ends.
Place NearlyFlat(double u, double v) {
    const double p = u - 0.5, q = v - 0.5;
    return {0.5 + 0.03 * p + 4 * p * p * p, 0.5 + 0.03 * q + 4 * q * q * q + 0.1 * p};
}
Place Perspective(double u, double v) {
    const double depth = 1 + 0.3 * u - 0.4 * v;
    return {(0.1 + 0.9 * u - 0.05 * v) / depth, (0.02 * u + 0.8 * v) / depth};
}
Place FromBehind(double u, double v) {
    const double depth = 1.5 - 0.6 * u + 0.2 * v;
    return {(1 - 0.8 * u + 0.1 * v) / depth, (1 - 0.1 * u - 0.7 * v) / depth};
}
Place Twisted(double u, double v) {
    return {u + 0.2 * u * v, v - 0.15 * u * v};
}

// A millionth of a pixel is the bound; the pixel is 0.5 m, or 7e-6 degrees by 5e-6.
void ExpectRecovery(Type type, Warp warp, const World& world) {
    const Place bound = {1e-6 * world.width / kWidth, 1e-6 * world.height / kHeight};
    for (const unsigned known : {1U, 0U}) {
        const BMathTransform fit(type, GridOn(warp, world, 5), known * kWidth, known * kHeight, true);
        EXPECT_EQ(fit.GetMathTransformType(), type);
        for (double column = 0; column <= kWidth; column += 400)
            for (double row = 0; row <= kHeight; row += 400)
                ExpectMeets(fit, {column, row}, Truth(warp, world, column, row), bound, 1e-6);
    }
}

TEST(FitRecovery, FindsTheTransformItsPointsCameFrom) {
    const std::pair<Type, Warp> cases[] = {
        {Type::Affine, Skewed},          {Type::Polynomial2, Quadratic}, {Type::Polynomial3, Cubic},
        {Type::Polynomial3, NearlyFlat}, {Type::Projective, Skewed},     {Type::Projective, Perspective},
        {Type::Projective, FromBehind},  {Type::Bilinear, Twisted},      {Type::ThinPlateSpline, Skewed},
        {Type::Conformal, Turned},       {Type::Conformal, TurnedOver}};
    for (const auto& [type, warp] : cases) {
        SCOPED_TRACE(testing::Message() << "type " << static_cast<int>(type));
        ExpectRecovery(type, warp, kUtm);
        // Pixels are square in the other system alone.
        if (type != Type::Conformal) ExpectRecovery(type, warp, kGeographic);
    }
}

void AddNoise(std::vector<BPointPair>& pairs, double amount, std::mt19937& random) {
    std::uniform_real_distribution<double> part(-amount, amount);
    for (BPointPair& pair : pairs) {
        pair.World.x += part(random);
        pair.World.y += part(random);
    }
}

// With as many points as terms a fit goes through each, whatever their positions; a
// spline does with any number of points.
TEST(ExactFit, GoesThroughItsPoints) {
    constexpr std::pair<long, long> kPixels[] = {{120, 80},    {9800, 300}, {400, 7700}, {9500, 7900},
                                                 {5100, 3900}, {5300, 200}, {250, 4100}, {9700, 4400},
                                                 {4700, 7600}, {2500, 2300}};
    const std::pair<Type, std::size_t> cases[] = {
        {Type::Affine, 3},     {Type::Conformal, 2}, {Type::Polynomial2, 6},    {Type::Polynomial3, 10},
        {Type::Projective, 4}, {Type::Bilinear, 4},  {Type::ThinPlateSpline, 3}};
    std::mt19937 random(11);
    for (const auto& [type, points] : cases) {
        std::vector<BPointPair> pairs;
        for (std::size_t i = 0; i < points; ++i)
            pairs.push_back(PointOn(Skewed, kUtm, kPixels[i].first, kPixels[i].second));
        AddNoise(pairs, 100, random);
        ExpectMeetsAll(BMathTransform(type, pairs, kWidth, kHeight, true), pairs, 1e-8, 1e-6);
    }
    std::vector<BPointPair> net = GridOn(Skewed, kUtm, 14);
    AddNoise(net, 20, random);
    // Neighbours by one pixel, and by a corner.
    for (const auto& [column, row] : {std::pair{5001L, 4001L}, {5002L, 4001L}, {5003L, 4002L}})
        net.push_back(PointOn(Skewed, kUtm, column, row));
    ExpectMeetsAll(BMathTransform(Type::ThinPlateSpline, net, kWidth, kHeight, true), net, 1e-7, 1e-8);
}

// The third differences 1 -3 3 -1 on a grid of 4 by 4 are at right angles to all that
// a fit can follow, so least squares leaves them over whole. A projective fit by its
// linear equations alone would be off by a pixel here.
TEST(LeastSquaresFit, LeavesOutWhatNoFitCanFollow) {
    constexpr double kThird[] = {1, -3, 3, -1};
    std::vector<BPointPair> pairs;
    for (int i = 0; i < 16; ++i) {
        pairs.push_back(PointOn(Turned, kUtm, i % 4 * 3000L, i / 4 * 2400L));
        pairs.back().World.x += 20 * kThird[i % 4] * kThird[i / 4];
        pairs.back().World.y -= 10 * kThird[i % 4] * kThird[i / 4];
    }
    for (const Type type : {Type::Affine, Type::Conformal, Type::Polynomial2, Type::Polynomial3,
                            Type::Projective, Type::Bilinear}) {
        const BMathTransform fit(type, pairs, kWidth, kHeight, true);
        for (const auto& [column, row] : {Place{0, 0}, {9999, 0}, {5000, 4000}, {1234, 7777}})
            ExpectMeets(fit, {column, row}, Truth(Turned, kUtm, column, row), {1e-5, 1e-5}, 1e-4);
    }
}

TEST(ConformalFit, CountsRowsDownWhereThePointsLeaveItOpen) {
    // Two points, and five on one line: both handednesses fit them.
    for (const long count : {2L, 5L}) {
        std::vector<BPointPair> pairs;
        for (long i = 0; i < count; ++i)
            pairs.push_back(PointAt(
                100 + 300 * i, 200 + 700 * i,
                {400000.1 + 150.3 * static_cast<double>(i), 6000000.2 - 350.7 * static_cast<double>(i)}));
        double a, b, c, d, e, f;
        BMathTransform(Type::Conformal, pairs, 0, 0, true).GetAffineParameters(a, b, c, d, e, f);
        EXPECT_DOUBLE_EQ(a, -e);
        EXPECT_DOUBLE_EQ(b, d);
        EXPECT_NEAR(a, 0.501, 1e-9);
    }
}

// A second order transform folds the plane: beyond the fold there is no pixel, and
// before it there are two, one of them far from the raster.
TEST(CurvedInverse, ChoosesThePixelInTheRasterOrNone) {
    const Warp fold = [](double u, double v) { return Place{u * (2.2 - u), v}; };
    for (const Type type : {Type::Polynomial2, Type::Polynomial3}) {
        const BMathTransform fit(type, GridOn(fold, kUtm, 5), kWidth, kHeight, true);
        for (const double column : {0.0, 5000.0, 9900.0, 10000.0})
            ExpectMeets(fit, {column, 4000}, Truth(fold, kUtm, column, 4000), {1e-6, 1e-6}, 1e-6);
        // Here the raster itself folds: of two pixels outside the nearer one, at -0.1 and 1.7 of its width.
        const Warp inside = [](double u, double v) { return Place{u * (1.6 - u), v}; };
        const BMathTransform folded(type, GridOn(inside, kUtm, 5), kWidth, kHeight, true);
        EXPECT_NEAR(folded.ConvertTargetToSource(BPoint(kUtm.left - 0.17 * kUtm.width, kUtm.top, 0)).x, -1000,
                    1e-6);
        ExpectNone(fit, kToSource, {kUtm.left + 1.22 * kUtm.width, kUtm.top - 0.5 * kUtm.height});
    }
}

// Points that are wrong by a tenth of the raster make fits that fold inside it. Then
// a value has several pixels; whichever is found has that value and is inside.
TEST(CurvedInverse, StaysInAFoldedRaster) {
    std::mt19937 random(23);
    std::uniform_real_distribution<double> part(-1.0, 1.0);
    int elsewhere = 0;
    for (const Type type : {Type::Polynomial2, Type::Polynomial3, Type::ThinPlateSpline, Type::Bilinear})
        for (int round = 0; round < 20; ++round) {
            auto pairs = GridOn(Skewed, kUtm, 4);
            AddNoise(pairs, 1500, random);
            const BMathTransform fit(type, pairs, kWidth, kHeight, true);
            for (int k = 0; k < 50; ++k) {
                const double column = 5000 + 5000 * part(random), row = 4000 + 4000 * part(random);
                const BPoint world = fit.ConvertSourceToTarget(BPoint(column, row, 0));
                const BPoint pixel = fit.ConvertTargetToSource(world);
                elsewhere += std::hypot(pixel.x - column, pixel.y - row) > 1e-6 ? 1 : 0;
                ASSERT_NEAR(pixel.x, 5000, 5000 + 1e-6) << static_cast<int>(type);
                ASSERT_NEAR(pixel.y, 4000, 4000 + 1e-6) << static_cast<int>(type);
                const BPoint again = fit.ConvertSourceToTarget(pixel);
                ASSERT_NEAR(again.x, world.x, 1e-6);
                ASSERT_NEAR(again.y, world.y, 1e-6);
            }
        }
    EXPECT_GT(elsewhere, 100) << "the fits do not fold";
}

TEST(Projective, HasNoValueBeyondTheHorizon) {
    const Warp road = [](double u, double v) { return Place{(u - 0.5) / (v - 0.25), 1 / (v - 0.25)}; };
    std::vector<BPointPair> pairs;
    for (const long row : {4000L, 6000L, 8000L})
        for (const long column : {0L, 4000L, 10000L})
            pairs.push_back(PointOn(road, kUtm, column, row));
    const BMathTransform fit(Type::Projective, pairs, kWidth, kHeight, true);
    for (const double row : {2000.0, 1999.0, 0.0, -1e9})
        ExpectNone(fit, kToTarget, {123, row});
    ExpectMeets(fit, {123, 2001}, Truth(road, kUtm, 123, 2001), {1, 1}, 1e-6);
    // Behind the eye: the image of what lies beyond the horizon.
    ExpectNone(fit, kToSource, {kUtm.left, kUtm.top + kUtm.height});
}

}  // namespace
}  // namespace Tellurion

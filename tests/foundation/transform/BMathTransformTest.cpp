#include "Warps.h"

#include <Thrown.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace Tellurion {
namespace {

using Type = EMathTransformType;
constexpr Type kFits[] = {Type::Affine,     Type::Conformal,       Type::Polynomial2, Type::Polynomial3,
                          Type::Projective, Type::ThinPlateSpline, Type::Bilinear};

Place Straight(double u, double v) {
    return {u, v};
}

TEST(BMathTransform, NoneIsNotValid) {
    const BMathTransform none(Type::None, GridOn(Straight, kUtm, 5), kWidth, kHeight, true);
    EXPECT_FALSE(none.IsValid());
    EXPECT_EQ(none.GetMathTransformType(), Type::None);
    ExpectNone(none, kToTarget, {1, 2});
    ExpectNone(none, kToSource, {1, 2});
    double t;
    const Thrown thrown = WhatIsThrown([&] { none.GetAffineParameters(t, t, t, t, t, t); });
    EXPECT_EQ(thrown.source, "BMathTransform::GetAffineParameters");
    EXPECT_EQ(thrown.detail, "There is no transform");
}

TEST(BMathTransform, OnlyAffineAndConformalFitsHaveAffineTerms) {
    for (const Type type : kFits) {
        const BMathTransform fit(type, GridOn(Straight, kUtm, 5), kWidth, kHeight, true);
        double a = 0, b, c, d, e, f;
        const Thrown thrown = WhatIsThrown([&] { fit.GetAffineParameters(a, b, c, d, e, f); });
        EXPECT_EQ(thrown.source.empty(), type == Type::Affine || type == Type::Conformal);
        if (thrown.source.empty()) {
            EXPECT_NEAR(a, 0.5, 1e-12);
        }
    }
    const BMathTransform fit(Type::Projective, GridOn(Straight, kUtm, 5), kWidth, kHeight, true);
    double t;
    EXPECT_EQ(WhatIsThrown([&] { fit.GetAffineParameters(t, t, t, t, t, t); }).detail,
              "A projective transform has no affine terms");
}

// The disabled points are far off; with them every fit would be.
TEST(BMathTransform, DisabledPointsTakeNoPart) {
    auto pairs = GridOn(Straight, kGeographic, 5);
    pairs.insert(pairs.begin(), PointAt(0, 0, {1e6, 1e6}, false));
    pairs.push_back(PointAt(pairs[3].Column, pairs[3].Row, {std::nan(""), 0}, false));
    for (const Type type : kFits) {
        if (type == Type::Conformal) continue;  // no fit for degrees of unequal size
        const BPoint middle = BMathTransform(type, pairs, 0, 0, true).ConvertSourceToTarget({5000, 4000, 0});
        EXPECT_NEAR(middle.x, kGeographic.left + kGeographic.width / 2, 1e-11);
        EXPECT_NEAR(middle.y, kGeographic.top - kGeographic.height / 2, 1e-11);
    }
    for (std::size_t i = 3; i < pairs.size(); ++i)
        pairs[i].Enabled = false;
    EXPECT_EQ(WhatIsThrown([&] { BMathTransform(Type::Affine, pairs, 0, 0, true); }).detail,
              "The affine fit needs 3 points, 2 of 27 are enabled");
}

TEST(BMathTransform, PointsKeepTheirHeight) {
    const BMathTransform fit(Type::Polynomial2, GridOn(Straight, kUtm, 5), kWidth, kHeight, true);
    const BPoint world = fit.ConvertSourceToTarget(BPoint(100, 200, 345.6));
    EXPECT_EQ(world.z, 345.6);
    EXPECT_NEAR(world.x, kUtm.left + 50, 1e-8);
    const BPoint pixel = fit.ConvertTargetToSource(world);
    EXPECT_EQ(pixel.z, 345.6);
    EXPECT_NEAR(pixel.y, 200, 1e-6);
}

TEST(BMathTransform, ThrowsWhereAPointHasNoValue) {
    const BMathTransform none(Type::None, {}, 0, 0, true);
    const std::unique_ptr<BMathTransform> affine(BMathTransform::CreateAffine(1, 0, 0, 0, 1, 0, true));
    const BPoint origin(0, 0, 0), nowhere(std::nan(""), 0, 0);
    const BTransform* transforms[] = {&none, affine.get()};
    for (const BTransform* transform : transforms) {
        const BPoint& at = transform == &none ? origin : nowhere;
        const std::pair<const char*, std::function<void()>> operations[] = {
            {"BMathTransform::ConvertSourceToTarget", [&] { transform->ConvertSourceToTarget(at); }},
            {"BMathTransform::ConvertTargetToSource", [&] { transform->ConvertTargetToSource(at); }},
            {"BMathTransform::ConvertXDistance", [&] { transform->ConvertXDistance(1, at); }},
            {"BMathTransform::ConvertYDistance", [&] { transform->ConvertYDistance(1, at); }},
            {"BMathTransform::ConvertXDistanceReverse", [&] { transform->ConvertXDistanceReverse(1, at); }},
            {"BMathTransform::ConvertYDistanceReverse", [&] { transform->ConvertYDistanceReverse(1, at); }}};
        for (const auto& [source, operation] : operations)
            EXPECT_EQ(WhatIsThrown(operation).source, source);
    }
    EXPECT_EQ(WhatIsThrown([&] { none.ConvertSourceToTarget(BPoint(1.5, -2, 0)); }).detail,
              "There is no value at (1.5, -2)");
}

TEST(BMathTransform, DistancesAreLengthsInTheOtherSpace) {
    const std::unique_ptr<BMathTransform> affine(
        BMathTransform::CreateAffine(0.3, 0.5, 512345.678, 0.4, -1.2, 5412345.678, true));
    const BPoint at(1234, 567, 0);
    EXPECT_DOUBLE_EQ(affine->ConvertXDistance(2, at), 1.0);
    EXPECT_DOUBLE_EQ(affine->ConvertXDistance(-2, at), 1.0);
    EXPECT_DOUBLE_EQ(affine->ConvertYDistance(1e-3, at), 1.3e-3);
    const double determinant = 0.3 * 1.2 + 0.5 * 0.4;
    EXPECT_DOUBLE_EQ(affine->ConvertXDistanceReverse(7, at), 7 * std::hypot(1.2, 0.4) / determinant);
    EXPECT_DOUBLE_EQ(affine->ConvertYDistanceReverse(7, at), 7 * std::hypot(0.5, 0.3) / determinant);

    // On a bilinear fit the length of a column's step depends on the row.
    const Warp twist = [](double u, double v) { return Place{u + 0.5 * u * v, v}; };
    const BMathTransform bilinear(Type::Bilinear, GridOn(twist, kUtm, 5), kWidth, kHeight, true);
    EXPECT_NEAR(bilinear.ConvertXDistance(100, BPoint(0, 0, 0)), 50, 1e-7);
    EXPECT_NEAR(bilinear.ConvertXDistance(100, BPoint(0, 8000, 0)), 75, 1e-7);
    const BPoint foot = bilinear.ConvertSourceToTarget(BPoint(0, 8000, 0));
    EXPECT_NEAR(bilinear.ConvertXDistanceReverse(75, foot), 100, 1e-6);
}

TEST(BMathTransform, CopiesOutliveTheirOrigin) {
    BMathTransform kept(Type::None, {}, 0, 0, true);
    {
        const BMathTransform spline(Type::ThinPlateSpline, GridOn(Straight, kUtm, 4), kWidth, kHeight, false);
        const BMathTransform copy(spline);
        kept = copy;
    }
    EXPECT_TRUE(kept.IsValid());
    EXPECT_EQ(kept.GetType(), ETransformType::Math);
    EXPECT_FALSE(kept.GetOptimizeFor2D());
    EXPECT_NEAR(kept.ConvertSourceToTarget(BPoint(2, 0, 0)).x, kUtm.left + 1, 1e-8);
}

}  // namespace
}  // namespace Tellurion

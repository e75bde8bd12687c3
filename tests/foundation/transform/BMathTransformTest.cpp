#include "Warps.h"

#include <Thrown.h>

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

TEST(BMathTransform, StatesAffineTermsOfAffineAndConformalFitsAlone) {
    const BMathTransform none(Type::None, GridOn(Straight, kUtm, 5), kWidth, kHeight, true);
    EXPECT_FALSE(none.IsValid());
    ExpectNone(none, kToTarget, {1, 2});
    ExpectNone(none, kToSource, {1, 2});
    double a = 0, t;
    const auto terms_of = [&](const BMathTransform& transform) {
        return WhatIsThrown([&] { transform.GetAffineParameters(a, t, t, t, t, t); });
    };
    EXPECT_EQ(terms_of(none).source, "BMathTransform::GetAffineParameters");
    EXPECT_EQ(terms_of(none).detail, "There is no transform");
    for (const Type type : kFits) {
        const Thrown thrown = terms_of(BMathTransform(type, GridOn(Straight, kUtm, 5), 0, 0, true));
        EXPECT_EQ(thrown.source.empty(), type == Type::Affine || type == Type::Conformal);
        EXPECT_TRUE(!thrown.source.empty() || std::abs(a - 0.5) < 1e-12) << a;
        if (type == Type::Projective) {
            EXPECT_EQ(thrown.detail, "A projective transform has no affine terms");
        }
    }
}

// The disabled points are far off; with them every fit would be.
TEST(BMathTransform, IgnoresDisabledPoints) {
    auto pairs = GridOn(Straight, kGeographic, 5);
    pairs.insert(pairs.begin(), PointAt(0, 0, {1e6, 1e6}, false));
    pairs.push_back(PointAt(pairs[3].Column, pairs[3].Row, {std::nan(""), 0}, false));
    for (const Type type : kFits) {
        if (type == Type::Conformal) continue;  // no fit for degrees of unequal size
        const BPoint middle = BMathTransform(type, pairs, 0, 0, true).ConvertSourceToTarget({5000, 4000, 7});
        EXPECT_NEAR(middle.x, kGeographic.left + kGeographic.width / 2, 1e-11);
        EXPECT_NEAR(middle.y, kGeographic.top - kGeographic.height / 2, 1e-11);
        EXPECT_EQ(middle.z, 7);
    }
    for (std::size_t i = 3; i < pairs.size(); ++i)
        pairs[i].Enabled = false;
    EXPECT_EQ(WhatIsThrown([&] { BMathTransform(Type::Affine, pairs, 0, 0, true); }).detail,
              "The affine fit needs 3 points, 2 of 27 are enabled");
}

TEST(BMathTransform, ThrowsWhereAPointHasNoValue) {
    const std::unique_ptr<BMathTransform> affine(BMathTransform::CreateAffine(1, 0, 0, 0, 1, 0, true));
    const BMathTransform none(Type::None, {}, 0, 0, true);
    for (const BTransform* transform : std::initializer_list<const BTransform*>{&none, affine.get()}) {
        const BPoint at(1.5, transform == &none ? -2 : std::nan(""), 0);
        const std::pair<const char*, std::function<void()>> operations[] = {
            {"ConvertSourceToTarget", [&] { transform->ConvertSourceToTarget(at); }},
            {"ConvertTargetToSource", [&] { transform->ConvertTargetToSource(at); }},
            {"ConvertXDistance", [&] { transform->ConvertXDistance(1, at); }},
            {"ConvertYDistance", [&] { transform->ConvertYDistance(1, at); }},
            {"ConvertXDistanceReverse", [&] { transform->ConvertXDistanceReverse(1, at); }},
            {"ConvertYDistanceReverse", [&] { transform->ConvertYDistanceReverse(1, at); }}};
        for (const auto& [name, operation] : operations) {
            const Thrown thrown = WhatIsThrown(operation);
            EXPECT_EQ(thrown.source, std::string("BMathTransform::") + name);
            EXPECT_TRUE(thrown.detail.starts_with("There is no value at (1.5, ")) << thrown.detail;
        }
    }
}

TEST(BMathTransform, ConvertsDistancesToLengths) {
    const std::unique_ptr<BMathTransform> affine(
        BMathTransform::CreateAffine(0.3, 0.5, 512345.678, 0.4, -1.2, 5412345.678, true));
    const BPoint at(1234, 567, 0);
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

}  // namespace
}  // namespace Tellurion

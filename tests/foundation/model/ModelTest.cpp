#include <Tellurion/BGeoReference.h>
#include <Tellurion/BParamList.h>

#include <gtest/gtest.h>

#include <climits>
#include <memory>

namespace Tellurion {
namespace {

struct Counted {
    explicit Counted(int& deaths) : deaths_(deaths) {}
    ~Counted() { ++deaths_; }
    int& deaths_;
};

TEST(BSharedPtr, DeletesWithTheLastCopyAndOnlyWhenItOwns) {
    int deaths = 0;
    {
        BSharedPtr<Counted> first(new Counted(deaths));
        BSharedPtr<Counted> second = first;
        first = BSharedPtr<Counted>();
        EXPECT_EQ(deaths, 0);
        BSharedPtr<Counted>& alias = second;
        second = alias;
        EXPECT_EQ(deaths, 0);
        const BSharedPtr<Counted> third(std::move(second));
        EXPECT_TRUE(second.IsEmpty());
        EXPECT_FALSE(third.IsEmpty());
    }
    EXPECT_EQ(deaths, 1);
    Counted mine(deaths);
    { const BSharedPtr<Counted> borrowed(&mine, false); }
    EXPECT_EQ(deaths, 1);
    { const BSharedPtr<Counted> null(nullptr); }
}

TEST(BPointPair, ClampsPixelsBeyondThirtyTwoBits) {
    const BPointPair pair(LONG_MAX, LONG_MIN, 1, 2, 3, "P", true);
    EXPECT_EQ(pair.Column, INT_MAX);
    EXPECT_EQ(pair.Row, INT_MIN);
    EXPECT_EQ(pair.World.z, 3.0);
}

TEST(BGeoReference, OutlivesWhatItWasSetFrom) {
    BGeoReference reference;
    {
        BGeoReference local;
        const std::unique_ptr<BMathTransform> transform(
            BMathTransform::CreateAffine(2, 0, 10, 0, -2, 20, true));
        local.SetMathTransform(*transform);
        reference = local;
    }
    double x = 1.0, y = 1.0;
    ASSERT_TRUE(reference.HasMathTransform());
    ASSERT_TRUE(reference.MathTransform->ConvertSourceToTarget(x, y));
    EXPECT_EQ(x, 12.0);
    EXPECT_EQ(y, 18.0);
    EXPECT_FALSE(reference.HasCoordSys());
    EXPECT_FALSE(reference.HasVerticalUnit());
}

TEST(BGeoReference, PointsWithoutATransformLeaveNone) {
    const std::vector<BPointPair> pairs = {{0, 0, 10, 20, 0, "A", true}, {9, 9, 19, 11, 0, "B", false}};
    BGeoReference reference;
    const std::unique_ptr<BMathTransform> transform(BMathTransform::CreateAffine(1, 0, 0, 0, 1, 0, true));
    reference.SetPointPairVectorAndMathTransform(pairs, *transform);
    EXPECT_TRUE(reference.HasMathTransform());
    reference.SetPointPairVector(pairs, EMathTransformType::None);
    EXPECT_FALSE(reference.HasMathTransform());
    EXPECT_EQ(reference.PointPairVector.size(), 2U);
    // The fit None is no transform either.
    reference.SetPointPairVectorAndMathTransform(
        pairs, BMathTransform(EMathTransformType::None, pairs, 10, 10, true));
    EXPECT_FALSE(reference.HasMathTransform());
}

TEST(BParamList, NumbersComeFromTextOrTheFallback) {
    BParamList params;
    params.SetDouble("dpi", 150.5);
    params.SetInteger("box", 3);
    params.SetString("odd", "no number");
    params.SetString("huge", "1e30");
    EXPECT_EQ(params.GetDouble("dpi", 0), 150.5);
    EXPECT_EQ(params.GetInteger("dpi", 0), 150);
    EXPECT_EQ(params.GetInteger("box", 0), 3);
    EXPECT_EQ(params.GetInteger("odd", 7), 7);
    EXPECT_EQ(params.GetInteger("huge", 7), 7);
    EXPECT_EQ(params.GetInteger("BOX", 7), 7);
    EXPECT_TRUE(params.HasProperty("odd"));
    EXPECT_FALSE(params.HasProperty("none"));
}

}  // namespace
}  // namespace Tellurion

#include <Tellurion/BParamList.h>

#include <gtest/gtest.h>

#include "References.h"

#include <climits>

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
        BSharedPtr<Counted>& alias = second;
        second = alias;
        EXPECT_EQ(deaths, 0);
        const BSharedPtr<Counted> third(std::move(second));
        EXPECT_TRUE(second.IsEmpty() && !third.IsEmpty());
    }
    EXPECT_EQ(deaths, 1);
    Counted mine(deaths);
    { const BSharedPtr<Counted> borrowed(&mine, false), null(nullptr); }
    EXPECT_EQ(deaths, 1);
}

TEST(BGeoReference, KeepsWhatItWasSetFrom) {
    BGeoReference reference;
    reference = References::WithAffine(2, 0, 10, 0, -2, 20);
    EXPECT_EQ(References::Terms(reference), (std::array<double, 6>{2, 0, 10, 0, -2, 20}));
    EXPECT_FALSE(reference.HasCoordSys() || reference.HasVerticalUnit());
    // Points without a transform, and a transform without a fit, leave no transform.
    const std::vector<BPointPair> pairs = {{LONG_MAX, LONG_MIN, 1, 2, 3, "clamped", true}};
    const BMathTransform none(EMathTransformType::None, pairs, 10, 10, true);
    BGeoReference other = reference;
    reference.SetPointPairVector(pairs, EMathTransformType::None);
    other.SetPointPairVectorAndMathTransform(pairs, none);
    EXPECT_FALSE(reference.HasMathTransform() || other.HasMathTransform());
    EXPECT_EQ(reference.PointPairVector.at(0).Column, INT_MAX);
    EXPECT_EQ(other.PointPairVector.at(0).Row, INT_MIN);
}

TEST(BParamList, ReadsNumbersFromTextsOrReturnsTheDefault) {
    BParamList params;
    params.SetDouble("dpi", 150.5);
    params.SetString("odd", "no number");
    params.SetString("huge", "1e30");
    EXPECT_EQ(params.GetDouble("dpi", 0), 150.5);
    EXPECT_EQ(params.GetInteger("dpi", 0), 150);
    for (const char* key : {"odd", "huge", "DPI"})
        EXPECT_EQ(params.GetInteger(key, 7), 7) << key;
    EXPECT_TRUE(params.HasProperty("odd") && !params.HasProperty("none"));
}

}  // namespace
}  // namespace Tellurion

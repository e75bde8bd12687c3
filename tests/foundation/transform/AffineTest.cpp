#include "Warps.h"

#include <array>
#include <limits>
#include <memory>

namespace Tellurion {
namespace {

using Terms = std::array<double, 6>;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kMax = std::numeric_limits<double>::max();

Terms TermsOf(const BMathTransform& transform) {
    Terms t{};
    transform.GetAffineParameters(t[0], t[1], t[2], t[3], t[4], t[5]);
    return t;
}

std::unique_ptr<BMathTransform> Create(const Terms& t) {
    return std::unique_ptr<BMathTransform>(
        BMathTransform::CreateAffine(t[0], t[1], t[2], t[3], t[4], t[5], true));
}

// With what the inverse may be off, as its digits are lost: plain rasters first; then
// products that leave the range where the terms do not, axes far apart, a shear that all
// but hides the rest, and rows that are nearly parallel.
const std::pair<Terms, double> kInvertible[] = {{{0.5, 0, 512345.678, 0, -0.5, 5412345.678}, 5e-8},
                                                {{0.3, -0.4, 512345.678, -0.4, -0.3, 5412345.678}, 5e-8},
                                                {{0, 10, 400000, 10, 0, 6000000}, 6e-8},
                                                {{1e-200, 2e-200, 0, 3e-200, -1e-200, 0}, 6e-15},
                                                {{1e200, 2e200, 0, 3e200, -1e200, 0}, 6e-15},
                                                {{1e-170, 1e-175, 0, 1e-175, 1e-170, 0}, 4e-15},
                                                {{1e200, 2e200, 0, 1e-200, -1e-200, 0}, 4e-15},
                                                {{0, 1e-200, 0, 1e200, 0, 0}, 4e-15},
                                                {{kMax / 4, 0, 0, 0, 1e-300, 0}, 4e-15},
                                                {{1, 1e15, 0, 0, 1, 0}, 4e-15},
                                                {{1, 1, 0, 1, 1 + 1e-12, 0}, 8e-3}};
// No width, no height, parallel rows (in decimals, tiny and huge), and no finite inverse.
const Terms kSingular[] = {{0.1, 0.3, 0, 0.7, 2.1, 0}, {0, 0, 1, 0, -1, 1},
                           {5e-324, 0, 0, 0, 1, 0},    {1, 0, 1, 0, 0, 1},
                           {kInfinity, 0, 0, 0, 1, 0}, {1e-200, 2e-200, 0, 2e-200, 4e-200, 0},
                           {1, 0, kNan, 0, 1, 0},      {1e200, 2e200, 0, 2e200, 4e200, 0}};

TEST(CreateAffine, AcceptsWhatCanBeInverted) {
    for (const Terms& t : kSingular)
        EXPECT_FALSE(Create(t)) << testing::PrintToString(t);
    for (const auto& [t, lost] : kInvertible) {
        SCOPED_TRACE(testing::PrintToString(t));
        const auto transform = Create(t);
        ASSERT_TRUE(transform);
        EXPECT_EQ(TermsOf(*transform), t);
        for (const auto& [column, row] : {Place{0, 0}, {1, 0}, {0.5, 3}, {2, 1.25}}) {
            const Place world = {t[0] * column + t[1] * row + t[2], t[3] * column + t[4] * row + t[5]};
            ExpectMeets(*transform, {column, row}, world,
                        {4e-16 * std::abs(world.x), 4e-16 * std::abs(world.y)}, lost);
        }
    }
}

TEST(AffineConversion, RejectsWhatIsNotFinite) {
    const auto transform = Create({2e300, 0, 1, 0, 1e-300, 1});
    for (const Place& pixel : {Place{kNan, 0}, {0, kInfinity}, {-kInfinity, kNan}, {1e10, 0}})
        ExpectNone(*transform, kToTarget, pixel);
    ExpectNone(*transform, kToSource, {0, 1e10});  // the row is out of range
}

TEST(AffineFit, RecoversTheTermsFromAnyNumberOfPoints) {
    const Terms truth = {0.4567, -0.0123, 512345.678, -0.0321, -0.6543, 5412345.678};
    // Slopes within 5e-13, shifts within one and a half units of the last place.
    const Terms bounds = {5e-13, 5e-13, 1.8e-10, 5e-13, 5e-13, 1.5e-9};
    const auto known = Create(truth);
    std::mt19937 random(1);
    for (const std::size_t count : {3U, 4U, 500U}) {
        std::vector<BPointPair> pairs = {PointAt(0, 0, {}), PointAt(9999, 12, {}), PointAt(77, 7999, {})};
        while (pairs.size() < count)
            pairs.push_back(
                PointAt(static_cast<long>(random() % 10000), static_cast<long>(random() % 8000), {}));
        for (BPointPair& pair : pairs)
            pair.World = known->ConvertSourceToTarget(
                BPoint(static_cast<double>(pair.Column), static_cast<double>(pair.Row), 0));
        const Terms terms = TermsOf(BMathTransform(EMathTransformType::Affine, pairs, 10000, 8000, true));
        for (std::size_t i = 0; i < terms.size(); ++i)
            EXPECT_NEAR(terms[i], truth[i], bounds[i]) << count << " points, term " << i;
    }
}

TEST(AffineFit, KeepsARasterParallelToTheAxes) {
    const std::vector<BPointPair> corners = {
        PointAt(0, 0, {500000, 5000000}), PointAt(2000, 0, {501000, 5000000}),
        PointAt(0, 1000, {500000, 4999500}), PointAt(2000, 1000, {501000, 4999500})};
    const std::vector<BPointPair> three = {PointAt(10, 10, {500005, 4999995}),
                                           PointAt(1990, 17, {500995, 4999991.5}),
                                           PointAt(13, 977, {500006.5, 4999511.5})};
    for (const auto& pairs : {corners, three})
        EXPECT_EQ(TermsOf(BMathTransform(EMathTransformType::Affine, pairs, 2000, 1000, true)),
                  (Terms{0.5, 0, 500000, 0, -0.5, 5000000}));
}

}  // namespace
}  // namespace Tellurion

#include "Warps.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <memory>

namespace Tellurion {
namespace {

using Terms = std::array<double, 6>;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kLargest = std::numeric_limits<double>::max();

Terms TermsOf(const BMathTransform& transform) {
    Terms t{};
    transform.GetAffineParameters(t[0], t[1], t[2], t[3], t[4], t[5]);
    return t;
}

std::unique_ptr<BMathTransform> Create(const Terms& t) {
    return std::unique_ptr<BMathTransform>(
        BMathTransform::CreateAffine(t[0], t[1], t[2], t[3], t[4], t[5], true));
}

/// Each step stored, so that no processor joins a product and a sum.
double Plain(double p, double x, double q, double y, double shift) {
    volatile double first = p * x;
    volatile double second = q * y;
    volatile double sum = first + second;
    return sum + shift;
}

struct TermsCase {
    const char* name;
    Terms terms;
    bool invertible;
};

const TermsCase kTerms[] = {
    {"north_up", {0.5, 0, 512345.678, 0, -0.5, 5412345.678}, true},
    {"rotated", {0.3, -0.4, 512345.678, -0.4, -0.3, 5412345.678}, true},
    {"quarter_turn", {0, 10, 400000, 10, 0, 6000000}, true},
    {"tiny", {1e-200, 2e-200, 0, 3e-200, -1e-200, 0}, true},
    {"huge", {1e200, 2e200, 0, 3e200, -1e200, 0}, true},
    {"products_underflow_to_equal_zeros", {1e-170, 1e-175, 0, 1e-175, 1e-170, 0}, true},
    {"rows_far_apart", {1e200, 2e200, 0, 1e-200, -1e-200, 0}, true},
    {"axes_far_apart", {0, 1e-200, 0, 1e200, 0, 0}, true},
    {"near_the_ends_of_the_range", {kLargest / 4, 0, 0, 0, 1e-300, 0}, true},
    {"a_shear_that_all_but_hides_the_rest", {1, 1e15, 0, 0, 1, 0}, true},
    {"nearly_parallel_but_not", {1, 1, 0, 1, 1 + 1e-12, 0}, true},
    {"all_zero", {0, 0, 5, 0, 0, 5}, false},
    {"no_width", {0, 0, 1, 0, -1, 1}, false},
    {"no_height", {1, 0, 1, 0, 0, 1}, false},
    {"parallel", {1, 2, 0, 2, 4, 0}, false},
    {"parallel_in_decimals", {0.1, 0.3, 0, 0.7, 2.1, 0}, false},
    {"parallel_and_tiny", {1e-200, 2e-200, 0, 2e-200, 4e-200, 0}, false},
    {"parallel_and_huge", {1e200, 2e200, 0, 2e200, 4e200, 0}, false},
    {"inverse_out_of_range", {5e-324, 0, 0, 0, 1, 0}, false},
    {"infinite_term", {kInfinity, 0, 0, 0, 1, 0}, false},
    {"nan_shift", {1, 0, kNan, 0, 1, 0}, false},
    {"infinite_shift", {1, 0, 0, 0, 1, -kInfinity}, false},
};

/// Of the digits of the terms those that the inverse keeps.
double DigitsKept(const Terms& t) {
    const double down = t[0] / 2 * t[4], across = t[1] / 2 * t[3];
    const double kept = std::abs(down - across) / (std::abs(down) + std::abs(across));
    return std::isfinite(kept) && kept > 0 ? kept : 1.0;
}

TEST(CreateAffine, TakesWhatCanBeInverted) {
    for (const auto& [name, t, invertible] : kTerms) {
        SCOPED_TRACE(name);
        const auto transform = Create(t);
        EXPECT_EQ(transform != nullptr, invertible);
        if (!transform) continue;
        EXPECT_EQ(TermsOf(*transform), t);
        EXPECT_EQ(transform->GetMathTransformType(), EMathTransformType::Affine);
        const double lost = 1e-15 * (1 + (std::abs(t[2]) + std::abs(t[5])) / 0.5) / DigitsKept(t);
        for (const auto& [column, row] : {Place{0, 0}, {1, 0}, {0.5, 3}, {2, 1.25}})
            ExpectMeets(*transform, {column, row},
                        {Plain(t[0], column, t[1], row, t[2]), Plain(t[3], column, t[4], row, t[5])}, {0, 0},
                        lost * 4);
    }
}

TEST(AffineConversion, RefusesWhatIsNotFinite) {
    const auto transform = Create({2e300, 0, 1, 0, 1e-300, 1});
    for (const Place& pixel : {Place{kNan, 0}, {0, kInfinity}, {-kInfinity, kNan}, {1e10, 0}})
        ExpectNone(*transform, kToTarget, pixel);
    ExpectNone(*transform, kToSource, {0, 1e10});  // the row is beyond the range
}

TEST(AffineFit, FindsTheTermsFromAnyNumberOfPoints) {
    const Terms truth = {0.4567, -0.0123, 512345.678, -0.0321, -0.6543, 5412345.678};
    const auto known = Create(truth);
    std::mt19937 random(1);
    for (const int count : {3, 4, 500}) {
        std::vector<BPointPair> pairs = {PointAt(0, 0, {}), PointAt(9999, 12, {}), PointAt(77, 7999, {})};
        while (pairs.size() < static_cast<std::size_t>(count))
            pairs.push_back(
                PointAt(static_cast<long>(random() % 10000), static_cast<long>(random() % 8000), {}));
        for (BPointPair& pair : pairs)
            pair.World = known->ConvertSourceToTarget(
                BPoint(static_cast<double>(pair.Column), static_cast<double>(pair.Row), 0));
        const Terms terms = TermsOf(BMathTransform(EMathTransformType::Affine, pairs, 10000, 8000, true));
        for (const std::size_t slope : {0U, 1U, 3U, 4U})
            EXPECT_NEAR(terms[slope], truth[slope], 5e-13) << count;
        // One and a half units of the last place.
        EXPECT_NEAR(terms[2], truth[2], 1.8e-10) << count;
        EXPECT_NEAR(terms[5], truth[5], 1.5e-9) << count;
    }
}

TEST(AffineFit, KeepsARasterParallelToTheAxes) {
    const std::vector<std::vector<BPointPair>> cases = {
        {PointAt(0, 0, {500000, 5000000}), PointAt(2000, 0, {501000, 5000000}),
         PointAt(0, 1000, {500000, 4999500}), PointAt(2000, 1000, {501000, 4999500})},
        {PointAt(10, 10, {500005, 4999995}), PointAt(1990, 17, {500995, 4999991.5}),
         PointAt(13, 977, {500006.5, 4999511.5})}};
    for (const auto& pairs : cases)
        EXPECT_EQ(TermsOf(BMathTransform(EMathTransformType::Affine, pairs, 2000, 1000, true)),
                  (Terms{0.5, 0, 500000, 0, -0.5, 5000000}));
}

}  // namespace
}  // namespace Tellurion

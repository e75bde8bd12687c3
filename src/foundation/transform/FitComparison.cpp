#include <Tellurion/BFitReport.h>

#include "Fits.h"

#include <Tellurion/BException.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <optional>

namespace Tellurion {
namespace {

/// From simple to rich.
constexpr EMathTransformType kCompared[] = {
    EMathTransformType::Conformal,   EMathTransformType::Affine,      EMathTransformType::Projective,
    EMathTransformType::Polynomial2, EMathTransformType::Polynomial3, EMathTransformType::ThinPlateSpline};
constexpr std::ptrdiff_t kMaxCompared = 1000;

/// Left-out residuals below this many pixels are equal.
constexpr double kNegligible = 1e-3;

using Errors = std::vector<double>;

/// The left-out residuals of the enabled points in pixels; empty, with the reason, without them.
Errors LeftOutErrors(EMathTransformType type, const std::vector<BControlPoint>& points, unsigned int width,
                     unsigned int height, BFitAlternative& alternative) {
    const bool slow = type == EMathTransformType::Projective || type == EMathTransformType::ThinPlateSpline;
    if (slow && std::ranges::count_if(points, &BControlPoint::Enabled) > kMaxCompared) {
        alternative.Reason = "There are more than 1000 points, which takes long";
        return {};
    }
    try {
        const BFitReport report = BFitReport::Make(type, points, width, height);
        Errors errors;
        for (std::size_t i = 0; i < points.size(); ++i)
            if (points[i].Enabled && report.Residuals[i].HasLeftOut)
                errors.push_back(std::max(kNegligible, report.Residuals[i].LeftOutPixels));
        alternative.HasLeftOut = report.HasLeftOutRmse;
        alternative.LeftOutRmsePixels = report.LeftOutRmsePixels;
        if (report.HasLeftOutRmse) return errors;
        alternative.Reason = "The fit cannot do without one of the points";
    } catch (const BException& error) {
        alternative.Reason = error.GetDetail();
    }
    return {};
}

/// Root mean square without the largest tenth, so that one gross error does not decide.
double TrimmedMean(Errors errors) {
    std::sort(errors.begin(), errors.end());
    constexpr std::size_t kFew = 8;
    const std::size_t kept = errors.size() < kFew ? errors.size() : errors.size() - (errors.size() + 9) / 10;
    const double sum = std::inner_product(errors.begin(), errors.begin() + static_cast<std::ptrdiff_t>(kept),
                                          errors.begin(), 0.0);
    return std::sqrt(sum / static_cast<double>(kept));
}

/// The chance that the errors of a fit are larger than those of another, point by point, as
/// much as they are if both fits are as good: Wilcoxon's signed rank test.
double ChanceOfLarger(const Errors& errors, const Errors& others) {
    Errors differences;
    for (std::size_t i = 0; i < errors.size(); ++i)
        if (errors[i] != others[i]) differences.push_back(errors[i] - others[i]);
    std::sort(differences.begin(), differences.end(),
              [](double a, double b) { return std::fabs(a) < std::fabs(b); });
    const auto count = static_cast<double>(differences.size());
    if (count == 0) return 1.0;
    double ranks = 0.0;
    for (std::size_t i = 0; i < differences.size(); ++i)
        if (differences[i] > 0) ranks += static_cast<double>(i + 1);
    const double mean = count * (count + 1) / 4;
    const double deviation = std::sqrt(count * (count + 1) * (2 * count + 1) / 24);
    return std::erfc((ranks - mean - 0.5) / deviation / std::sqrt(2.0)) / 2;
}

/// Larger by chance in less than 1 of 20 cases and by a twentieth at least; or several times as
/// large, whatever the number of points.
bool IsWorse(const Errors& errors, const Errors& best) {
    constexpr double kChance = 0.05;
    constexpr double kNoticeable = 1.05;
    constexpr double kFarWorse = 3.0;
    const double ratio = TrimmedMean(errors) / TrimmedMean(best);
    return ratio > kFarWorse || (ratio > kNoticeable && ChanceOfLarger(errors, best) < kChance);
}

}  // namespace

std::vector<BFitAlternative> BFitReport::Compare(const std::vector<BControlPoint>& points, unsigned int width,
                                                 unsigned int height) {
    std::vector<BFitAlternative> alternatives;
    std::vector<Errors> errors;
    std::optional<std::size_t> best;
    for (const EMathTransformType type : kCompared) {
        BFitAlternative alternative;
        alternative.Type = type;
        errors.push_back(LeftOutErrors(type, points, width, height, alternative));
        const std::size_t last = errors.size() - 1;
        if (alternative.HasLeftOut && (!best || TrimmedMean(errors[last]) < TrimmedMean(errors[*best])))
            best = last;
        alternatives.push_back(alternative);
    }
    bool chosen = false;
    for (std::size_t i = 0; i < alternatives.size(); ++i) {
        if (!alternatives[i].HasLeftOut) continue;
        alternatives[i].Worse = i != *best && IsWorse(errors[i], errors[*best]);
        alternatives[i].Chosen = !chosen && !alternatives[i].Worse;
        chosen = chosen || alternatives[i].Chosen;
    }
    return alternatives;
}

EMathTransformType BFitReport::Choose(const std::vector<BFitAlternative>& alternatives,
                                      const std::vector<BControlPoint>& points) {
    constexpr std::ptrdiff_t kComparable = 4;
    const auto count = std::ranges::count_if(points, &BControlPoint::Enabled);
    for (const BFitAlternative& alternative : alternatives)
        if (alternative.Chosen && count >= kComparable) return alternative.Type;
    // Throws for points that carry neither.
    const auto type = count == 2 ? EMathTransformType::Conformal : EMathTransformType::Affine;
    BMathTransform::Fit(type, points, 0, 0);
    return type;
}

}  // namespace Tellurion

#include "FitSuspects.h"

#include "LeftOut.h"
#include "Suspects.h"

#include <Tellurion/BException.h>
#include <Tellurion/BFitReport.h>

#include <Eigen/LU>
#include <Eigen/QR>

#include <algorithm>
#include <cmath>
#include <optional>

namespace Tellurion {
namespace {

/// How often a fit that suffices is taken for one that does not.
constexpr double kTooSimple = 0.05;

/// A fit near its solution: residuals and their slopes by the terms, in pixels.
struct LinearSystem {
    Eigen::MatrixXd slopes;  ///< two rows per point
    Positions residuals;
};

std::optional<LinearSystem> SystemOf(const BMathTransform& fit, const std::vector<BControlPoint>& points,
                                     unsigned int width, unsigned int height) {
    const FitRule rule = RuleOf(fit.GetMathTransformType());
    const ControlPoints used(points, rule);
    const BFitReport report = BFitReport::Of(fit, points, width, height);
    LinearSystem system{TermSlopes(fit, used, rule), Positions(used.Count(), 2)};
    Eigen::Index row = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (!points[i].Enabled) continue;
        BMathTransform::Slopes s{};
        if (!report.Residuals[i].HasResidual || !fit.GetSlopes(points[i].Column, points[i].Row, s))
            return std::nullopt;
        Eigen::Matrix2d to_world;
        to_world << s.XByColumn, s.XByRow, s.YByColumn, s.YByRow;
        system.slopes.middleRows<2>(2 * row) =
            to_world.inverse() * system.slopes.middleRows<2>(2 * row).eval();
        system.residuals.row(row++) << report.Residuals[i].DxPixels, report.Residuals[i].DyPixels;
    }
    return system;
}

/// The sum of squares that the fit through the points that are no suspects leaves; negative where
/// they do not carry it with something to spare.
double SumWithout(const LinearSystem& system, const std::vector<bool>& suspects) {
    const auto kept = std::count(suspects.begin(), suspects.end(), false);
    if (2 * kept < system.slopes.cols() + 2) return -1.0;
    Eigen::MatrixXd slopes(2 * kept, system.slopes.cols());
    Eigen::VectorXd residuals(2 * kept);
    Eigen::Index row = 0;
    for (std::size_t i = 0; i < suspects.size(); ++i) {
        if (suspects[i]) continue;
        const auto at = static_cast<Eigen::Index>(i);
        slopes.middleRows<2>(row) = system.slopes.middleRows<2>(2 * at);
        residuals.segment<2>(row) = system.residuals.row(at).transpose();
        row += 2;
    }
    const Eigen::ColPivHouseholderQR<Eigen::MatrixXd> factors(slopes);
    if (factors.rank() < slopes.cols()) return -1.0;
    return (residuals - slopes * factors.solve(residuals)).squaredNorm();
}

/// The chance that `more` terms without a meaning lessen a sum of squares to that share or further;
/// `spare` coordinates are left. Both are even numbers, for which the distribution has a sum.
double ChanceOfShare(double share, Eigen::Index more, Eigen::Index spare) {
    const double b = static_cast<double>(spare) / 2;
    double term = 1.0;
    double sum = 0.0;
    for (Eigen::Index i = 0; i < more / 2; ++i) {
        sum += term;
        term *= (1 - share) * (b + static_cast<double>(i)) / static_cast<double>(i + 1);
    }
    return std::pow(share, b) * sum;
}

/// The suspects of the simpler fit where it suffices.
std::optional<std::vector<bool>> SuspectsBySimpler(EMathTransformType type, const LinearSystem& rich,
                                                   const std::vector<BControlPoint>& points,
                                                   unsigned int width, unsigned int height) {
    const auto simple = SystemOf(BMathTransform::Fit(type, points, width, height), points, width, height);
    if (!simple) return std::nullopt;
    std::vector<bool> suspects = FindSuspects(simple->slopes, simple->residuals);
    const double rich_sum = SumWithout(rich, suspects);
    const double simple_sum = SumWithout(*simple, suspects);
    if (rich_sum < 0 || !(simple_sum > 0)) return std::nullopt;
    const auto kept = std::count(suspects.begin(), suspects.end(), false);
    const Eigen::Index more = rich.slopes.cols() - simple->slopes.cols();
    const double share = std::clamp(rich_sum / simple_sum, 0.0, 1.0);
    if (ChanceOfShare(share, more, 2 * kept - rich.slopes.cols()) < kTooSimple) return std::nullopt;
    return suspects;
}

/// From simple to rich; none for the simplest.
std::vector<EMathTransformType> SimplerThan(EMathTransformType type) {
    using enum EMathTransformType;
    switch (type) {
        case Polynomial3:
            return {Affine, Polynomial2};
        case Polynomial2:
        case Bilinear:
        case Projective:
            return {Affine};
        default:
            return {};
    }
}

}  // namespace

std::vector<bool> SuspectsOf(const BMathTransform& fit, const std::vector<BControlPoint>& points,
                             unsigned int width, unsigned int height) {
    const auto rich = SystemOf(fit, points, width, height);
    if (!rich) return {};
    for (const EMathTransformType type : SimplerThan(fit.GetMathTransformType())) {
        try {
            if (auto suspects = SuspectsBySimpler(type, *rich, points, width, height)) return *suspects;
        } catch (const BException&) {
            // The points do not carry the simpler fit, such as an affine through a line.
        }
    }
    return FindSuspects(rich->slopes, rich->residuals);
}

}  // namespace Tellurion

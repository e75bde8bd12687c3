#include <Tellurion/BFitReport.h>

#include "FitSpace.h"
#include "FitSuspects.h"
#include "LeftOut.h"
#include "PointSpread.h"
#include "Suspects.h"

#include <Tellurion/BException.h>
#include <Tellurion/Numbers.h>

#include <Eigen/LU>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Tellurion {
namespace {

constexpr double kDegrees = 180 / std::numbers::pi;
constexpr double kNearLine = 0.1;

/// The slopes at a pixel, from steps in pixels to steps in the world; false where there are
/// none or they have no inverse.
bool SlopesAt(const BMathTransform& fit, double column, double row, Eigen::Matrix2d& slopes) {
    BMathTransform::Slopes s{};
    if (!fit.GetSlopes(column, row, s)) return false;
    slopes << s.XByColumn, s.XByRow, s.YByColumn, s.YByRow;
    return slopes.determinant() != 0 && slopes.inverse().allFinite();
}

BFitResidual ResidualOf(const BMathTransform& fit, const BControlPoint& point) {
    BFitResidual residual;
    Eigen::Matrix2d slopes;
    double x = point.Column;
    double y = point.Row;
    if (!fit.ConvertSourceToTarget(x, y) || !SlopesAt(fit, point.Column, point.Row, slopes)) return residual;
    const Eigen::Vector2d world(x - point.World.x, y - point.World.y);
    const Eigen::Vector2d pixels = slopes.inverse() * -world;
    if (!world.allFinite() || !pixels.allFinite()) return residual;
    residual.HasResidual = true;
    residual.Dx = world.x();
    residual.Dy = world.y();
    residual.Residual = world.stableNorm();
    residual.DxPixels = pixels.x();
    residual.DyPixels = pixels.y();
    residual.ResidualPixels = pixels.stableNorm();
    return residual;
}

void SetLeftOut(const BMathTransform& fit, const BControlPoint& point, const Eigen::Vector2d& world,
                BFitResidual& residual) {
    Eigen::Matrix2d slopes;
    if (!world.allFinite() || !SlopesAt(fit, point.Column, point.Row, slopes)) return;
    residual.HasLeftOut = true;
    residual.LeftOutDx = world.x();
    residual.LeftOutDy = world.y();
    residual.LeftOut = world.stableNorm();
    residual.LeftOutPixels = Eigen::Vector2d(slopes.inverse() * world).stableNorm();
}

/// Calls `visit` with each enabled point, its residual and its number among the enabled.
template <class Visit>
void ForEachUsed(const std::vector<BControlPoint>& points, std::vector<BFitResidual>& residuals,
                 Visit visit) {
    Eigen::Index used = 0;
    for (std::size_t i = 0; i < points.size(); ++i)
        if (points[i].Enabled) visit(points[i], residuals[i], used++);
}

void FindLinearSuspects(const std::vector<BControlPoint>& points, unsigned int width, unsigned int height,
                        BFitReport& report) {
    const std::vector<bool> suspects = SuspectsOf(report.Transform, points, width, height);
    if (suspects.empty()) return;
    ForEachUsed(points, report.Residuals, [&](const auto&, auto& residual, Eigen::Index i) {
        residual.Suspect = suspects[static_cast<std::size_t>(i)];
    });
}

/// A spline's points are compared in the pixels of the affine fit.
void FindSuspectsOfSpline(const ControlPoints& used, const std::vector<BControlPoint>& points,
                          unsigned int width, unsigned int height, BFitReport& report) {
    if (used.Count() > kMaxSplinePoints) return;
    const auto affine = BMathTransform::Fit(EMathTransformType::Affine, points, width, height);
    const FitSpace space(used, Scaling::Common, Scaling::PerAxis);
    Positions to(used.Count(), 2);
    for (Eigen::Index i = 0; i < used.Count(); ++i) {
        double x = used.world(i, 0);
        double y = used.world(i, 1);
        if (!affine.ConvertTargetToSource(x, y)) return;
        to.row(i) << x - space.source.centre.x(), y - space.source.centre.y();
    }
    const std::vector<bool> suspects = FindSplineSuspects(space.from, to);
    ForEachUsed(points, report.Residuals, [&](const auto&, auto& residual, Eigen::Index i) {
        residual.Suspect = suspects[static_cast<std::size_t>(i)];
    });
}

void SetMeans(const std::vector<BControlPoint>& points, BFitReport& report) {
    double sum = 0.0;
    double pixels = 0.0;
    double left_out = 0.0;
    double count = 0.0;
    double left_out_count = 0.0;
    ForEachUsed(points, report.Residuals, [&](const auto&, auto& residual, Eigen::Index) {
        ++report.Used;
        if (residual.HasLeftOut) {
            ++left_out_count;
            left_out += residual.LeftOutPixels * residual.LeftOutPixels;
        }
        if (!residual.HasResidual) return;
        ++count;
        sum += residual.Residual * residual.Residual;
        pixels += residual.ResidualPixels * residual.ResidualPixels;
        report.MaxPixels = std::max(report.MaxPixels, residual.ResidualPixels);
    });
    report.HasRmse = count > 0;
    if (!report.HasRmse) return;
    report.Rmse = std::sqrt(sum / count);
    report.RmsePixels = std::sqrt(pixels / count);
    report.HasLeftOutRmse = left_out_count == report.Used;
    if (report.HasLeftOutRmse) report.LeftOutRmsePixels = std::sqrt(left_out / left_out_count);
    const int terms = TermCount(report.Transform.GetMathTransformType());
    const double freedom = count - terms / 2.0;
    report.HasRmseAdjusted = terms > 0 && freedom > 0;
    if (report.HasRmseAdjusted) report.RmseAdjustedPixels = std::sqrt(pixels / freedom);
}

void SetShape(const Positions& pixels, BFitReport& report) {
    const Eigen::RowVector2d middle = pixels.colwise().mean();
    Eigen::Matrix2d slopes;
    if (!SlopesAt(report.Transform, middle.x(), middle.y(), slopes)) return;
    const Eigen::Vector2d along_row = slopes.col(0);
    // Rows count downwards, the y axis upwards.
    const Eigen::Vector2d up = -slopes.col(1);
    report.HasShape = true;
    report.ScaleX = along_row.norm();
    report.ScaleY = up.norm();
    report.RotationDegrees = std::atan2(along_row.y(), along_row.x()) * kDegrees;
    const double cross = along_row.x() * up.y() - along_row.y() * up.x();
    report.Mirrored = cross < 0;
    report.ShearDegrees = 90 - std::atan2(std::fabs(cross), along_row.dot(up)) * kDegrees;
}

void SetSpread(const std::vector<BControlPoint>& points, RasterSize raster, BFitReport& report) {
    const auto count = std::count_if(points.begin(), points.end(), [](const auto& p) { return p.Enabled; });
    if (count == 0) return;
    Positions pixels(count, 2);
    ForEachUsed(points, report.Residuals,
                [&](const auto& point, auto&, Eigen::Index i) { pixels.row(i) << point.Column, point.Row; });
    report.HasHullShare = raster.width > 0 && raster.height > 0;
    report.HullShare = HullShareOf(pixels, raster);
    report.Width = WidthOf(pixels);
    report.NearLine = count > 2 && report.Width < kNearLine;
    SetShape(pixels, report);
}

}  // namespace

BFitReport::BFitReport(const BMathTransform& transform) : Transform(transform) {}

BFitReport BFitReport::Of(const BMathTransform& transform, const std::vector<BControlPoint>& points,
                          unsigned int width, unsigned int height) {
    BFitReport report(transform);
    report.Residuals.reserve(points.size());
    for (const BControlPoint& point : points)
        report.Residuals.push_back(ResidualOf(transform, point));
    SetMeans(points, report);
    SetSpread(points, {width, height}, report);
    return report;
}

BFitReport BFitReport::Make(EMathTransformType type, const std::vector<BControlPoint>& points,
                            unsigned int width, unsigned int height) {
    const FitRule rule = RuleOf(type);
    BFitReport report(BMathTransform::Fit(type, points, width, height));
    report.Residuals.reserve(points.size());
    for (const BControlPoint& point : points)
        report.Residuals.push_back(ResidualOf(report.Transform, point));
    const ControlPoints used(points, rule);
    if (const Positions left_out = LeftOutResiduals(report.Transform, used, rule); left_out.rows() > 0)
        ForEachUsed(points, report.Residuals, [&](const auto& point, auto& residual, Eigen::Index i) {
            SetLeftOut(report.Transform, point, left_out.row(i).transpose(), residual);
        });
    if (type == EMathTransformType::ThinPlateSpline)
        FindSuspectsOfSpline(used, points, width, height, report);
    else
        FindLinearSuspects(points, width, height, report);
    SetMeans(points, report);
    SetSpread(points, {width, height}, report);
    return report;
}

BString BFitReport::DescribeShape(const BString& unit) const {
    if (!HasShape) return {};
    const auto number = [](double value) { return BString::Format("%.6g", value); };
    BString text = BString("1 pixel is ") + number(ScaleX) + BString(" by ") + number(ScaleY);
    if (!unit.IsEmpty()) text += BString(" ") + unit;
    constexpr double kNoAngle = 5e-4;
    if (std::fabs(RotationDegrees) < kNoAngle)
        text += ", not turned";
    else
        text += BString(", turned by ") + BString(PrintFixed(std::fabs(RotationDegrees), 3)) +
                BString(RotationDegrees > 0 ? " degrees counterclockwise" : " degrees clockwise");
    if (std::fabs(ShearDegrees) >= kNoAngle)
        text +=
            BString(", sheared by ") + BString(PrintFixed(std::fabs(ShearDegrees), 3)) + BString(" degrees");
    if (Mirrored) text += ", mirrored";
    return text;
}

}  // namespace Tellurion

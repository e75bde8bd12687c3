#include "PointSpread.h"

#include <Eigen/Eigenvalues>

#include <algorithm>
#include <cmath>
#include <vector>

namespace Tellurion {
namespace {

using Outline = std::vector<Eigen::Vector2d>;

double Turn(const Eigen::Vector2d& a, const Eigen::Vector2d& b, const Eigen::Vector2d& c) {
    return (b.x() - a.x()) * (c.y() - a.y()) - (b.y() - a.y()) * (c.x() - a.x());
}

/// Appends the half of the hull that is met in this order of points.
template <class Points>
void AppendHalf(const Points& points, Outline& hull) {
    const std::size_t start = hull.size();
    for (const Eigen::Vector2d& point : points) {
        while (hull.size() >= start + 2 && Turn(hull[hull.size() - 2], hull.back(), point) <= 0)
            hull.pop_back();
        hull.push_back(point);
    }
    hull.pop_back();
}

Outline HullOf(const Positions& pixels) {
    Outline points;
    for (Eigen::Index i = 0; i < pixels.rows(); ++i)
        points.emplace_back(pixels.row(i).transpose());
    std::sort(points.begin(), points.end(),
              [](const auto& a, const auto& b) { return a.x() != b.x() ? a.x() < b.x() : a.y() < b.y(); });
    Outline hull;
    AppendHalf(points, hull);
    std::reverse(points.begin(), points.end());
    AppendHalf(points, hull);
    return hull;
}

/// What of a convex outline is on the side of the line where normal * place <= limit.
Outline Cut(const Outline& outline, const Eigen::Vector2d& normal, double limit) {
    Outline left;
    for (std::size_t i = 0; i < outline.size(); ++i) {
        const Eigen::Vector2d& from = outline[i];
        const Eigen::Vector2d& to = outline[(i + 1) % outline.size()];
        const double from_beyond = normal.dot(from) - limit;
        const double to_beyond = normal.dot(to) - limit;
        if (from_beyond <= 0) left.push_back(from);
        if ((from_beyond < 0 && to_beyond > 0) || (from_beyond > 0 && to_beyond < 0))
            left.push_back(from + (to - from) * (from_beyond / (from_beyond - to_beyond)));
    }
    return left;
}

double AreaOf(const Outline& outline) {
    double area = 0.0;
    for (std::size_t i = 2; i < outline.size(); ++i)
        area += Turn(outline[0], outline[i - 1], outline[i]) / 2;
    return std::fabs(area);
}

}  // namespace

double HullShareOf(const Positions& pixels, RasterSize raster) {
    if (raster.width == 0 || raster.height == 0 || pixels.rows() == 0) return 0.0;
    Outline hull = HullOf(pixels);
    hull = Cut(hull, {-1, 0}, 0);
    hull = Cut(hull, {0, -1}, 0);
    hull = Cut(hull, {1, 0}, raster.width);
    hull = Cut(hull, {0, 1}, raster.height);
    return AreaOf(hull) / (static_cast<double>(raster.width) * static_cast<double>(raster.height));
}

double WidthOf(const Positions& pixels) {
    const Positions centred = pixels.rowwise() - pixels.colwise().mean();
    const Eigen::Matrix2d spread = centred.transpose() * centred;
    const Eigen::Vector2d squares =
        Eigen::SelfAdjointEigenSolver<Eigen::Matrix2d>(spread, Eigen::EigenvaluesOnly).eigenvalues();
    return squares[1] > 0 ? std::sqrt(std::max(0.0, squares[0]) / squares[1]) : 0.0;
}

}  // namespace Tellurion

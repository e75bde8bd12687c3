#include "ControlPoints.h"

#include "LeastSquares.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

namespace Tellurion {
namespace {

/// Far beyond any coordinate system, and far enough from the end of the range that
/// sums and differences stay in it.
constexpr double kLargestCoordinate = 1e300;
/// Differences below this part of a coordinate may be its rounding.
constexpr double kRounding = 4 * std::numeric_limits<double>::epsilon();

/// Indices of the points, those with the same pixel next to each other.
std::vector<Eigen::Index> ByPixel(const Positions& pixels) {
    std::vector<Eigen::Index> order(static_cast<std::size_t>(pixels.rows()));
    std::iota(order.begin(), order.end(), Eigen::Index{0});
    std::sort(order.begin(), order.end(), [&](Eigen::Index i, Eigen::Index j) {
        return pixels(i, 0) != pixels(j, 0) ? pixels(i, 0) < pixels(j, 0) : pixels(i, 1) < pixels(j, 1);
    });
    return order;
}

/// How many different pixels there are, counted no further than `enough`.
Eigen::Index DifferentPixels(const Positions& pixels, Eigen::Index enough) {
    std::vector<std::pair<double, double>> seen;
    for (Eigen::Index i = 0; i < pixels.rows() && std::ssize(seen) < enough; ++i) {
        const std::pair pixel{pixels(i, 0), pixels(i, 1)};
        if (std::ranges::find(seen, pixel) == seen.end()) seen.push_back(pixel);
    }
    return std::ssize(seen);
}

/// 0 when the positions coincide, 1 when they lie on a line, 2 otherwise, each
/// within the rounding of the coordinates.
Eigen::Index Dimension(const Positions& positions) {
    Positions unit(positions.rows(), 2);
    double tolerance = kRankTolerance;
    for (Eigen::Index axis = 0; axis < 2; ++axis) {
        const auto values = positions.col(axis);
        const double reach = values.cwiseAbs().maxCoeff();
        const double spread = values.maxCoeff() - values.minCoeff();
        const double rounding = reach * kRounding;
        if (spread > rounding) {
            unit.col(axis) = (values.array() - values.minCoeff()) / spread;
            unit.col(axis).array() -= unit.col(axis).mean();
            tolerance = std::max(tolerance, rounding / spread);
        } else {
            unit.col(axis).setZero();
        }
    }
    const Eigen::Vector2d squares = unit.colwise().squaredNorm();
    Eigen::Index longer = 0;
    const double square = squares.maxCoeff(&longer);
    if (square == 0.0) return 0;
    // What the longer column leaves of the other is what the other adds.
    const double share = unit.col(longer).dot(unit.col(1 - longer)) / square;
    const double left = (unit.col(1 - longer) - share * unit.col(longer)).norm();
    return left > tolerance * std::sqrt(square) ? 2 : 1;
}

void RequireFinite(const ControlPoints& points) {
    for (Eigen::Index i = 0; i < points.Count(); ++i) {
        if (!(points.pixels.row(i).cwiseAbs().maxCoeff<Eigen::PropagateNaN>() <= kLargestCoordinate))
            RefuseFit("The pixel of point %ld (%g, %g) is not a finite number in range", points.Number(i),
                      points.pixels(i, 0), points.pixels(i, 1));
        // Written so that NaN fails.
        if (!(points.world.row(i).cwiseAbs().maxCoeff<Eigen::PropagateNaN>() <= kLargestCoordinate))
            RefuseFit("The world position of point %ld (%g, %g) is not a finite number in range",
                      points.Number(i), points.world(i, 0), points.world(i, 1));
    }
}

[[noreturn]] void RefuseCoinciding(const ControlPoints& points, const FitRule& rule) {
    RefuseFit("The %s fit needs different positions, the world positions of the %td enabled points coincide",
              rule.name, points.Count());
}

}  // namespace

FitRule RuleOf(EMathTransformType type) {
    switch (type) {
        case EMathTransformType::Affine:
            return {"affine", 3};
        case EMathTransformType::Conformal:
            return {"conformal", 2};
        case EMathTransformType::Polynomial2:
            return {"second order polynomial", 6};
        case EMathTransformType::Polynomial3:
            return {"third order polynomial", 10};
        case EMathTransformType::Projective:
            return {"projective", 4};
        case EMathTransformType::ThinPlateSpline:
            return {"thin plate spline", 3};
        case EMathTransformType::Bilinear:
            return {"bilinear", 4};
        case EMathTransformType::None:
            break;
    }
    RefuseFit("There is no fit of type %d", static_cast<int>(type));
}

ControlPoints::ControlPoints(const std::vector<BPointPair>& pairs, const FitRule& rule) : pairs_(&pairs) {
    Fill(pairs, rule);
}

ControlPoints::ControlPoints(const std::vector<BControlPoint>& points, const FitRule& rule)
    : points_(&points) {
    Fill(points, rule);
}

template <class Point>
void ControlPoints::Fill(const std::vector<Point>& pairs, const FitRule& rule) {
    const Eigen::Index count = std::ranges::count_if(pairs, &Point::Enabled);
    if (count < rule.points)
        RefuseFit("The %s fit needs %td points, %td of %zu are enabled", rule.name, rule.points, count,
                  pairs.size());
    pixels.resize(count, 2);
    world.resize(count, 2);
    Eigen::Index i = 0;
    for (const Point& pair : pairs) {
        if (!pair.Enabled) continue;
        pixels.row(i) << pair.Column, pair.Row;
        world.row(i++) << pair.World.x, pair.World.y;
    }
    RequireFinite(*this);
    const Eigen::Index different = DifferentPixels(pixels, rule.points);
    if (different < rule.points)
        RefuseFit("The %s fit needs points at %td different pixels, the %td enabled ones coincide at %td",
                  rule.name, rule.points, count, different);
}

long ControlPoints::Number(Eigen::Index point) const {
    std::size_t index = 0;
    while (!IsEnabled(index) || point-- != 0)
        ++index;
    return static_cast<long>(index) + 1;
}

void RequireArea(const ControlPoints& points, const FitRule& rule) {
    const Eigen::Index world = Dimension(points.world);
    if (world < 1) RefuseCoinciding(points, rule);
    if (Dimension(points.pixels) < 2)
        RefuseFit("The %s fit needs an area, the pixels of the %td enabled points lie on a line", rule.name,
                  points.Count());
    if (world < 2)
        RefuseFit("The %s fit needs an area, the world positions of the %td enabled points lie on a line",
                  rule.name, points.Count());
}

void RequireExtent(const ControlPoints& points, const FitRule& rule) {
    if (Dimension(points.world) < 1) RefuseCoinciding(points, rule);
}

void RequireDifferentPixels(const ControlPoints& points, const FitRule& rule) {
    const auto order = ByPixel(points.pixels);
    for (std::size_t k = 1; k < order.size(); ++k)
        if (points.pixels.row(order[k]) == points.pixels.row(order[k - 1]))
            RefuseFit("The %s fit takes each pixel once, points %ld and %ld coincide at (%.12g, %.12g)",
                      rule.name, std::min(points.Number(order[k]), points.Number(order[k - 1])),
                      std::max(points.Number(order[k]), points.Number(order[k - 1])),
                      points.pixels(order[k], 0), points.pixels(order[k], 1));
}

}  // namespace Tellurion

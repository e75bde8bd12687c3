#include "SavingLosses.h"
#include "common/points/ExactPoints.h"

#include <Tellurion/BException.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace MapAnchor {

using namespace Tellurion;

namespace {

bool HasFractions(const std::vector<BControlPoint>& points) {
    return std::any_of(points.begin(), points.end(), [](const BControlPoint& point) {
        return point.Column != std::round(point.Column) || point.Row != std::round(point.Row);
    });
}

std::vector<BPoint> PlacesOf(const std::vector<BControlPoint>& points, const BSavingOptions& options) {
    std::vector<BPoint> places;
    for (const BControlPoint& point : points)
        places.emplace_back(point.Column, point.Row, 0.0);
    const auto width = static_cast<double>(options.GetWidth());
    const auto height = static_cast<double>(options.GetHeight());
    if (width <= 0 || height <= 0) return places;
    for (const double x : {0.0, width})
        for (const double y : {0.0, height})
            places.emplace_back(x, y, 0.0);
    return places;
}

}  // namespace

double FindRoundingOfPoints(const ReferenceFormat& kind, const BGeoReference& reference,
                            const BSavingOptions& options) {
    constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();
    const auto& pairs = reference.PointPairVector;
    if (!kind.points || kind.point_fractions || !reference.HasMathTransform()) return 0.0;
    const std::vector<BControlPoint> points = ExactPoints::Join(pairs, options.GetControlPoints());
    if (!HasFractions(points)) return 0.0;
    const BMathTransform& exact = *reference.MathTransform;
    double cost = 0.0;
    try {
        const auto rounded = BMathTransform::Fit(exact.GetMathTransformType(), BControlPoint::From(pairs),
                                                 static_cast<unsigned int>(options.GetWidth()),
                                                 static_cast<unsigned int>(options.GetHeight()));
        for (const BPoint& place : PlacesOf(points, options)) {
            double x = place.x;
            double y = place.y;
            if (!exact.ConvertSourceToTarget(x, y) || !rounded.ConvertTargetToSource(x, y)) return kUnknown;
            cost = std::max(cost, std::hypot(x - place.x, y - place.y));
        }
    } catch (const BException&) {
        return kUnknown;
    }
    return cost;
}

}  // namespace MapAnchor

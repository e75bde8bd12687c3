#include <Tellurion/BControlPoint.h>

#include <algorithm>
#include <cmath>

namespace Tellurion {
namespace {

/// The nearest whole number in the range of long; 0 for what is not a number.
long Whole(double value) {
    constexpr double kLimit = 9e18;
    return std::isnan(value) ? 0 : std::lround(std::clamp(value, -kLimit, kLimit));
}

}  // namespace

BPointPair BControlPoint::Rounded() const {
    return {Whole(Column), Whole(Row), World.x, World.y, World.z, Name, Enabled};
}

BControlPoint BControlPoint::From(const BPointPair& pair) {
    BControlPoint point;
    point.Name = pair.Name;
    point.Column = pair.Column;
    point.Row = pair.Row;
    point.World = pair.World;
    point.Enabled = pair.Enabled;
    return point;
}

std::vector<BPointPair> BControlPoint::Round(const std::vector<BControlPoint>& points) {
    std::vector<BPointPair> pairs;
    pairs.reserve(points.size());
    for (const BControlPoint& point : points)
        pairs.push_back(point.Rounded());
    return pairs;
}

std::vector<BControlPoint> BControlPoint::From(const std::vector<BPointPair>& pairs) {
    std::vector<BControlPoint> points;
    points.reserve(pairs.size());
    for (const BPointPair& pair : pairs)
        points.push_back(From(pair));
    return points;
}

}  // namespace Tellurion

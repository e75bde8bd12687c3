#include "common/points/ExactPoints.h"

namespace MapAnchor {

using Tellurion::BControlPoint;
using Tellurion::BPointPair;

namespace {

thread_local const std::vector<BControlPoint>* current = nullptr;

}  // namespace

ExactPoints::ExactPoints(const std::vector<BControlPoint>& points) : outer_(current) {
    current = &points;
}

ExactPoints::~ExactPoints() {
    current = outer_;
}

std::vector<BControlPoint> ExactPoints::Join(const std::vector<BPointPair>& pairs,
                                             const std::vector<BControlPoint>& exact) {
    std::vector<BControlPoint> points = BControlPoint::From(pairs);
    if (exact.size() != pairs.size()) return points;
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        const BPointPair rounded = exact[i].Rounded();
        if (rounded.Column != pairs[i].Column || rounded.Row != pairs[i].Row)
            return BControlPoint::From(pairs);
        points[i].Column = exact[i].Column;
        points[i].Row = exact[i].Row;
    }
    return points;
}

std::vector<BControlPoint> ExactPoints::Of(const std::vector<BPointPair>& pairs) {
    return current ? Join(pairs, *current) : BControlPoint::From(pairs);
}

}  // namespace MapAnchor

#include "common/points/CornerPoints.h"

namespace MapAnchor {

using Tellurion::BPoint;
using Tellurion::BPointPair;

void AppendCornerPoints(const Tellurion::BMathTransform& transform, long width, long height,
                        std::vector<BPointPair>& pairs) {
    const long right = width - 1;
    const long bottom = height - 1;
    const auto append = [&](const char* name, long column, long row) {
        const BPoint pixel{static_cast<double>(column), static_cast<double>(row), 0.0};
        const BPoint world = transform.ConvertSourceToTarget(pixel);
        pairs.emplace_back(column, row, world.x, world.y, 0.0, name, true);
    };
    append("NW", 0, 0);
    append("NE", right, 0);
    append("SE", right, bottom);
    append("SW", 0, bottom);
}

}  // namespace MapAnchor

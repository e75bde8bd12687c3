#pragma once

#include <Tellurion/BMathTransform.h>
#include <Tellurion/BPointPair.h>

#include <vector>

namespace MapAnchor {

/// Appends the four points "NW", "NE", "SE", "SW" that stand for a transform where a
/// format holds control points alone. Their pixels are the indices of the corner
/// pixels, (0, 0) to (width - 1, height - 1), not the outer edges. What the transform
/// throws passes through, with the points made so far in place.
void AppendCornerPoints(const Tellurion::BMathTransform& transform, long width, long height,
                        std::vector<Tellurion::BPointPair>& pairs);

}  // namespace MapAnchor

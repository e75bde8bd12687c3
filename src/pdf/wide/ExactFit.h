#pragma once

#include "common/points/StoreControlPoints.h"
#include "wide/ReadWideGeoPDF.h"

namespace MapAnchor {

/// False for a place beyond what a column or row can count, or a position that is not finite.
bool IsCountable(const WidePoint& point);

/// Stores the points, rounded to pixels, and a transform through their exact places. A fit
/// that is neither affine nor conformal goes through the rounded ones, with a remark.
void StoreExactPoints(Tellurion::BGeoReference& reference, const std::vector<WidePoint>& points,
                      Tellurion::EMathTransformType type, RasterExtent extent, OnFailure on_failure,
                      VellumLib::WideRemarks& remarks);

}  // namespace MapAnchor

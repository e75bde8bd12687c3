#pragma once

#include "common/points/StoreControlPoints.h"
#include "common/policy/Strictness.h"

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BPointPair.h>
#include <Tellurion/BString.h>

#include <vector>

namespace MapAnchor {

/// The reference's control points or, where it has none, the corners of its
/// transform, which go into `corners`. What the transform throws passes through.
const std::vector<Tellurion::BPointPair>& PointsToWrite(const Tellurion::BGeoReference& reference,
                                                        RasterExtent extent,
                                                        std::vector<Tellurion::BPointPair>& corners);

/// The same for the typed path: corners only of a raster with a size, and a transform
/// that the coordinate system database fails on gives as many as it can, or a
/// BGeoReferenceInvalidTransformException.
const std::vector<Tellurion::BPointPair>& PointsToWrite(const Tellurion::BGeoReference& reference,
                                                        RasterExtent extent, OnFailure on_failure,
                                                        const Tellurion::BString& file,
                                                        const FailureTexts& texts,
                                                        std::vector<Tellurion::BPointPair>& corners);

}  // namespace MapAnchor

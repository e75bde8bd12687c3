#pragma once

#include "common/policy/FailureTexts.h"
#include "common/policy/Strictness.h"

#include <MapAnchor/Internal.h>
#include <Tellurion/BControlPoint.h>
#include <Tellurion/BGeoReference.h>
#include <Tellurion/BPointPair.h>
#include <Tellurion/EMathTransformType.h>

#include <vector>

namespace MapAnchor {

/// The raster's size in pixels, as the host knows it.
struct RasterExtent {
    long width = 0;
    long height = 0;
};

/// Fits a transform of `type` through the points and stores both. Without a fit the
/// points are stored alone, or a BGeoReferenceInvalidTransformException ends the read
/// and the reference stays as it was. True when the transform was stored.
MAPANCHOR_INTERNAL bool StoreControlPoints(Tellurion::BGeoReference& reference,
                                           std::vector<Tellurion::BPointPair> pairs,
                                           Tellurion::EMathTransformType type, RasterExtent extent,
                                           OnFailure on_failure, const FailureTexts& texts);

/// The same with points that may have fractions of pixels: the fit is through them, and the
/// reference holds them rounded. Without a wish for a fit the points are stored alone.
bool StoreExactPoints(Tellurion::BGeoReference& reference,
                      const std::vector<Tellurion::BControlPoint>& points, Tellurion::EMathTransformType type,
                      RasterExtent extent, OnFailure on_failure, const FailureTexts& texts);

}  // namespace MapAnchor

#pragma once

#include "common/Strictness.h"

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BPointPair.h>
#include <Tellurion/EMathTransformType.h>

#include <vector>

namespace MapAnchor {

/// How a format speaks when no transform fits its control points.
struct ControlPointVoice {
    const char* source;         ///< of the exceptions, such as "BRefRSF::Read"
    const char* thrown_source;  ///< of the exception that stands for one of the fit's own
    const char* log_format;     ///< takes the text of the fit's exception
};

/// The raster's size in pixels, as the host knows it.
struct RasterExtent {
    long width = 0;
    long height = 0;
};

/// Fits a transform of `type` through the points and stores both. Without a fit the
/// points are stored alone, or a BGeoReferenceInvalidTransformException ends the read
/// and the reference stays as it was. True when the transform was stored.
bool StoreControlPoints(Tellurion::BGeoReference& reference, std::vector<Tellurion::BPointPair> pairs,
                        Tellurion::EMathTransformType type, RasterExtent extent, OnFailure on_failure,
                        const ControlPointVoice& voice);

}  // namespace MapAnchor

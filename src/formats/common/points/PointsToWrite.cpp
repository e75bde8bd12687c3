#include "common/points/PointsToWrite.h"

#include "common/points/CornerPoints.h"

#include <MapAnchor/BGeoReferenceInvalidTransformException.h>
#include <Tellurion/BGeoCalcException.h>

namespace MapAnchor {

using Tellurion::BGeoReference;
using Tellurion::BPointPair;
using Tellurion::BString;

const std::vector<BPointPair>& PointsToWrite(const BGeoReference& reference, RasterExtent extent,
                                             std::vector<BPointPair>& corners) {
    if (!reference.PointPairVector.empty()) return reference.PointPairVector;
    if (reference.HasMathTransform())
        AppendCornerPoints(*reference.MathTransform, extent.width, extent.height, corners);
    return corners;
}

const std::vector<BPointPair>& PointsToWrite(const BGeoReference& reference, RasterExtent extent,
                                             OnFailure on_failure, const BString& file,
                                             const FailureTexts& texts, std::vector<BPointPair>& corners) {
    if (!reference.PointPairVector.empty()) return reference.PointPairVector;
    if (!reference.HasMathTransform() || extent.width < 1 || extent.height < 1) return corners;
    try {
        AppendCornerPoints(*reference.MathTransform, extent.width, extent.height, corners);
    } catch (const Tellurion::BGeoCalcException& error) {
        if (on_failure == OnFailure::Throw)
            throw BGeoReferenceInvalidTransformException(
                texts.source, BString::Format(texts.corners_detail, file, error.GetDetailedMessage()));
    }
    return corners;
}

}  // namespace MapAnchor

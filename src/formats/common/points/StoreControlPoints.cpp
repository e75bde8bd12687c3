#include "common/points/StoreControlPoints.h"

#include <MapAnchor/BGeoReferenceInvalidTransformException.h>
#include <Tellurion/BLogger.h>

#include <utility>

namespace MapAnchor {

using Tellurion::BException;
using Tellurion::BLogger;
using Tellurion::BMathTransform;
using Tellurion::BString;
using Tellurion::ELogSeverity;
using Tellurion::EMathTransformType;

bool StoreControlPoints(Tellurion::BGeoReference& reference, std::vector<Tellurion::BPointPair> pairs,
                        EMathTransformType type, RasterExtent extent, OnFailure on_failure,
                        const FailureTexts& texts) {
    constexpr bool kOptimizeFor2D = true;
    try {
        const BMathTransform transform(type, pairs, static_cast<unsigned int>(extent.width),
                                       static_cast<unsigned int>(extent.height), kOptimizeFor2D);
        reference.SetPointPairVectorAndMathTransform(std::move(pairs), transform);
        return true;
    } catch (const BException& error) {
        const BString text = error.GetDetailedMessage();
        BLogger::Instance()->WriteLine(ELogSeverity::Error, texts.points_line, text);
        if (on_failure == OnFailure::Throw)
            throw BGeoReferenceInvalidTransformException(texts.SourceOfReplaced(), text);
    }
    reference.SetPointPairVector(std::move(pairs), EMathTransformType::None);
    return false;
}

}  // namespace MapAnchor

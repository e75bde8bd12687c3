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

namespace {

/// Stores what `fit` makes of the points; without a fit, the points alone.
template <class Fit>
bool StoreFitted(Tellurion::BGeoReference& reference, std::vector<Tellurion::BPointPair> pairs, Fit fit,
                 OnFailure on_failure, const FailureTexts& texts) {
    try {
        const BMathTransform transform = fit(pairs);
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

}  // namespace

bool StoreControlPoints(Tellurion::BGeoReference& reference, std::vector<Tellurion::BPointPair> pairs,
                        EMathTransformType type, RasterExtent extent, OnFailure on_failure,
                        const FailureTexts& texts) {
    constexpr bool kOptimizeFor2D = true;
    const auto fit = [&](const auto& of) {
        return BMathTransform(type, of, static_cast<unsigned int>(extent.width),
                              static_cast<unsigned int>(extent.height), kOptimizeFor2D);
    };
    return StoreFitted(reference, std::move(pairs), fit, on_failure, texts);
}

bool StoreExactPoints(Tellurion::BGeoReference& reference,
                      const std::vector<Tellurion::BControlPoint>& points, EMathTransformType type,
                      RasterExtent extent, OnFailure on_failure, const FailureTexts& texts) {
    std::vector<Tellurion::BPointPair> pairs = Tellurion::BControlPoint::Round(points);
    if (type == EMathTransformType::None) {
        reference.SetPointPairVector(std::move(pairs), type);
        return false;
    }
    const auto fit = [&](const auto&) {
        return BMathTransform::Fit(type, points, static_cast<unsigned int>(extent.width),
                                   static_cast<unsigned int>(extent.height));
    };
    return StoreFitted(reference, std::move(pairs), fit, on_failure, texts);
}

}  // namespace MapAnchor

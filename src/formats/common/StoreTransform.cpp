#include "common/StoreTransform.h"

#include <MapAnchor/BGeoReferenceInvalidTransformException.h>
#include <Tellurion/BLogger.h>

#include <memory>

namespace MapAnchor {

using Tellurion::BException;
using Tellurion::BLogger;
using Tellurion::BMathTransform;
using Tellurion::BString;
using Tellurion::ELogSeverity;

namespace {

BString FailureText(const AffineTerms& t) {
    return BString::Format("Failed creating Affine(%f %f %f %f %f %f)", t.a, t.b, t.c, t.d, t.e, t.f);
}

}  // namespace

bool StoreAffine(Tellurion::BGeoReference& reference, const AffineTerms& t, OnFailure on_failure,
                 const AffineVoice& voice, const AffineTerms* told) {
    constexpr bool kOptimizeFor2D = true;
    BString failure;
    try {
        const std::unique_ptr<BMathTransform> transform(
            BMathTransform::CreateAffine(t.a, t.b, t.c, t.d, t.e, t.f, kOptimizeFor2D));
        if (transform) {
            reference.SetMathTransform(*transform);
            return true;
        }
    } catch (const BException& error) {
        failure = error.GetDetailedMessage();
        BLogger::Instance()->Write(ELogSeverity::Error, voice.log_line(t, failure));
    }
    if (on_failure == OnFailure::GoOn) return false;
    if (failure.IsEmpty()) failure = FailureText(told ? *told : t);
    throw BGeoReferenceInvalidTransformException(voice.source, failure);
}

}  // namespace MapAnchor

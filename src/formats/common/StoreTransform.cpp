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
    try {
        const std::unique_ptr<BMathTransform> transform(
            BMathTransform::CreateAffine(t.a, t.b, t.c, t.d, t.e, t.f, kOptimizeFor2D));
        if (transform) {
            reference.SetMathTransform(*transform);
            return true;
        }
    } catch (const BException& error) {
        const BString text = error.GetDetailedMessage();
        BLogger::Instance()->Write(ELogSeverity::Error, voice.log_line(t, text));
        if (on_failure == OnFailure::GoOn) return false;
        const char* source = voice.thrown_source ? voice.thrown_source : voice.source;
        throw BGeoReferenceInvalidTransformException(source, text);
    }
    if (on_failure == OnFailure::GoOn) return false;
    throw BGeoReferenceInvalidTransformException(voice.source, FailureText(told ? *told : t));
}

}  // namespace MapAnchor

#include "common/storing/StoreTransform.h"

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

BString AffineLogLine(const FailureTexts& texts, const AffineTerms& t, const BString& message) {
    if (!texts.affine_terms_line) return BString::Format(texts.affine_line, message);
    return BString::Format(texts.affine_terms_line, t.a, t.b, t.c, t.d, t.e, t.f, message);
}

bool StoreAffine(Tellurion::BGeoReference& reference, const AffineTerms& t, OnFailure on_failure,
                 const FailureTexts& texts, const AffineTerms* shown) {
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
        BLogger::Instance()->Write(ELogSeverity::Error, AffineLogLine(texts, t, text));
        if (on_failure == OnFailure::GoOn) return false;
        throw BGeoReferenceInvalidTransformException(texts.SourceOfReplaced(), text);
    }
    if (on_failure == OnFailure::GoOn) return false;
    throw BGeoReferenceInvalidTransformException(texts.source, FailureText(shown ? *shown : t));
}

}  // namespace MapAnchor

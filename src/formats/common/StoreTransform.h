#pragma once

#include "common/AffineTerms.h"
#include "common/Strictness.h"

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BString.h>

namespace MapAnchor {

/// How a format speaks when its affine cannot be stored.
struct AffineVoice {
    const char* source;  ///< of the exceptions, such as "BRefWLD::Read"
    /// The log line for a failure with that message.
    Tellurion::BString (*log_line)(const AffineTerms& terms, const Tellurion::BString& message);
    /// Source of the exception that stands for one caught on the way; null for `source`.
    const char* thrown_source = nullptr;
};

/// Makes an affine of the terms and stores it. True when the reference has it;
/// terms that make none leave the reference as it is, or end in a
/// BGeoReferenceInvalidTransformException, which tells the terms, or those of `told`
/// where a format tells them as they stand in the file.
bool StoreAffine(Tellurion::BGeoReference& reference, const AffineTerms& terms, OnFailure on_failure,
                 const AffineVoice& voice, const AffineTerms* told = nullptr);

}  // namespace MapAnchor

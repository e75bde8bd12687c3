#pragma once

#include "common/policy/FailureTexts.h"
#include "common/policy/Strictness.h"
#include "common/storing/Affine.h"

#include <MapAnchor/Internal.h>
#include <Tellurion/BGeoReference.h>
#include <Tellurion/BString.h>

namespace MapAnchor {

/// Makes an affine of the terms and stores it. True when the reference has it;
/// terms that make none leave the reference as it is, or end in a
/// BGeoReferenceInvalidTransformException, whose text has the terms, or those of `shown`
/// where a format shows them as they are in the file.
MAPANCHOR_INTERNAL bool StoreAffine(Tellurion::BGeoReference& reference, const AffineTerms& terms,
                                    OnFailure on_failure, const FailureTexts& texts,
                                    const AffineTerms* shown = nullptr);

/// The log line of a format whose affine fails.
MAPANCHOR_INTERNAL Tellurion::BString AffineLogLine(const FailureTexts& texts, const AffineTerms& terms,
                                                    const Tellurion::BString& message);

}  // namespace MapAnchor

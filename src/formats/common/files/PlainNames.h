#pragma once

#include "common/storing/Affine.h"

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BString.h>

namespace MapAnchor {

/// A coordinate system as chart and frame headers name it.
struct PlainNames {
    Tellurion::BString projection;
    Tellurion::BString datum;
    Tellurion::BString units;
};

/// The system of those names; empty when nobody knows them.
Tellurion::BSharedPtr<Tellurion::BCoordSys> LookUp(const PlainNames& names);

/// Reads tolerantly, for headers that state an affine and a system: stores what there
/// is of both, in this order. An exception on the way ends that; it is logged by
/// `log_format`, which takes its text.
void StoreWhatThereIs(Tellurion::BGeoReference& reference, const AffineTerms& terms, const PlainNames& names,
                      const char* log_format);

}  // namespace MapAnchor

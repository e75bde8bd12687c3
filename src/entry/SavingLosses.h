#pragma once

#include "common/policy/ReferenceFormat.h"

#include <MapAnchor/BDiagnostic.h>
#include <MapAnchor/BSavingOptions.h>
#include <Tellurion/BGeoReference.h>

#include <vector>

namespace MapAnchor {

/// What the kind cannot hold of the reference, and what a save of it lacks, by the kind's row.
std::vector<BDiagnostic> FindSavingLosses(const ReferenceFormat& kind,
                                          const Tellurion::BGeoReference& reference,
                                          const BSavingOptions& options);

/// See BSaving::FindRounding().
double FindRoundingOfPoints(const ReferenceFormat& kind, const Tellurion::BGeoReference& reference,
                            const BSavingOptions& options);

}  // namespace MapAnchor

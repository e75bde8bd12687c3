#pragma once

#include "load/CrossReferences.h"

#include <MapAnchor/BGeoPDFTraits.h>

namespace MapAnchor {

/// The traits of a file whose cross-references are read.
BGeoPDFTraits TraitsOf(VellumLib::CrossReferences& references, VellumLib::FileWindow& file);
/// False for a file of PDF/UA or of level A of PDF/A, whose structure has only elements of roles that
/// are standard or mapped to one.
bool AllowsNewRoles(VellumLib::CrossReferences& references);

}  // namespace MapAnchor

#pragma once

#include "load/CrossReferences.h"

#include <MapAnchor/BGeoPDFTraits.h>

namespace MapAnchor {

/// The traits of a file whose cross-references are read.
BGeoPDFTraits TraitsOf(VellumLib::CrossReferences& references, VellumLib::FileWindow& file);

}  // namespace MapAnchor

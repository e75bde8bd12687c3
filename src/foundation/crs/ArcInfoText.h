#pragma once

#include "crs/CoordSysDefinition.h"

namespace Tellurion {

/// The system of a PRJ file in the old form of Arc/Info: a line for each key, the
/// first of them "Projection". Null for any other text. Cached.
CoordSysDefinition::Ptr FindByArcInfoText(const BString& text);

}  // namespace Tellurion

#pragma once

#include "crs/CoordSysDefinition.h"
#include "names/MapInfoClause.h"

namespace Tellurion {

/// The system of a clause; null when it cannot be made. Cached.
CoordSysDefinition::Ptr FindByMapInfo(const MapInfoTerms& terms);

}  // namespace Tellurion

#pragma once

#include "coordsys/CoordSysDefinition.h"

#include <string>

namespace Tellurion {

/// The system of a clause as ParseMapInfoClause gives it; null when it cannot be made.
/// Cached.
CoordSysDefinition::Ptr FindByMapInfo(const std::string& clause);

/// The clause of a system, without the word CoordSys; empty when no clause says the
/// same: a clause that is read back as something else is not given out.
std::string MapInfoTextOf(const CoordSysDefinition& system);

}  // namespace Tellurion

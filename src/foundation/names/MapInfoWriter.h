#pragma once

#include "crs/CoordSysDefinition.h"

#include <string>

namespace Tellurion {

/// The clause of a system, without the word CoordSys; empty when no clause is the same
/// system: one that would be read back as another place is not returned.
std::string MapInfoTextOf(const CoordSysDefinition& system);

}  // namespace Tellurion

#pragma once

#include <Tellurion/BSharedPtr.h>
#include <Tellurion/BUnit.h>

namespace Tellurion {

/// How many of a geodetic system's units make a degree: 10/9 for the grad, 1 where the unit is not known.
inline double UnitsPerDegree(const BSharedPtr<BUnit>& unit) {
    return unit && !unit->IsLinear() ? unit->GetUnitsPerBase() : 1.0;
}

}  // namespace Tellurion

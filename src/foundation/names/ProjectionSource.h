#pragma once

#include "crs/ProjObjects.h"
#include "names/CProjection.h"
#include "names/ErMapperNames.h"

#include <Tellurion/BLinearUnit.h>
#include <Tellurion/BSharedPtr.h>

namespace Tellurion {
class CoordSysDefinition;
}

namespace GeoCalc::PJ {

/// The unit of a projected system.
Tellurion::BSharedPtr<Tellurion::BLinearUnit> UnitOf(const Tellurion::CoordSysDefinition& projected);
/// Its projection, with lengths in that unit.
CProjection ReadProjection(const Tellurion::CoordSysDefinition& projected);

/// The projection of a row of names.
CProjection ReadProjection(const DB::ErMapperProjection& row);
/// Its unit.
Tellurion::BSharedPtr<Tellurion::BLinearUnit> UnitOf(const DB::ErMapperProjection& row);

/// The conversion that the projection makes; null when there is none such.
Tellurion::Proj::Object MakeConversion(const CProjection& projection);

}  // namespace GeoCalc::PJ

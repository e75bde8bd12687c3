#pragma once

#include "geocalc/CCoordSys.h"
#include "geocalc/CEquivalent.h"
#include "geocalc/CProjectedCoordSys.h"
#include "names/EpsgProjections.h"

#include <string>
#include <vector>

namespace GeoCalc::DB {

/// The EPSG systems, and after them the ER Mapper projections on their own datum, that
/// are the same as an object. For projected objects the answer is cached.
std::vector<CEquivalent> FindEquivalents(const CS::CCoordSys& object, Sameness sameness);

/// Whether two projected systems have the same geodetic system, unit and projection.
bool IsSame(const CS::CProjectedCoordSys& a, const CS::CProjectedCoordSys& b, Sameness sameness);

}  // namespace GeoCalc::DB

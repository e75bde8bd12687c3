#pragma once

#include "crs/CoordSysDefinition.h"

#include <string_view>

namespace Tellurion {

/// The system that the plain names of a header stand for: a projection, LAT-LONG or
/// UTM with a zone or a name of ER Mapper's, a datum, and the unit of a projected system. Null when one of
/// them is not known. Nothing is cached here.
CoordSysDefinition::Ptr FindByPlainNames(std::string_view projection, std::string_view datum,
                                         std::string_view units);

}  // namespace Tellurion

#pragma once

#include "crs/CoordSysDefinition.h"

namespace Tellurion {

/// A system and what its text was taken for.
struct NamedSystem {
    CoordSysDefinition::Ptr definition;  ///< null when nothing is known by the text
    const char* understood_as = "names";
};

/// By any words that a person has for a system, see BCoordSys::FromText.
NamedSystem FindByText(const BString& text);

}  // namespace Tellurion

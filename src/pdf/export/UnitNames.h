#pragma once

#include <QString>

namespace VellumLib {

/// What a measure dictionary calls the units of a linear unit's name.
struct UnitNames {
    const char* unit;
    const char* linear;
    const char* area;
    const char* angular;
};

/// Metres and degrees for a unit that is not known.
const UnitNames& UnitNamesOf(const QString& unit);

}  // namespace VellumLib

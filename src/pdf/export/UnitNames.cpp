#include "export/UnitNames.h"

namespace VellumLib {

namespace {

// Nautical miles go with square miles, and grads change the angle alone; readers of
// these files expect it so.
constexpr UnitNames kUnitNames[] = {
    {"METERS", "M", "SQM", "DEG"},
    {"KILOMETERS", "KM", "SQKM", "DEG"},
    {"INTERNATIONAL FEET", "FT", "SQFT", "DEG"},
    {"USFEET", "USFT", "SQFT", "DEG"},
    {"INTERNATIONAL MILES", "MI", "SQMI", "DEG"},
    {"NAUTICAL MILES", "NM", "SQMI", "DEG"},
    {"GRADS", "M", "SQM", "GRD"},
};
constexpr UnitNames kOtherUnit = {"", "M", "SQM", "DEG"};

}  // namespace

const UnitNames& UnitNamesOf(const QString& unit) {
    for (const UnitNames& names : kUnitNames)
        if (unit == QLatin1String(names.unit)) return names;
    return kOtherUnit;
}

}  // namespace VellumLib

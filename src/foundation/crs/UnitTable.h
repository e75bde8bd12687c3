#pragma once

#include <Tellurion/BLinearUnit.h>
#include <Tellurion/BUnit.h>

#include <string_view>

namespace Tellurion {

/// A known unit. One unit is `numerator / denominator` base units; whole numbers
/// where the unit's definition has them, so that both quotients are exact to the double.
struct BUnit::Row {
    const char* name;
    bool linear;
    double numerator;
    double denominator;
    int epsg;               ///< 0 without a code
    int epsg_alternate;     ///< a second code of the same unit, or 0
    const char* gc;         ///< codes of the database's own, parted by '|'; the first is given out
    const char* spellings;  ///< further names in texts: lower-case letters and digits, parted by '|'

    double BasePerUnit() const { return numerator / denominator; }
    double UnitsPerBase() const { return denominator / numerator; }
};

/// The units that have identifiers.
struct UnitTable {
    /// The unit of an issuer's code; empty when unknown.
    static BSharedPtr<BUnit> Find(const BIdentifier& identifier);
    static BSharedPtr<BLinearUnit> FindLinear(const BIdentifier& identifier);

    /// What a text says of a unit: name and size, the size in metres or degrees; an
    /// EPSG code or 0. A unit of the table when the size fits and the code or the
    /// name agrees, otherwise one without identifiers.
    static BSharedPtr<BUnit> FromText(std::string_view name, double base_per_unit, bool linear, int epsg);
    static BSharedPtr<BLinearUnit> LinearFromText(std::string_view name, double metres_per_unit, int epsg);

private:
    static const BUnit::Row kRows[];
    static const BUnit::Row* FindRow(const BIdentifier& identifier);
    static const BUnit::Row* MatchRow(std::string_view name, double base_per_unit, bool linear, int epsg);
};

}  // namespace Tellurion

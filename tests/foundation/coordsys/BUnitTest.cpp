#include <Tellurion/BUnit.h>

#include <Tellurion/BLinearUnit.h>

#include <gtest/gtest.h>

#include <string>

namespace Tellurion {
namespace {

struct UnitCase {
    const char* issuer;
    const char* code;
    const char* name;
    double units_per_base;
};

// Quotients of the whole numbers that define the units: exact to the double.
constexpr UnitCase kUnits[] = {
    {"GC", "METERS", "metre", 1.0},
    {"GC", "meters", "metre", 1.0},
    {"EPSG", "9001", "metre", 1.0},
    {"GC", "INTERNATIONAL FEET", "foot", 10000.0 / 3048.0},
    {"EPSG", "9002", "foot", 10000.0 / 3048.0},
    {"GC", "USFEET", "US survey foot", 3937.0 / 1200.0},
    {"EPSG", "9003", "US survey foot", 3937.0 / 1200.0},
    {"GC", "INTERNATIONAL YARDS", "yard", 10000.0 / 9144.0},
    {"EPSG", "9096", "yard", 10000.0 / 9144.0},
    {"GC", "YARD", "US survey yard", 3937.0 / 3600.0},
    {"GC", "FATHOM", "fathom", 10000.0 / 18288.0},
    {"EPSG", "9014", "fathom", 10000.0 / 18288.0},
    {"GC", "RODS", "US survey rod", 3937.0 / 19800.0},
    {"EPSG", "9036", "kilometre", 0.001},
    {"EPSG", "9122", "degree", 1.0},
    {"EPSG", "9105", "grad", 10.0 / 9.0},
};

TEST(BUnit, HasItsNameAndExactSize) {
    for (const UnitCase& c : kUnits) {
        const BSharedPtr<BUnit> unit = BUnit::GetUnit({c.issuer, c.code});
        ASSERT_TRUE(unit) << c.code;
        EXPECT_EQ(unit->GetName(), BString(c.name)) << c.code;
        EXPECT_EQ(unit->GetUnitsPerBase(), c.units_per_base) << c.code;
    }
}

TEST(BUnit, IsEmptyForCodesThatNobodyKnows) {
    for (const auto& [issuer, code] : {std::pair{"EPSG", "0"},
                                       {"EPSG", "-9001"},
                                       {"EPSG", "9001x"},
                                       {"EPSG", ""},
                                       {"GC", ""},
                                       {"GC", "METERS|METRES"},
                                       {"GC", "CUBITS"},
                                       {"ESRI", "9001"}})
        EXPECT_FALSE(BUnit::GetUnit({issuer, code})) << issuer << ' ' << code;
}

TEST(BUnit, KnowsItsCodes) {
    BIdentifier identifier;
    const auto foot = BUnit::GetUnit({"GC", "USFEET"});
    ASSERT_TRUE(foot->GetIdentifier("EPSG", identifier));
    EXPECT_EQ(identifier.Code, BString("9003"));
    // A rod has no EPSG code; the identifier stays what it was.
    EXPECT_FALSE(BUnit::GetUnit({"GC", "RODS"})->GetIdentifier("EPSG", identifier));
    EXPECT_EQ(identifier.Code, BString("9003"));
    EXPECT_FALSE(BLinearUnit("pace", 0.75).GetIdentifier("GC", identifier));
    EXPECT_FALSE(BLinearUnit::GetLinearUnit({"GC", "DEGREES"}));
}

}  // namespace
}  // namespace Tellurion

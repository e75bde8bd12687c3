#include <Tellurion/BLinearUnit.h>
#include <Tellurion/BUnit.h>

#include <gtest/gtest.h>

namespace Tellurion {
namespace {

// Quotients of the whole numbers that define the units: exact to the double.
TEST(BUnit, HasItsNameAndExactSize) {
    const std::tuple<const char*, const char*, const char*, double> cases[] = {
        {"GC", "INTERNATIONAL FEET", "foot", 10000.0 / 3048.0}, {"GC", "meters", "metre", 1.0},
        {"EPSG", "9003", "US survey foot", 3937.0 / 1200.0},    {"EPSG", "9036", "kilometre", 0.001},
        {"GC", "YARD", "US survey yard", 3937.0 / 3600.0},      {"EPSG", "9102", "degree", 1.0},
        {"GC", "RODS", "US survey rod", 3937.0 / 19800.0},      {"EPSG", "9105", "grad", 10.0 / 9.0}};
    for (const auto& [issuer, code, name, units_per_base] : cases) {
        const BSharedPtr<BUnit> unit = BUnit::GetUnit({issuer, code});
        ASSERT_TRUE(unit) << code;
        EXPECT_EQ(unit->GetName(), BString(name)) << code;
        EXPECT_EQ(unit->GetUnitsPerBase(), units_per_base) << code;
    }
    const std::pair<const char*, const char*> unknown[] = {
        {"EPSG", "0"}, {"EPSG", "-9001"},       {"EPSG", "9001x"}, {"EPSG", ""},
        {"GC", ""},    {"GC", "METERS|METRES"}, {"GC", "CUBITS"},  {"ESRI", "9001"}};
    for (const auto& [issuer, code] : unknown)
        EXPECT_FALSE(BUnit::GetUnit({issuer, code})) << issuer << ' ' << code;
}

TEST(BUnit, StatesItsCodes) {
    BIdentifier identifier;
    ASSERT_TRUE(BUnit::GetUnit({"GC", "USFEET"})->GetIdentifier("EPSG", identifier));
    EXPECT_EQ(identifier.Code, BString("9003"));
    // A rod has no EPSG code; the identifier stays what it was.
    EXPECT_FALSE(BUnit::GetUnit({"GC", "RODS"})->GetIdentifier("EPSG", identifier));
    EXPECT_EQ(identifier.Code, BString("9003"));
    EXPECT_FALSE(BLinearUnit("pace", 0.75).GetIdentifier("GC", identifier));
    EXPECT_FALSE(BLinearUnit::GetLinearUnit({"GC", "DEGREES"}));
}

}  // namespace
}  // namespace Tellurion

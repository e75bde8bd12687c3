#include "lookups/CoordSysLookups.h"

#include <GeoCalc/CDataSource.h>
#include <GeoCalc/CProjectedCoordSys.h>
#include <Tellurion/BLinearUnit.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <thread>

namespace MapAnchor {
namespace {

using GeoCalc::CS::CProjectedCoordSys;
using GeoCalc::DB::CDataSource;
using namespace Tellurion;

BSharedPtr<BCoordSys> FromEpsg(const char* code) {
    return BSharedPtr<BCoordSys>(BCoordSys::FromEPSGCode(code));
}

TEST(FormatERSTimeStamp, PutsTheZoneBeforeTheYear) {
    std::tm time{};
    ASSERT_TRUE(strptime("1980-01-02 02:03:55", "%Y-%m-%d %H:%M:%S", &time));
    std::tm beyond = time;
    beyond.tm_year = 2'000'000'000;
    const char* const whole = "Wed Jan 02 02:03:55 GMT 1980\n";
    // The limit counts without the zone.
    const std::tuple<const std::tm*, int, const char*> cases[] = {
        {&time, 255, whole}, {&time, 25, whole}, {&time, 24, "Wed Jan 02 02:03:55 GMT "},
        {&time, 3, "Wed"},   {&time, -1, ""},    {nullptr, 255, "-"},
        {&beyond, 255, "-"}};
    for (const auto& [when, limit, text] : cases) {
        char out[64] = "-";
        EXPECT_EQ(FormatERSTimeStamp(when, out, limit), *text != '-') << limit;
        EXPECT_STREQ(out, text) << limit;
    }
    EXPECT_FALSE(FormatERSTimeStamp(&time, nullptr, 255));
}

TEST(CompareNoCase, StopsAtTheFirstDifferenceTheEndOrTheCount) {
    const std::tuple<const char*, const char*, std::size_t, int> cases[] = {
        {"Knp/SC", "KNP/sc", 6, 0}, {"abcX", "ABCY", 3, 0},   {"a", "b", 0, 0},
        {"ab", "abc", 9, -'c'},     {"abC", "ab", 9, 'c'},    {"ab", "AB", 99, 0},
        {"A", "c", 1, 'a' - 'c'},   {"[", "{", 1, '[' - '{'}, {"\xE9", "a", 1, 0xE9 - 'a'}};
    for (const auto& [a, b, count, result] : cases)
        EXPECT_EQ(CompareNoCase(a, b, count), result) << a << ' ' << b;
}

TEST(BuildCompoundWKT, WritesTheVerticalPartOrUnit) {
    EXPECT_TRUE(BuildCompoundWKT(BGeoReference()).IsEmpty());
    BGeoReference reference;
    reference.SetCoordSys(FromEpsg("32633"));
    const std::string wkt = reference.CoordSys->ToWKT().StdStr();
    EXPECT_EQ(BuildCompoundWKT(reference).StdStr(), wkt);
    reference.SetVerticalUnit(BLinearUnit::GetLinearUnit({"GC", "USFEET"}));
    EXPECT_EQ(BuildCompoundWKT(reference).StdStr(),
              "COMPD_CS[Vertical \"WGS 84 / UTM zone 33N\"," + wkt +
                  ",VERT_CS[\"unknown\",VERT_DATUM[\"unknown\"],UNIT[\"US survey foot\",0.3048006096012192,"
                  "AUTHORITY[\"EPSG\",\"9003\"]],AXIS[\"Up\",UP]]]");
    reference.SetVerticalUnit(BSharedPtr<BLinearUnit>(new BLinearUnit("pace", 0.75)));
    EXPECT_NE(BuildCompoundWKT(reference).StdStr().find("UNIT[\"pace\",0.75],AXIS"), std::string::npos);
    reference.SetCoordSys(FromEpsg("6349"));  // NAD83(2011) + NAVD88 height
    EXPECT_EQ(BuildCompoundWKT(reference).StdStr(),
              "COMPD_CS[\"NAD83(2011) + NAVD88 height\"," + reference.CoordSys->ToWKT().StdStr() +
                  ",VERT_CS[\"NAVD88 height\",VERT_DATUM[\"North American Vertical Datum 1988\",AUTHORITY["
                  "\"EPSG\",\"5103\"]],UNIT[\"metre\",1,AUTHORITY[\"EPSG\",\"9001\"]],AXIS[\"Up\",UP],"
                  "AUTHORITY[\"EPSG\",\"5703\"]]]");
}

// The unit codes: 1 asks for metres, 3 for US survey feet, others for no change. The result
// is the number of the EPSG system, or the unit of one that has none.
TEST(FindERMapperCoordSys, FindsTheSystemOfTheNames) {
    const std::tuple<const char*, const char*, int, const char*> cases[] = {
        {"NUTM12", "", 4, "32612"}, {"nutm12", "nad83", 4, "26912"},  {"NUTM12", "NOWHERE", 1, "32612"},
        {"TMI", "", 4, "metre"},    {"NUTM12", "NAD27", 3, "4412"},   {"L2CAL6F83", "NAD83", 1, "26946"},
        {"", "WGS84", 4, ""},       {"L2CAL6M", "NAD83", 1, "26946"}, {"L2CAL6F83", "NAD83", 2, "2230"},
        {"RAW", "RAW", 4, ""},      {"L2TXNFT83", "", 1, "2275"},     {"L2SCF83", "", 4, "US survey foot"},
        {"XYZF83", "", 4, ""},      {"NUTM1283", "", 4, "26912"},     {"LMFRAN93", "RGF93", 1, "2154"},
        {"83", "", 4, ""},          {"SUTM55", "AGD66", 1, "20255"},  {"NUTM12", "EPSG:4267", 4, "26712"},
        {"EPSG:999999", "", 4, ""}, {"EPSG:2277", "", 4, "2277"},     {"GEODETIC", "gda94", 4, "4283"},
        {"EPSG:5703", "", 4, ""},   {"WGS84", "NAD27", 1, "4326"},    {"GEODETIC", "EPSG:4258", 4, "4258"},
        {"GEODETIC", "", 4, ""},    {"geodetic", "WGS84", 4, ""},     {"GEODETIC", "EPSG:27700", 4, "27700"},
        {"GEODETIC", "RAW", 4, ""}, {"NUTM61", "WGS84", 4, ""},       {"GEODETIC", "NAD27MTR", 4, "degree"}};
    for (const auto& [projection, datum, units, expected] : cases) {
        const auto system = FindERMapperCoordSys(projection, datum, units);
        const std::string code = system ? system->ToEPSGCode().StdStr() : "EPSG:";
        EXPECT_EQ(code.empty() ? system->GetUnits()->GetName().StdStr() : code.substr(5), expected)
            << projection << ' ' << datum;
    }
    // Counted from the equator, the false northing of this row gives its parallel a round number.
    EXPECT_NEAR(FindERMapperCoordSys("MRCONGO", "WGS84", 4)->ConvertFromGeodetic({11.0, -5.0, 0.0}).y,
                500000.0, 100.0);
    // Each caller has a system of its own.
    const auto first = FindERMapperCoordSys("NUTM12", "WGS84", 1);
    dynamic_cast<CProjectedCoordSys&>(*first->GetGCCoordSys())
        .SetGeodeticCoordSys(*CDataSource::Instance().GetGeodeticCoordSysNonThrow("ERMapper", "NAD27"));
    EXPECT_EQ(FindERMapperCoordSys("NUTM12", "WGS84", 1)->ToEPSGCode(), BString("EPSG:32612"));
}

TEST(FindERMapperCoordSys, StoresANewSystemOnce) {
    const auto count = [] { return CDataSource::Instance().Search(CDataSource::kProjectedCoordSys).size(); };
    const std::size_t before = count();
    std::vector<BSharedPtr<BCoordSys>> found(4);
    std::vector<std::thread> threads;
    for (BSharedPtr<BCoordSys>& system : found)
        threads.emplace_back([&system] { system = FindERMapperCoordSys("nutm31", "ED50FRA", 3); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(count(), before + 1);
    const auto feet = FindERMapperCoordSys("NUTM31", "ED50Fra", 3);
    const auto metres = FindERMapperCoordSys("NUTM31", "ED50FRA", 4);
    ASSERT_TRUE(feet && metres);
    for (const BSharedPtr<BCoordSys>& system : found)
        EXPECT_EQ(system->ToWKT(), feet->ToWKT());
    EXPECT_TRUE(feet->GetName().EndsWith(" US survey foot")) << feet->GetName();
    // False origins stay on the ground.
    const BPoint in_metres = metres->ConvertFromGeodetic({3.5, 47.0, 0.0});
    const BPoint in_feet = feet->ConvertFromGeodetic({3.5, 47.0, 0.0});
    EXPECT_NEAR(in_feet.x, in_metres.x * 3937.0 / 1200.0, 1e-6);
    EXPECT_NEAR(in_feet.y, in_metres.y * 3937.0 / 1200.0, 1e-5);
    BIdentifier datum;
    ASSERT_TRUE(feet->GetDatumIdentifier("ERMapper", datum));
    EXPECT_EQ(datum.Code, BString("ED50FRA"));
}

std::string NameOf(const BSharedPtr<BCoordSys>& system) {
    BString name;
    return GetERMapperProjectionName(name, system) ? name.StdStr() : "";
}

// The look-up gives what a plain walk through the database would.
TEST(GetERMapperProjectionName, FindsTheFirstThatIsNearlyEqual) {
    const auto objects = CDataSource::Instance().Search(CDataSource::kProjectedCoordSys);
    std::set<std::string> names;
    const auto compare = [&](const BSharedPtr<BCoordSys>& system) {
        const auto& wanted =
            dynamic_cast<const CProjectedCoordSys&>(*system->GetGCCoordSys()).GetProjection();
        const auto found = std::ranges::find_if(objects, [&](const auto& entry) {
            const auto& projection = dynamic_cast<const CProjectedCoordSys&>(*entry).GetProjection();
            return entry->GetIdentifiers().Exists("ERMapper") && projection.GetKind() == wanted.GetKind() &&
                   projection.IsNearlyEqual(wanted);
        });
        const std::string name =
            found == objects.end() ? "" : (*found)->GetIdentifiers().GetCode("ERMapper").StdStr();
        EXPECT_EQ(NameOf(system), name) << system->GetName();
        names.insert(name);
    };
    for (const char* code :
         {"32601", "32660", "32701", "26712", "7855", "3857", "2225", "3310", "5070", "3035", "2056", "31467",
          "28992", "3413", "3395", "27291", "30200", "6933", "4412"})
        compare(FromEpsg(code));
    int step = 0;
    for (const auto& entry : objects)
        if (entry->GetIdentifiers().Exists("ERMapper") && ++step % 31 == 0)
            compare(BSharedPtr<BCoordSys>(new BCoordSys(entry->GetDefinition())));
    EXPECT_GT(names.size(), 30U);
}

TEST(GetERMapperProjectionName, NamesWhatIsReadBack) {
    const std::pair<const char*, const char*> cases[] = {
        {"26912", "NUTM12"},   {"28355", "SUTM55"},  {"2193", "NZTM"},
        {"2230", "L2CAL6F83"}, {"26946", "L2CAL6M"}, {"27700", "TMOSGB"},
        {"4326", "WGS84"},     {"4171", "RGF93"},    {"4490", ""}};
    for (const auto& [code, expected] : cases) {
        const auto system = FromEpsg(code);
        const std::string name = NameOf(system);
        EXPECT_EQ(name, expected) << code;
        BIdentifier datum;
        if (name.empty()) continue;
        ASSERT_TRUE(system->GetDatumIdentifier("ERMapper", datum)) << code;
        EXPECT_EQ(FindERMapperCoordSys(BString(name), datum.Code, 4)->ToEPSGCode(), system->ToEPSGCode());
    }
}

}  // namespace
}  // namespace MapAnchor

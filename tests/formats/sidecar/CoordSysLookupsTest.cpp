#include "sidecar/CoordSysLookups.h"

#include <GeoCalc/CDataSource.h>
#include <GeoCalc/CProjectedCoordSys.h>
#include <Tellurion/BCoordSysRepository.h>
#include <Tellurion/BLinearUnit.h>

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace MapAnchor {
namespace {

using GeoCalc::CS::CProjectedCoordSys;
using GeoCalc::DB::CDataSource;
using Tellurion::BCoordSys;
using Tellurion::BGeoReference;
using Tellurion::BIdentifier;
using Tellurion::BLinearUnit;
using Tellurion::BSharedPtr;
using Tellurion::BString;

BSharedPtr<BCoordSys> FromEpsg(const char* code) {
    return BSharedPtr<BCoordSys>(BCoordSys::FromEPSGCode(code));
}

std::tm SecondOfJanuary(int year = 80) {
    std::tm time{};
    time.tm_year = year;
    time.tm_mday = 2;
    time.tm_wday = 3;
    time.tm_hour = 2;
    time.tm_min = 3;
    time.tm_sec = 55;
    return time;
}

TEST(FormatERSTimeStamp, PutsTheZoneBeforeTheYear) {
    struct Case {
        const char* name;
        int limit;
        const char* text;
    };
    constexpr Case kCases[] = {
        {"far_from_the_limit", 255, "Wed Jan 02 02:03:55 GMT 1980\n"},
        {"only_the_zone_outgrows_the_limit", 25, "Wed Jan 02 02:03:55 GMT 1980\n"},
        {"longer_without_the_zone", 24, "Wed Jan 02 02:03:55 GMT "},
        {"cut_before_the_zone", 3, "Wed"},
        {"no_room", 0, ""},
        {"a_limit_below_zero", -1, ""},
    };
    const std::tm time = SecondOfJanuary();
    for (const Case& c : kCases) {
        char out[64] = "untouched";
        EXPECT_TRUE(FormatERSTimeStamp(&time, out, c.limit)) << c.name;
        EXPECT_STREQ(out, c.text) << c.name;
    }
}

TEST(FormatERSTimeStamp, LeavesTheTextAloneWithoutATime) {
    char out[64] = "untouched";
    const std::tm beyond = SecondOfJanuary(2'000'000'000);
    EXPECT_FALSE(FormatERSTimeStamp(nullptr, out, 255));
    EXPECT_FALSE(FormatERSTimeStamp(&beyond, out, 255));
    EXPECT_STREQ(out, "untouched");
    const std::tm time = SecondOfJanuary();
    EXPECT_FALSE(FormatERSTimeStamp(&time, nullptr, 255));
}

TEST(CompareNoCase, StopsAtTheFirstDifferenceTheEndOrTheCount) {
    struct Case {
        const char* name;
        const char* a;
        const char* b;
        std::size_t count;
        int result;
    };
    constexpr Case kCases[] = {
        {"case_alone", "Knp/SC", "KNP/sc", 6, 0},
        {"difference_behind_the_count", "abcX", "ABCY", 3, 0},
        {"count_of_zero", "a", "b", 0, 0},
        {"first_ends_early", "ab", "abc", 9, -'c'},
        {"second_ends_early", "abC", "ab", 9, 'c'},
        {"equal_up_to_the_end_of_both", "ab", "AB", 99, 0},
        {"difference_of_the_folded_letters", "A", "c", 1, 'a' - 'c'},
        {"brackets_are_no_letters", "[", "{", 1, '[' - '{'},
        {"bytes_above_ascii_are_positive", "\xE9", "a", 1, 0xE9 - 'a'},
    };
    for (const Case& c : kCases)
        EXPECT_EQ(CompareNoCase(c.a, c.b, c.count), c.result) << c.name;
}

BGeoReference ReferenceIn(const BSharedPtr<BCoordSys>& system) {
    BGeoReference reference;
    reference.SetCoordSys(system);
    return reference;
}

TEST(BuildCompoundWKT, KeepsThePlainTextWithoutAnythingVertical) {
    for (const char* code : {"4326", "32633"}) {
        const auto system = FromEpsg(code);
        EXPECT_EQ(BuildCompoundWKT(ReferenceIn(system)), system->ToWKT()) << code;
    }
    EXPECT_TRUE(BuildCompoundWKT(BGeoReference()).IsEmpty());
}

TEST(BuildCompoundWKT, WritesTheVerticalUnitOfTheReference) {
    BGeoReference reference = ReferenceIn(FromEpsg("32633"));
    reference.SetVerticalUnit(BLinearUnit::GetLinearUnit({"GC", "USFEET"}));
    const BString expected = BString("COMPD_CS[Vertical \"WGS 84 / UTM zone 33N\",") +
                             reference.CoordSys->ToWKT() +
                             BString(
                                 ",VERT_CS[\"unknown\",VERT_DATUM[\"unknown\"],UNIT[\"US survey foot\","
                                 "0.3048006096012192,AUTHORITY[\"EPSG\",\"9003\"]],AXIS[\"Up\",UP]]]");
    EXPECT_EQ(BuildCompoundWKT(reference), expected);
    reference.SetVerticalUnit(BSharedPtr<BLinearUnit>(new BLinearUnit("pace", 0.75)));
    EXPECT_NE(BuildCompoundWKT(reference).StdStr().find("UNIT[\"pace\",0.75],AXIS"), std::string::npos);
}

TEST(BuildCompoundWKT, WritesTheVerticalPartOfTheSystem) {
    const auto system = FromEpsg("6349");  // NAD83(2011) + NAVD88 height
    ASSERT_TRUE(system);
    const std::string start =
        "COMPD_CS[\"NAD83(2011) + NAVD88 height\"," + system->ToWKT().StdStr() +
        ",VERT_CS[\"NAVD88 height\",VERT_DATUM[\"North American Vertical Datum 1988\",AUTHORITY[\"EPSG\","
        "\"5103\"]],UNIT[\"metre\",1,AUTHORITY[\"EPSG\",\"9001\"]],AXIS[\"Up\",UP],AUTHORITY[\"EPSG\","
        "\"5703\"]]]";
    EXPECT_EQ(BuildCompoundWKT(ReferenceIn(system)).StdStr(), start);
    const auto projected = FromEpsg("7405");  // OSGB36 / British National Grid + ODN height
    const std::string text = BuildCompoundWKT(ReferenceIn(projected)).StdStr();
    EXPECT_TRUE(text.starts_with("COMPD_CS[\"" + projected->GetName().StdStr() + "\",PROJCS[")) << text;
    EXPECT_NE(text.find(",VERT_CS[\"ODN height\",VERT_DATUM["), std::string::npos) << text;
}

struct NameCase {
    const char* name;
    const char* projection;
    const char* datum;
    int units;
    const char* epsg;  ///< empty where no EPSG system is the same
    const char* unit;
};

constexpr NameCase kNames[] = {
    {"datum_of_its_own", "NUTM12", "", 4, "EPSG:32612", "metre"},
    {"datum_said", "NUTM12", "NAD27", 4, "EPSG:26712", "metre"},
    {"names_in_lower_case", "nutm12", "nad83", 4, "EPSG:26912", "metre"},
    {"unknown_datum_keeps_the_own", "NUTM12", "NOWHERE", 1, "EPSG:32612", "metre"},
    {"raw_datum_keeps_the_own", "NUTM12", "RAW", 1, "EPSG:32612", "metre"},
    {"feet_asked_for", "NUTM12", "NAD27", 3, "EPSG:4412", "US survey foot"},
    {"metres_asked_for", "L2CAL6F83", "NAD83", 1, "EPSG:26946", "metre"},
    {"unit_code_of_no_change", "L2CAL6F83", "NAD83", 2, "EPSG:2230", "US survey foot"},
    {"unit_it_has_already", "L2CAL6M", "NAD83", 1, "EPSG:26946", "metre"},
    {"feet_form_found_at_once", "L2CAL6F83", "NAD83", 4, "EPSG:2230", "US survey foot"},
    {"feet_form_ending_in_f", "L2SCF83", "", 4, "", "US survey foot"},
    {"feet_form_ending_in_ft", "L2TXNFT83", "", 1, "EPSG:2275", "US survey foot"},
    {"form_without_feet", "NUTM1283", "", 4, "EPSG:26912", "metre"},
    {"southern_zone", "SUTM55", "AGD66", 1, "EPSG:20255", "metre"},
    {"national_grid", "TMOSGB", "OSGB36", 1, "EPSG:27700", "metre"},
    {"parallels_in_the_other_order", "LMFRAN93", "RGF93", 1, "EPSG:2154", "metre"},
    {"epsg_number_in_both", "EPSG:27700", "EPSG:27700", 4, "EPSG:27700", "metre"},
    {"epsg_number_of_feet", "EPSG:2277", "EPSG:2277", 4, "EPSG:2277", "US survey foot"},
    {"epsg_number_as_the_datum", "NUTM12", "EPSG:4267", 4, "EPSG:26712", "metre"},
    {"current_before_deprecated", "TMI", "", 4, "", "metre"},
    {"geodetic", "GEODETIC", "WGS84", 4, "EPSG:4326", "degree"},
    {"geodetic_in_lower_case", "GEODETIC", "gda94", 4, "EPSG:4283", "degree"},
    {"geodetic_epsg_number", "GEODETIC", "EPSG:4258", 4, "EPSG:4258", "degree"},
    {"geodetic_and_a_projected_number", "GEODETIC", "EPSG:27700", 4, "EPSG:27700", "metre"},
    {"datum_in_place_of_a_projection", "WGS84", "NAD27", 1, "EPSG:4326", "degree"},
    {"datum_of_an_ellipsoid_alone", "GEODETIC", "NAD27MTR", 4, "", "degree"},
};

class NamesOfErMapper : public testing::TestWithParam<NameCase> {};

TEST_P(NamesOfErMapper, AreUnderstood) {
    const NameCase& c = GetParam();
    const auto system = FindERMapperCoordSys(c.projection, c.datum, c.units);
    ASSERT_TRUE(system);
    EXPECT_EQ(system->ToEPSGCode(), BString(c.epsg)) << system->GetName();
    EXPECT_EQ(system->GetUnits()->GetName(), BString(c.unit));
}

INSTANTIATE_TEST_SUITE_P(Table, NamesOfErMapper, testing::ValuesIn(kNames),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(FindERMapperCoordSys, IsEmptyForNamesThatNobodyKnows) {
    struct Case {
        const char* projection;
        const char* datum;
    };
    constexpr Case kCases[] = {
        {"", "WGS84"},       {"RAW", "RAW"},        {"XYZF83", ""},      {"83", ""},
        {"EPSG:999999", ""}, {"EPSG:", ""},         {"EPSG:5703", ""},   {"GEODETIC", ""},
        {"GEODETIC", "RAW"}, {"geodetic", "WGS84"}, {"NUTM61", "WGS84"}, {"../../etc", ""}};
    for (const Case& c : kCases)
        EXPECT_FALSE(FindERMapperCoordSys(c.projection, c.datum, 4)) << c.projection << ' ' << c.datum;
}

std::size_t CountStored() {
    return CDataSource::Instance().Search(CDataSource::kProjectedCoordSys).size();
}

TEST(FindERMapperCoordSys, StoresANewSystemOnce) {
    const std::size_t before = CountStored();
    const auto first = FindERMapperCoordSys("NUTM31", "ED50Fra", 3);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->GetName(), BString("ERMapper NUTM31 ED50Fra US survey foot"));
    EXPECT_EQ(CountStored(), before + 1);
    const auto second = FindERMapperCoordSys("nutm31", "ED50FRA", 3);
    ASSERT_TRUE(second);
    EXPECT_EQ(CountStored(), before + 1);
    EXPECT_EQ(second->ToWKT(), first->ToWKT());
    const BIdentifier code("GC", first->GetName());
    const BSharedPtr<BCoordSys> by_code(Tellurion::BCoordSysRepository::Instance()->GetCoordSys(code));
    ASSERT_TRUE(by_code);
    EXPECT_EQ(by_code->ToWKT(), first->ToWKT());
}

TEST(FindERMapperCoordSys, KeepsFalseOriginsOnTheGround) {
    const auto metres = FindERMapperCoordSys("NUTM31", "ED50FRA", 4);
    const auto feet = FindERMapperCoordSys("NUTM31", "ED50FRA", 3);
    ASSERT_TRUE(metres && feet);
    const auto in_metres = metres->ConvertFromGeodetic({3.5, 47.0, 0.0});
    const auto in_feet = feet->ConvertFromGeodetic({3.5, 47.0, 0.0});
    EXPECT_NEAR(in_feet.x, in_metres.x * 3937.0 / 1200.0, 1e-6);
    EXPECT_NEAR(in_feet.y, in_metres.y * 3937.0 / 1200.0, 1e-5);
    BIdentifier datum;
    ASSERT_TRUE(feet->GetDatumIdentifier("ERMapper", datum));
    EXPECT_EQ(datum.Code, BString("ED50FRA"));
}

TEST(FindERMapperCoordSys, CountsMercatorNorthingsFromTheEquator) {
    const auto congo = FindERMapperCoordSys("MRCONGO", "WGS84", 4);
    ASSERT_TRUE(congo);
    // The false northing of the row is chosen so that its parallel has a round number.
    EXPECT_NEAR(congo->ConvertFromGeodetic({11.0, -5.0, 0.0}).y, 500000.0, 100.0);
}

TEST(FindERMapperCoordSys, GivesEachCallerASystemOfItsOwn) {
    const auto first = FindERMapperCoordSys("NUTM12", "WGS84", 1);
    auto& object = dynamic_cast<CProjectedCoordSys&>(*first->GetGCCoordSys());
    object.SetGeodeticCoordSys(*CDataSource::Instance().GetGeodeticCoordSysNonThrow("ERMapper", "NAD27"));
    EXPECT_EQ(FindERMapperCoordSys("NUTM12", "WGS84", 1)->ToEPSGCode(), BString("EPSG:32612"));
}

TEST(FindERMapperCoordSys, StoresOneSystemForManyThreads) {
    std::vector<std::string> texts(4);
    std::vector<std::thread> threads;
    for (std::string& text : texts)
        threads.emplace_back([&text] {
            for (int i = 0; i < 20; ++i)
                text = FindERMapperCoordSys("NUTM32", "ED50EGYT", 3)->ToWKT().StdStr();
        });
    for (std::thread& thread : threads)
        thread.join();
    for (const std::string& text : texts)
        EXPECT_EQ(text, texts.front());
    EXPECT_FALSE(texts.front().empty());
}

/// The plain walk through the database that the look-up stands for.
class WalkThroughTheDatabase : public testing::Test {
protected:
    static const CDataSource::Objects& All() {
        static const auto objects = CDataSource::Instance().Search(CDataSource::kProjectedCoordSys);
        return objects;
    }

    static BString Walk(const BCoordSys& system) {
        const auto& wanted = dynamic_cast<const CProjectedCoordSys&>(*system.GetGCCoordSys());
        for (const auto& entry : All()) {
            const auto& object = dynamic_cast<const CProjectedCoordSys&>(*entry);
            if (object.GetProjection().GetKind() != wanted.GetProjection().GetKind()) continue;
            if (!object.GetProjection().IsNearlyEqual(wanted.GetProjection())) continue;
            if (object.GetIdentifiers().Exists("ERMapper"))
                return object.GetIdentifiers().GetCode("ERMapper");
        }
        return {};
    }

    static BString LookUp(const BSharedPtr<BCoordSys>& system) {
        BString name;
        return GetERMapperProjectionName(name, system) ? name : BString();
    }
};

TEST_F(WalkThroughTheDatabase, FindsWhatTheLookUpFinds) {
    std::set<std::string> names;
    for (const char* code :
         {"32601", "32633", "32660", "32701", "26912", "26712", "28355", "7855", "20255", "27700",
          "2154",  "3857",  "2193",  "2225",  "26946", "3310",  "5070",  "3035", "2056",  "31467",
          "28992", "3413",  "3395",  "27291", "30200", "2326",  "6933",  "4412"}) {
        const auto system = FromEpsg(code);
        EXPECT_EQ(LookUp(system), Walk(*system)) << code;
        names.insert(LookUp(system).StdStr());
    }
    // Both roads could agree on nothing.
    EXPECT_GT(names.size(), 15U);
}

TEST_F(WalkThroughTheDatabase, AgreesOnEveryNameOfItsOwn) {
    int step = 0;
    for (const auto& entry : All()) {
        if (!entry->GetIdentifiers().Exists("ERMapper") || ++step % 31 != 0) continue;
        const BSharedPtr<BCoordSys> system(
            new BCoordSys(dynamic_cast<const CProjectedCoordSys&>(*entry).GetDefinition()));
        const BString name = LookUp(system);
        EXPECT_EQ(name, Walk(*system)) << entry->GetName();
        EXPECT_FALSE(name.IsEmpty()) << entry->GetName();
    }
}

TEST(GetERMapperProjectionName, NamesProjectionsAndDatums) {
    struct Case {
        const char* code;
        const char* name;  ///< empty for none
    };
    constexpr Case kCases[] = {{"26912", "NUTM12"}, {"32612", "NUTM12"},   {"28355", "SUTM55"},
                               {"2193", "NZTM"},    {"2230", "L2CAL6F83"}, {"26946", "L2CAL6M"},
                               {"4326", "WGS84"},   {"4267", "NAD27"},     {"2056", ""},
                               {"4171", "RGF93"},   {"4167", "NZGD2000"},  {"4490", ""}};
    for (const Case& c : kCases) {
        BString name("untouched");
        const bool found = GetERMapperProjectionName(name, FromEpsg(c.code));
        EXPECT_EQ(found, *c.name != '\0') << c.code;
        EXPECT_EQ(name, BString(found ? c.name : "untouched")) << c.code;
    }
}

TEST(GetERMapperProjectionName, IsReadBackAsTheSameSystem) {
    for (const char* code : {"26912", "28355", "27700", "2230", "26946", "2193", "32733", "23031"}) {
        const auto system = FromEpsg(code);
        BString name;
        BIdentifier datum;
        ASSERT_TRUE(GetERMapperProjectionName(name, system)) << code;
        ASSERT_TRUE(system->GetDatumIdentifier("ERMapper", datum)) << code;
        const auto read = FindERMapperCoordSys(name, datum.Code, 4);
        ASSERT_TRUE(read) << code;
        EXPECT_EQ(read->ToEPSGCode(), system->ToEPSGCode());
    }
}

}  // namespace
}  // namespace MapAnchor

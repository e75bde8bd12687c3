#include "sidecar/CoordSysLookups.h"

#include <GeoCalc/CDataSource.h>
#include <GeoCalc/CProjectedCoordSys.h>
#include <Tellurion/BCoordSysRepository.h>
#include <Tellurion/BLinearUnit.h>

#include <gtest/gtest.h>

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
    time.tm_year = 80;
    time.tm_mday = 2;
    time.tm_wday = 3;
    time.tm_hour = 2;
    time.tm_min = 3;
    time.tm_sec = 55;
    std::tm beyond = time;
    beyond.tm_year = 2'000'000'000;
    const struct {
        const char* name;
        const std::tm* time;
        int limit;
        const char* text;
    } cases[] = {
        {"far_from_the_limit", &time, 255, "Wed Jan 02 02:03:55 GMT 1980\n"},
        {"only_the_zone_outgrows_the_limit", &time, 25, "Wed Jan 02 02:03:55 GMT 1980\n"},
        {"longer_without_the_zone", &time, 24, "Wed Jan 02 02:03:55 GMT "},
        {"cut_before_the_zone", &time, 3, "Wed"},
        {"no_room", &time, 0, ""},
        {"a_limit_below_zero", &time, -1, ""},
        {"no_time", nullptr, 255, "untouched"},
        {"a_year_beyond_the_text", &beyond, 255, "untouched"},
    };
    for (const auto& c : cases) {
        char out[64] = "untouched";
        EXPECT_EQ(FormatERSTimeStamp(c.time, out, c.limit), c.text != std::string("untouched")) << c.name;
        EXPECT_STREQ(out, c.text) << c.name;
    }
    EXPECT_FALSE(FormatERSTimeStamp(&time, nullptr, 255));
}

TEST(CompareNoCase, StopsAtTheFirstDifferenceTheEndOrTheCount) {
    const struct {
        const char* name;
        const char* a;
        const char* b;
        std::size_t count;
        int result;
    } cases[] = {
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
    for (const auto& c : cases)
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

constexpr struct {
    const char* name;
    const char* projection;
    const char* datum;
    int units;
    const char* epsg;  ///< empty where no EPSG system is the same
    const char* unit;
} kNames[] = {
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

TEST(FindERMapperCoordSys, UnderstandsTheNames) {
    for (const auto& c : kNames) {
        SCOPED_TRACE(c.name);
        const auto system = FindERMapperCoordSys(c.projection, c.datum, c.units);
        ASSERT_TRUE(system);
        EXPECT_EQ(system->ToEPSGCode(), BString(c.epsg)) << system->GetName();
        EXPECT_EQ(system->GetUnits()->GetName(), BString(c.unit));
    }
}

TEST(FindERMapperCoordSys, IsEmptyForNamesThatNobodyKnows) {
    const std::pair<const char*, const char*> cases[] = {
        {"", "WGS84"},       {"RAW", "RAW"},        {"XYZF83", ""},      {"83", ""},
        {"EPSG:999999", ""}, {"EPSG:", ""},         {"EPSG:5703", ""},   {"GEODETIC", ""},
        {"GEODETIC", "RAW"}, {"geodetic", "WGS84"}, {"NUTM61", "WGS84"}, {"../../etc", ""}};
    for (const auto& [projection, datum] : cases)
        EXPECT_FALSE(FindERMapperCoordSys(projection, datum, 4)) << projection << ' ' << datum;
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
    const auto compare = [&](const BSharedPtr<BCoordSys>& system, const std::string& name) {
        EXPECT_EQ(LookUp(system), Walk(*system)) << name;
        names.insert(LookUp(system).StdStr());
    };
    for (const char* code :
         {"32601", "32633", "32660", "32701", "26912", "26712", "28355", "7855", "20255", "27700",
          "2154",  "3857",  "2193",  "2225",  "26946", "3310",  "5070",  "3035", "2056",  "31467",
          "28992", "3413",  "3395",  "27291", "30200", "2326",  "6933",  "4412"})
        compare(FromEpsg(code), code);
    // Both roads could agree on nothing.
    EXPECT_GT(names.size(), 15U);
    names.clear();
    int step = 0;
    for (const auto& entry : All())
        if (entry->GetIdentifiers().Exists("ERMapper") && ++step % 31 == 0) {
            const auto& object = dynamic_cast<const CProjectedCoordSys&>(*entry);
            compare(BSharedPtr<BCoordSys>(new BCoordSys(object.GetDefinition())), entry->GetName().StdStr());
        }
    EXPECT_GT(names.size(), 15U);
    EXPECT_EQ(names.count(""), 0U);  // each has one of its own
}

TEST(GetERMapperProjectionName, NamesProjectionsAndDatumsThatAreReadBack) {
    const struct {
        const char* code;
        const char* name;  ///< empty for none
        bool read_back;
    } cases[] = {{"26912", "NUTM12", true}, {"32612", "NUTM12", true},   {"28355", "SUTM55", true},
                 {"2193", "NZTM", true},    {"2230", "L2CAL6F83", true}, {"26946", "L2CAL6M", true},
                 {"27700", "TMOSGB", true}, {"23031", "NUTM31", true},   {"32733", "SUTM33", true},
                 {"4326", "WGS84", true},   {"4267", "NAD27", true},     {"2056", "", false},
                 {"4171", "RGF93", true},   {"4167", "NZGD2000", true},  {"4490", "", false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.code);
        const auto system = FromEpsg(c.code);
        BString name("untouched");
        EXPECT_EQ(GetERMapperProjectionName(name, system), *c.name != '\0');
        EXPECT_EQ(name, BString(*c.name ? c.name : "untouched"));
        if (!c.read_back) continue;
        BIdentifier datum;
        ASSERT_TRUE(system->GetDatumIdentifier("ERMapper", datum));
        const auto read = FindERMapperCoordSys(name, datum.Code, 4);
        ASSERT_TRUE(read);
        EXPECT_EQ(read->ToEPSGCode(), system->ToEPSGCode());
    }
}

}  // namespace
}  // namespace MapAnchor

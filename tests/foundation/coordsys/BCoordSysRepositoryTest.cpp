#include <Tellurion/BCoordSysRepository.h>

#include <Tellurion/BCoordSysException.h>

#include "TempFolder.h"

#include <cpl_conv.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace Tellurion {
namespace {

using Ptr = std::unique_ptr<BCoordSys>;

BCoordSysRepository& Repository() {
    return *BCoordSysRepository::Instance();
}

/// The system of that code, or none where that is null.
void ExpectSystem(const Ptr& system, const char* epsg) {
    ASSERT_EQ(system != nullptr, epsg != nullptr);
    if (system) {
        EXPECT_EQ(system->ToEPSGCode(), BString(epsg));
    }
}

struct PlainCase {
    const char* projection;
    const char* datum;
    const char* units;
    const char* epsg;  ///< null for names that are not known
};

constexpr PlainCase kPlain[] = {
    {"LAT-LONG", "WGS84", "METERS", "EPSG:4326"},
    {"lat/long", "North American 1927", "", "EPSG:4267"},
    {"LAT-LONG", "EUR", "METERS", "EPSG:4230"},
    {"UTM-12N", "NAD27", "METERS", "EPSG:26712"},
    {"UTM 56 S", "WGS 84", "METERS", "EPSG:32756"},
    {"NUTM12", "NAD27", "", "EPSG:26712"},
    {"L2CAL6M", "NAD83", "USFEET", "EPSG:2230"},
    {"UTM-61N", "WGS84", "METERS", nullptr},
    {"UTM-0N", "WGS84", "METERS", nullptr},
    {"UTM-12", "WGS84", "METERS", nullptr},
    {"UTM-12N", "WGS84", "CUBITS", nullptr},
    {"UTM-12N", "ATLANTIS", "METERS", nullptr},
    {"NUTM12", "ATLANTIS", "", nullptr},
    {"NUTM12", "NAD27", "CUBITS", nullptr},
    {"LAT-LONG", "EPSG:4326", "METERS", nullptr},
    {"LAT-LONG", "", "METERS", nullptr},
    {"NONE", "WGS84", "METERS", nullptr},
    {"", "", "", nullptr},
};

TEST(PlainNames, StandForSystems) {
    for (const PlainCase& c : kPlain) {
        SCOPED_TRACE(std::string(c.projection) + ' ' + c.datum + ' ' + c.units);
        ExpectSystem(Ptr(Repository().ReadCoordSysFromPlainTextStrings(c.projection, c.datum, c.units)),
                     c.epsg);
    }
}

TEST(PlainNames, KeepGridsInFeetOnTheGround) {
    const Ptr metres(Repository().ReadCoordSysFromPlainTextStrings("UTM-12N", "NAD27", "METERS"));
    const Ptr feet(Repository().ReadCoordSysFromPlainTextStrings("UTM-12N", "NAD27", "FEET"));
    ASSERT_TRUE(metres && feet);
    const BPoint point{-110.5, 43.0, 0.0};
    EXPECT_NEAR(feet->ConvertFromGeodetic(point).x * 0.3048, metres->ConvertFromGeodetic(point).x, 1e-6);
}

struct ClauseCase {
    const char* name;
    const char* text;  ///< of the whole file
    const char* epsg;  ///< null for a clause that cannot be understood
};

constexpr ClauseCase kClauses[] = {
    {"one_line", "CoordSys Earth Projection 8, 104, \"m\", 15, 0, 0.9996, 500000, 0\n", "EPSG:32633"},
    {"no_final_line_end", "  CoordSys Earth Projection 1, 104", "EPSG:4326"},
    {"behind_other_lines",
     "!table\n!version 300\nDefinition Table\n  Type \"RASTER\"\n"
     "  CoordSys Earth Projection 1, 74\n  Units \"degree\"\n",
     "EPSG:4269"},
    {"over_several_lines", "CoordSys Earth\n Projection 8, 104,\n \"m\", 15, 0,\n0.9996, 500000, 0\n",
     "EPSG:32633"},
    {"crlf", "CoordSys Earth Projection 1, 104\r\n", "EPSG:4326"},
    {"bounds_behind_it", "CoordSys Earth Projection 1, 104 Bounds (-180, -90) (180, 90)\n", "EPSG:4326"},
    {"any_case", "COORDSYS EARTH PROJECTION 1, 104\n", "EPSG:4326"},
    {"projection_that_is_none", "CoordSys Earth Projection 999, 104\n", nullptr},
    {"too_few_numbers", "CoordSys Earth Projection 8, 104, \"m\", 15\n", nullptr},
    {"neither_earth_nor_not", "CoordSys Layout Units \"in\"\n", nullptr},
};

TEST(MapInfoClause, IsReadFromAFile) {
    const TempFolder folder;
    for (const ClauseCase& c : kClauses) {
        SCOPED_TRACE(c.name);
        const BString path(folder.Write("map.tab", c.text));
        if (c.epsg)
            ExpectSystem(Ptr(Repository().ReadCoordSysFromFile(path)), c.epsg);
        else
            EXPECT_THROW(Repository().ReadCoordSysFromFile(path), BCoordSysException);
    }
    folder.Write("map.tab", "!table\nno clause\n");
    EXPECT_FALSE(Ptr(Repository().ReadCoordSysFromFile(BString(folder / "map.tab"))));
    EXPECT_FALSE(Ptr(Repository().ReadCoordSysFromFile(BString(folder / "none.tab"))));
}

TEST(MapInfoClause, IsReadFromAText) {
    for (const char* text :
         {"CoordSys Earth Projection 1, 104", "Earth Projection 1, 104", " coordsys earth projection 1,104"})
        ExpectSystem(Ptr(Repository().ReadCoordSysFromMIFString(text)), "EPSG:4326");
    for (const char* text : {"", "CoordSys", "Earth Projection", "EPSG:4326"})
        EXPECT_THROW(Repository().ReadCoordSysFromMIFString(text), BCoordSysException) << text;
}

TEST(MapInfoClause, SaysTheSystemOrNothing) {
    for (const char* code : {"4326", "32633", "26712", "27700", "2193", "3395", "2407"}) {
        const Ptr system(BCoordSys::FromEPSGCode(code));
        const BString clause = Repository().WriteCoordSysToMIFString(*system);
        ASSERT_FALSE(clause.IsEmpty()) << code;
        EXPECT_TRUE(clause.StartsWith("CoordSys Earth")) << clause;
        const Ptr back(Repository().ReadCoordSysFromMIFString(clause));
        EXPECT_EQ(back->GetKind(), system->GetKind()) << code;
    }
    // Krovak has no number there.
    EXPECT_TRUE(Repository().WriteCoordSysToMIFString(*Ptr(BCoordSys::FromEPSGCode("5514"))).IsEmpty());
}

TEST(GetCoordSys, AnswersForEachIssuer) {
    struct Case {
        const char* issuer;
        const char* code;
        const char* epsg;  ///< null for none
    };
    constexpr Case kCases[] = {
        {"EPSG", "32633", "EPSG:32633"},      {"EPSG", "NUTM33", nullptr},
        {"ERMapper", "NUTM33", "EPSG:32633"}, {"ERMapper", "NAD27", "EPSG:4267"},
        {"ERMapper", "nutm33", nullptr},      {"ERMapper", "EPSG:27700", "EPSG:27700"},
        {"GC", "EPSG:27700", "EPSG:27700"},   {"GC", "NOWHERE", nullptr},
        {"ESRI", "102100", nullptr},          {"", "", nullptr},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(std::string(c.issuer) + ' ' + c.code);
        ExpectSystem(Ptr(Repository().GetCoordSys({c.issuer, c.code})), c.epsg);
    }
}

TEST(GetCoordSys, LooksIntoTheDictionaryThatGdalMayHave) {
    const TempFolder folder;
    const Ptr known(BCoordSys::FromEPSGCode("32633"));
    std::string wkt = known->ToWKT().StdStr();
    wkt.resize(wkt.rfind(",AUTHORITY["));
    folder.Write("ecw_cs.wkt", "HOUSEGRID," + wkt + "]\nNUTM33,LOCAL_CS[\"other\"]\nBROKEN,PROJCS[\n");
    CPLPushFinderLocation((folder / "").c_str());
    const Ptr found(Repository().GetCoordSys({"ERMapper", "HOUSEGRID"}));
    const Ptr own(Repository().GetCoordSys({"ERMapper", "NUTM33"}));
    const Ptr broken(Repository().GetCoordSys({"ERMapper", "BROKEN"}));
    CPLPopFinderLocation();
    ExpectSystem(found, "EPSG:32633");
    ExpectSystem(own, "EPSG:32633");
    ExpectSystem(broken, nullptr);
}

TEST(WriteCoordSysToERMapperNames, GivesBothOrNeither) {
    for (const auto& [code, names] :
         {std::pair{"2056", "xy"}, {"26712", "NUTM12NAD27"}, {"4283", "GEODETICGDA94"}}) {
        BString projection("x");
        BString datum("y");
        const Ptr system(BCoordSys::FromEPSGCode(code));
        EXPECT_EQ(Repository().WriteCoordSysToERMapperNames(*system, projection, datum),
                  std::string(names) != "xy");
        EXPECT_EQ(projection + datum, BString(names));
    }
}

}  // namespace
}  // namespace Tellurion

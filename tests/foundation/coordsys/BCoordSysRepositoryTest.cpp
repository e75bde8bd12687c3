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

/// The EPSG number; empty where there is no system.
std::string CodeOf(BCoordSys* system) {
    const Ptr owned(system);
    return owned ? owned->ToEPSGCode().StdStr().substr(5) : "";
}

TEST(PlainNames, NameSystems) {
    const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
        {"LAT-LONG", "WGS84", "METERS", "4326"},   {"lat/long", "North American 1927", "", "4267"},
        {"LAT-LONG", "EUR", "METERS", "4230"},     {"NUTM12", "NAD27", "", "26712"},
        {"UTM-12N", "NAD27", "METERS", "26712"},   {"UTM-61N", "WGS84", "METERS", ""},
        {"UTM 56 S", "WGS 84", "METERS", "32756"}, {"UTM-0N", "WGS84", "METERS", ""},
        {"L2CAL6M", "NAD83", "USFEET", "2230"},    {"UTM-12", "WGS84", "METERS", ""},
        {"UTM-12N", "WGS84", "CUBITS", ""},        {"NUTM12", "ATLANTIS", "", ""},
        {"UTM-12N", "ATLANTIS", "METERS", ""},     {"NUTM12", "NAD27", "CUBITS", ""},
        {"LAT-LONG", "EPSG:4326", "METERS", ""},   {"", "", "", ""}};
    for (const auto& [projection, datum, units, epsg] : cases)
        EXPECT_EQ(CodeOf(Repository().ReadCoordSysFromPlainTextStrings(projection, datum, units)), epsg)
            << projection << ' ' << datum << ' ' << units;
    // A grid in feet stays where it is on the ground.
    const Ptr metres(Repository().ReadCoordSysFromPlainTextStrings("UTM-12N", "NAD27", "METERS"));
    const Ptr feet(Repository().ReadCoordSysFromPlainTextStrings("UTM-12N", "NAD27", "FEET"));
    const BPoint point{-110.5, 43.0, 0.0};
    EXPECT_NEAR(feet->ConvertFromGeodetic(point).x * 0.3048, metres->ConvertFromGeodetic(point).x, 1e-6);
}

TEST(MapInfoClause, IsReadFromAFile) {
    const std::pair<const char*, const char*> cases[] = {
        {"CoordSys Earth Projection 8, 104, \"m\", 15, 0, 0.9996, 500000, 0\n", "32633"},
        {"  CoordSys Earth Projection 1, 104", "4326"},
        {"!table\n  Type \"CoordSys\"\n  CoordSys Earth Projection 1, 74\n  Units \"degree\"\n", "4269"},
        {"CoordSys Earth\n Projection 8, 104,\n \"m\", 15, 0,\n0.9996, 500000, 0\n", "32633"},
        {"COORDSYS EARTH PROJECTION 1, 104 Bounds (-180, -90) (180, 90)\r\n", "4326"},
        {"CoordSys Earth Projection 999, 104\n", "thrown"},
        {"CoordSys Earth Projection 1, 998\n", "thrown"},
        {"CoordSys Earth Projection 8, 104, \"m\", 15\n", "thrown"},
        {"CoordSys Layout Units \"in\"\n", "thrown"},
        {"!table\nno clause\n", ""}};
    const TempFolder folder;
    for (const auto& [text, epsg] : cases) {
        std::string code = "thrown";
        try {
            code = CodeOf(Repository().ReadCoordSysFromFile(BString(folder.Write("map.tab", text))));
        } catch (const BCoordSysException&) {
        }
        EXPECT_EQ(code, epsg) << text;
    }
    EXPECT_FALSE(Ptr(Repository().ReadCoordSysFromFile(BString(folder / "none.tab"))));
}

TEST(MapInfoClause, IsReadFromATextAndWritten) {
    for (const char* text :
         {"CoordSys Earth Projection 1, 104", "Earth Projection 1, 104", " coordsys earth projection 1,104"})
        EXPECT_EQ(CodeOf(Repository().ReadCoordSysFromMIFString(text)), "4326");
    for (const char* text : {"", "CoordSys", "Earth Projection", "4326"})
        EXPECT_THROW(Repository().ReadCoordSysFromMIFString(text), BCoordSysException) << text;
    for (const char* code : {"4326", "32633", "26712", "27700", "2193", "3395", "2407"}) {
        const Ptr system(BCoordSys::FromEPSGCode(code));
        const BString clause = Repository().WriteCoordSysToMIFString(*system);
        ASSERT_TRUE(clause.StartsWith("CoordSys Earth")) << code << clause;
        EXPECT_EQ(Ptr(Repository().ReadCoordSysFromMIFString(clause))->GetKind(), system->GetKind()) << code;
    }
    // Krovak has no number there.
    EXPECT_TRUE(Repository().WriteCoordSysToMIFString(*Ptr(BCoordSys::FromEPSGCode("5514"))).IsEmpty());
}

TEST(GetCoordSys, LooksUpTheCodeOfEachIssuer) {
    // Names of a dictionary that GDAL may have count where the own tables have none.
    const TempFolder folder;
    std::string wkt = Ptr(BCoordSys::FromEPSGCode("32633"))->ToWKT().StdStr();
    wkt.resize(wkt.rfind(",AUTHORITY["));
    folder.Write("ecw_cs.wkt", "HOUSEGRID," + wkt + "]\nNUTM33,LOCAL_CS[\"other\"]\nBROKEN,PROJCS[\n");
    CPLPushFinderLocation((folder / "").c_str());
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"EPSG", "32633", "32633"}, {"ERMapper", "NAD27", "4267"}, {"ERMapper", "NUTM33", "32633"},
        {"EPSG", "NUTM33", ""},     {"ERMapper", "nutm33", ""},    {"ERMapper", "EPSG:27700", "27700"},
        {"GC", "NOWHERE", ""},      {"ERMapper", "BROKEN", ""},    {"ERMapper", "HOUSEGRID", "32633"},
        {"ESRI", "102100", ""},     {"GC", "EPSG:27700", "27700"}};
    for (const auto& [issuer, code, epsg] : cases)
        EXPECT_EQ(CodeOf(Repository().GetCoordSys({issuer, code})), epsg) << issuer << ' ' << code;
    CPLPopFinderLocation();
}

TEST(WriteCoordSysToERMapperNames, WritesBothOrNeither) {
    for (const auto& [code, names] :
         {std::pair{"2056", "xy"}, {"26712", "NUTM12NAD27"}, {"4283", "GEODETICGDA94"}}) {
        BString projection("x"), datum("y");
        const Ptr system(BCoordSys::FromEPSGCode(code));
        EXPECT_EQ(Repository().WriteCoordSysToERMapperNames(*system, projection, datum),
                  std::string(names) != "xy");
        EXPECT_EQ(projection + datum, BString(names));
    }
}

}  // namespace
}  // namespace Tellurion

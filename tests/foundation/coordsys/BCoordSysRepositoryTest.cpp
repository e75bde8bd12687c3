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
        {"CoordSys Earth Projection 8, 74, \"m\", -177, 0, 1, 0, 0 Affine Units \"m\", .5, -.8, 0, .8, .5, "
         "0\n",
         "thrown"},
        {"CoordSys Earth Projection 1, 999, 99, 0, 0, 0\n", "thrown"},
        {"CoordSys Earth Projection 1, -1\n", "thrown"},
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
    const std::string nad83 =
        "0, -1.0037, 1.91111, 0.54397, -0.0267814, 0.0004203, -0.0109321, -0.000389, 0, ";
    for (const char* text :
         {"CoordSys Earth Projection 1, 104", "Earth Projection 1, 104", " coordsys earth projection 1,104"})
        EXPECT_EQ(CodeOf(Repository().ReadCoordSysFromMIFString(text)), "4326");
    for (const char* text : {"", "CoordSys", "Earth Projection", "4326"})
        EXPECT_THROW(Repository().ReadCoordSysFromMIFString(text), BCoordSysException) << text;
    // "" for systems that no clause states.
    const std::pair<const char*, std::string> cases[] = {
        {"4326", "1, 104"},
        {"2391", "24, 1016, \"m\", 21, 0, 1, 1500000, 0"},
        {"2193", "8, 117, \"m\", 173, 0, 0.9996, 1600000, 10000000"},
        {"3857", "10, 157, \"m\", 0"},
        {"2056", "25, 158, \"m\", 7.43958333333333, 46.9524055555556, 2600000, 1200000"},
        {"28992", "31, 109, \"m\", 5.38763888888889, 52.1561605555556, 0.9999079, 155000, 463000"},
        {"2277",
         "3, 74, \"survey ft\", -100.333333333333, 29.6666666666667, 31.8833333333333, "
         "30.1166666666667, 2296583.333, 9842500"},
        {"26931", "7, 74, \"m\", -133.666666666667, 57, 323.130102361111, 0.9999, 5000000, -5000000"},
        // Its datum is turned too far for a clause.
        {"4809", ""},
        // By ellipsoid and shift.
        {"6339", "8, 9999, " + nad83 + "\"m\", -123, 0, 0.9996, 500000, 0"},
        {"22234", "8, 999, 15, -136, -108, -292, \"m\", 21, 0, 0.9996, 500000, 10000000"},
        // With parallels or a scale that follow from the others.
        {"26191",
         "3, 999, 30, 31, 146, 47, \"m\", -5.4, 33.3, 31.7239256472708, 34.866457655941, 500000, "
         "300000"},
        {"3031", "20, 104, \"m\", 0, -90, 0.972769012891797, 0, 0"},
        // By an affine transform: a false origin, a scale above 1, westings and southings.
        {"3035", "29, 115, \"m\", 10, 52, 90 Affine Units \"m\", 1, 0, 4321000, 0, 1, 3210000"},
        {"6799",
         "3, 9999, " + nad83 +
             "\"ft\", -119.75, 43.6666666666667, 43.6666666666667, "
             "43.6666666666667, 0, 0 Affine Units \"ft\", 1.0002, 0, 393700.7874, 0, 1.0002, 196850.3937"},
        {"2048", "8, 150, \"m\", 19, 0, 1, 0, 0 Affine Units \"m\", -1, 0, 0, 0, -1, 0"},
        {"5514", ""},
        {"4807", ""},
        {"2314", ""},
        {"4120", ""}};
    for (const auto& [code, clause] : cases) {
        const BString written = Repository().WriteCoordSysToMIFString(*Ptr(BCoordSys::FromEPSGCode(code)));
        EXPECT_EQ(written.StdStr(), clause.empty() ? "" : "CoordSys Earth Projection " + clause) << code;
        EXPECT_EQ(clause.empty() ? code : CodeOf(Repository().ReadCoordSysFromMIFString(written)), code);
    }
}

TEST(MapInfoClause, KeepsAShiftThatNoNumberHas) {
    const char* const clause =
        "CoordSys Earth Projection 8, 9999, 10, 600, 70, 430, -0.5, 0.25, 2, 6, 0, \"m\", 9, 0, "
        "1, 3500000, 0";
    const Ptr system(Repository().ReadCoordSysFromMIFString(clause));
    EXPECT_EQ(Repository().WriteCoordSysToMIFString(*system), BString(clause));
    EXPECT_NE(system->ToWKT().StdStr().find("TOWGS84[600,70,430,0.5,-0.25,-2,"), std::string::npos);
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

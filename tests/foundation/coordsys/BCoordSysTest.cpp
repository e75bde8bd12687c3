#include <Tellurion/BCoordSys.h>

#include <Tellurion/BCoordSysException.h>
#include <Tellurion/BLinearUnit.h>

#include "TempFolder.h"

#include <gtest/gtest.h>
#include <ogr_spatialref.h>

#include <cmath>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace Tellurion {
namespace {

using Ptr = std::unique_ptr<BCoordSys>;

Ptr FromEpsg(const char* code) {
    return Ptr(BCoordSys::FromEPSGCode(code));
}
Ptr FromWkt(const std::string& text) {
    return Ptr(BCoordSys::FromWKT(BString(text)));
}

const std::string kGeographic =
    "PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\",0.0174532925199433]],PROJECTION[\"Transverse_Mercator\"],"
    "PARAMETER[\"False_Northing\",0.0],PARAMETER[\"Latitude_Of_Origin\",0.0],PARAMETER[\"Central_Meridian\",";
const std::string kEsriUtm =
    "PROJCS[\"NAD_1983_UTM_Zone_12N\",GEOGCS[\"GCS_North_American_1983\",DATUM[\"D_North_American_1983\","
    "SPHEROID[\"GRS_1980\",6378137.0,298.257222101]]," +
    kGeographic +
    "-111.0],PARAMETER[\"False_Easting\",500000.0],PARAMETER[\"Scale_Factor\",0.9996],UNIT[\"Meter\",1.0]]";
const std::string kEsriZone50 =
    "PROJCS[\"Pulkovo_1942_3_Degree_GK_Zone_50\",GEOGCS[\"GCS_Pulkovo_1942\",DATUM[\"D_Pulkovo_1942\","
    "SPHEROID[\"Krasovsky_1940\",6378245.0,298.3]]," +
    kGeographic +
    "150.0],PARAMETER[\"False_Easting\",50500000.0],PARAMETER[\"Scale_Factor\",1.0],UNIT[\"Meter\",1.0]]";
constexpr const char* kWkt2 =
    "GEOGCRS[\"WGS 84\",DATUM[\"World Geodetic System 1984\",ELLIPSOID[\"WGS 84\",6378137,298.257223563]],"
    "CS[ellipsoidal,2],AXIS[\"latitude\",north],AXIS[\"longitude\",east],ANGLEUNIT[\"degree\","
    "0.0174532925199433]]";
constexpr const char* kShifted =
    "GEOGCS[\"OSGB 1936\",DATUM[\"OSGB_1936\",SPHEROID[\"Airy 1830\",6377563.396,299.3249646],"
    "TOWGS84[446.448,-125.157,542.06,0.15,0.247,0.842,-20.489]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\","
    "0.0174532925199433]]";

TEST(BCoordSys, ReadsWellKnownTexts) {
    const std::tuple<std::string, int, const char*, const char*> cases[] = {
        {kEsriUtm, 3, "EPSG:26912", "metre"},
        {kEsriZone50, 3, "EPSG:2567", "metre"},  // the zone's number is part of the false easting
        {kWkt2, 1, "EPSG:4326", "degree"},
        {kShifted, 1, "EPSG:4277", "degree"},
        {"LOCAL_CS[\"site\",UNIT[\"metre\",1],AXIS[\"X\",EAST],AXIS[\"Y\",NORTH]]", 0, "", "metre"},
        {"LOCAL_CS[]", 0, "", "metre"},
        {"LOCAL_CS[\"site ]] (\",UNIT[\"metre\",1]]", 0, "", "metre"},
        {"local_cs (\"site\",UNIT(\"metre\",1))", 0, "", "metre"}};
    for (const auto& [text, kind, epsg, unit] : cases) {
        const Ptr system = FromWkt("\xEF\xBB\xBF\r\n  " + text + " \r\n");
        ASSERT_TRUE(system) << text;
        EXPECT_EQ(system->GetKind(), kind) << text;
        EXPECT_EQ(system->IsValid(), kind != 0) << text;
        EXPECT_EQ(system->ToEPSGCode(), BString(epsg)) << text;
        EXPECT_EQ(system->GetUnits()->GetName(), BString(unit)) << text;
    }
}

TEST(BCoordSys, RejectsOtherTexts) {
    for (const std::string& text :
         {std::string(), std::string(" \n"), std::string("PROJCS["), std::string("GEOGCS[\"x\"]"),
          std::string("ELLIPSOID[\"WGS 84\",6378137,298.257223563]"), std::string("\xFF\xFE\x00", 3),
          std::string(50000, '['), kEsriUtm.substr(0, 200), std::string(200000, 'x'),
          std::string("EPSG:4326")})
        EXPECT_FALSE(FromWkt(text)) << text.substr(0, 40);
    for (const char* code : {"", "0", "-4326", "4326.0", "EPSG:", "EPSG:x", "999999999999", "5703", "9001"})
        EXPECT_FALSE(FromEpsg(code)) << code;
}

TEST(BCoordSys, UnderstandsWhatPeopleWrite) {
    const TempFolder folder;
    folder.Write("map.prj", FromEpsg("26912")->ToPRJ().StdStr());
    struct Case {
        std::string text;
        const char* understood_as;
        const char* epsg;  ///< empty without one
    };
    const Case kCases[] = {
        {"EPSG:25832", "EPSG code", "EPSG:25832"},
        {" epsg::25832\n", "EPSG code", "EPSG:25832"},
        {"EPSG:27700+5701", "EPSG code", "EPSG:7405"},
        {"ESRI:102100", "code", "EPSG:3857"},
        {"urn:ogc:def:crs:EPSG::4979", "identifier", "EPSG:4979"},
        {"http://www.opengis.net/def/crs/EPSG/0/27700", "identifier", "EPSG:27700"},
        {"ETRS89 / UTM zone 32N", "names", "EPSG:25832"},
        {"NUTM12 NAD27", "names", "EPSG:26712"},
        {"+proj=utm +zone=32 +datum=WGS84", "PROJ string", "EPSG:32632"},
        {"+init=epsg:4326 +over", "PROJ string", "EPSG:4326"},
        {FromEpsg("7405")->ToPROJJSON().StdStr(), "PROJJSON", "EPSG:7405"},
        {FromEpsg("8857")->ToWKT().StdStr(), "well-known text", "EPSG:8857"},
        {"CoordSys Earth Projection 8, 104, \"m\", -111, 0, 0.9996, 500000, 0", "MapInfo clause",
         "EPSG:32612"},
        {folder / "map.prj", "PRJ file", "EPSG:26912"},
    };
    for (const Case& c : kCases) {
        BString understood_as;
        const Ptr system(BCoordSys::FromText(BString(c.text), &understood_as));
        ASSERT_TRUE(system) << c.text;
        EXPECT_EQ(understood_as, BString(c.understood_as)) << c.text;
        EXPECT_EQ(system->ToEPSGCode(), BString(c.epsg)) << c.text;
    }
    for (const char* text : {"", "EPSG:1", "EPSG:5703", "+proj=nowhere", "+init=other.txt:1", "{}", "urn:x",
                             "UTM zone", "none.prj", "http://example.com/crs"})
        EXPECT_FALSE(Ptr(BCoordSys::FromText(BString(text)))) << text;
}

/// Each is one that PROJ reads differently from version to version, or by its name alone.
TEST(BCoordSys, KnowsTheSpellingsOfWebMercator) {
    const std::string ours = FromEpsg("3857")->ToPRJ().StdStr();
    const auto with = [&](std::initializer_list<std::pair<std::string, std::string>> changes) {
        std::string text = ours;
        for (const auto& [from, to] : changes) {
            const std::size_t at = text.find(from);
            if (at == std::string::npos) ADD_FAILURE() << from;
            text.replace(at, from.size(), to);
        }
        return text;
    };
    const std::string type = "PARAMETER[\"Auxiliary_Sphere_Type\",0],";
    const std::string method = "\"Mercator_Auxiliary_Sphere\"";
    for (const std::string& text :
         {ours, with({{"WGS_84_Pseudo_Mercator", "no name known"}}),
          with({{type, ""}, {method, "\"Mercator\""}, {"WGS_84_Pseudo_Mercator", "WGS_1984_Web_Mercator"}}),
          with({{type, ""},
                {method, "\"Mercator\""},
                {"SPHEROID[\"WGS_1984\"", "SPHEROID[\"WGS_1984_Major_Auxiliary_Sphere\""}})}) {
        const Ptr system = FromWkt(text);
        ASSERT_TRUE(system) << text;
        EXPECT_EQ(system->ToEPSGCode(), BString("EPSG:3857")) << text;
        EXPECT_NEAR(system->ConvertFromGeodetic({10, 45, 0}).y, 5621521.49, 0.01) << text;
    }
    // Another origin, and a plain Mercator on the ellipsoid.
    for (const std::string& text :
         {with({{"\"Central_Meridian\",0", "\"Central_Meridian\",9"}}),
          with({{type, ""}, {method, "\"Mercator\""}, {"WGS_84_Pseudo_Mercator", "x"}})})
        EXPECT_NE(FromWkt(text)->ToEPSGCode(), BString("EPSG:3857")) << text;
}

/// PROJ takes these methods for those on the ellipsoid up to version 9.5, and well-known text 1
/// always does. The positions follow from the formulas on the sphere of equal area.
TEST(BCoordSys, ProjectsOnTheSphereOfEqualAreaWhateverProj) {
    struct Case {
        const char* code;
        BPoint place;
        BPoint grid;
    };
    const Case kCases[] = {{"9311", {-80, 30, 0}, {1921494.528, -1439433.375, 0}},
                           {"3973", {10, 70, 0}, {384218.746, -2179012.789, 0}},
                           {"3975", {10, 45, 0}, {962977.398, 5201905.580, 0}}};
    const auto without_sphere = [](std::string wkt1) {
        const std::size_t extension = wkt1.find(",EXTENSION[");
        EXPECT_NE(extension, wkt1.npos) << wkt1;
        return wkt1.erase(extension, wkt1.find(']', extension) + 1 - extension);
    };
    for (const Case& c : kCases) {
        const Ptr system = FromEpsg(c.code);
        const Ptr base(system->GetBaseCoordSys());
        const std::string wkt1 = system->ToWKT().StdStr();
        EXPECT_EQ(system->ToPRJ(), BString()) << "has no word for the sphere";
        for (const std::string& text :
             {wkt1, without_sphere(wkt1), system->ToWKT2().StdStr(), system->ToPROJJSON().StdStr()}) {
            const Ptr back(BCoordSys::FromText(BString(text)));
            ASSERT_TRUE(back) << text;
            EXPECT_EQ(back->ToEPSGCode(), BString("EPSG:") + c.code) << text;
            for (const BPoint& grid : {back->ConvertFromGeodetic(c.place), base->ConvertTo(*back, c.place)})
                EXPECT_LT(std::hypot(grid.x - c.grid.x, grid.y - c.grid.y), 2e-3) << text;
            for (const BPoint& place : {back->ConvertToGeodetic(c.grid), back->ConvertTo(*base, c.grid)})
                EXPECT_LT(std::hypot(place.x - c.place.x, place.y - c.place.y), 5e-8) << text;
        }
    }
    // Under the same number with another origin, the numbers of the text count.
    std::string other = without_sphere(FromEpsg("9311")->ToWKT().StdStr());
    other.replace(other.find("center\",45"), 10, "center\",46");
    EXPECT_NEAR(FromWkt(other)->ConvertFromGeodetic({-100, 46, 0}).y, 0.0, 1e-3);
}

TEST(BCoordSys, ComparesItselfWithOthers) {
    struct Case {
        const char* a;
        const char* b;
        bool same;
        double metres;  ///< the distance at most; it is at least nine tenths of that
    };
    const Case kCases[] = {
        {"EPSG:32632", "+proj=utm +zone=32 +datum=WGS84", true, 1e-6},
        {"EPSG:25832", "EPSG:32632", false, 1e-3},
        {"EPSG:4979", "EPSG:4326", false, 1e-6},
        {"EPSG:7405", "EPSG:27700", false, 1e-6},
        {"+proj=utm +zone=32 +ellps=bessel +towgs84=600,0,0", "+proj=utm +zone=32 +ellps=bessel", false, 620},
        // The base of the second counts in grads.
        {"+proj=lcc +lat_1=46.8 +lat_0=46.8 +lon_0=0 +k_0=0.99987742 +x_0=601000 +y_0=2200000 +a=6378249.2 "
         "+b=6356515 +pm=paris",
         "EPSG:27572", false, 1002},
    };
    for (const Case& c : kCases) {
        const Ptr a(BCoordSys::FromText(BString(c.a)));
        const Ptr b(BCoordSys::FromText(BString(c.b)));
        EXPECT_EQ(a->IsSame(*b), c.same) << c.a << c.b;
        EXPECT_TRUE(a->IsSame(*b, c.metres)) << c.a << c.b << a->DistanceTo(*b);
        EXPECT_EQ(a->IsSame(*b, c.metres * 0.9), c.metres < 1) << a->DistanceTo(*b);
    }
    const BPoint moved = FromEpsg("32632")->ConvertTo(*FromEpsg("4326"), {500000, 0, 5});
    EXPECT_NEAR(moved.x, 9.0, 1e-9);
    EXPECT_EQ(moved.z, 5.0);
    // From the datums of these texts PROJ finds no way, or one that is off by the meridian.
    for (const char* code : {"4807", "4901"}) {
        const Ptr paris = FromWkt(FromEpsg(code)->ToPRJ().StdStr());
        const BPoint place = paris->ConvertTo(*FromEpsg("4326"), {0, 52, 0});
        EXPECT_NEAR(place.x, 2.337, 1e-3) << code;
        EXPECT_NEAR(place.y, 46.8, 1e-3) << code;
    }
    EXPECT_THROW(FromEpsg("32632")->ConvertTo(*FromWkt("LOCAL_CS[]"), {0, 0, 0}), BCoordSysException);
}

TEST(BCoordSys, KeepsHeightsAndEpochInItsWholeText) {
    for (const char* code : {"7405", "4979", "8857", "5482"}) {
        const std::string text =
            "COORDINATEMETADATA[" + FromEpsg(code)->ToWholeWKT().StdStr() + ",EPOCH[2021.25]]";
        const Ptr back = FromWkt(text);
        ASSERT_TRUE(back) << text;
        EXPECT_EQ(back->ToEPSGCode().StdStr(), std::string("EPSG:") + code);
        EXPECT_EQ(back->GetCoordinateEpoch(), 2021.25);
        EXPECT_EQ(FromWkt(back->ToWholeWKT().StdStr())->GetCoordinateEpoch(), 2021.25);
    }
    const Ptr vertical(FromEpsg("7405")->GetVerticalCoordSys());
    EXPECT_EQ(vertical->ToEPSGCode(), BString("EPSG:5701"));
}

TEST(BCoordSys, WritesTextsThatGdalReadsAlike) {
    for (const char* code :
         {"4326", "32633", "27700", "2193", "26912", "2230", "3035", "31467", "4807", "3410"}) {
        const Ptr system = FromEpsg(code);
        OGRSpatialReference theirs;
        ASSERT_EQ(theirs.importFromWkt(system->ToWKT().Utf8()), OGRERR_NONE) << code;
        EXPECT_STREQ(theirs.GetAuthorityCode(nullptr), code);
        const Ptr back = FromWkt(system->ToPRJ().StdStr());
        ASSERT_TRUE(back) << code;
        EXPECT_EQ(back->GetKind(), system->GetKind()) << code;
        EXPECT_LT(back->DistanceTo(*system), 0.01) << code;
    }
}

TEST(BCoordSys, NamesWebMercatorAsHostsExpectIt) {
    std::string prj = FromEpsg("EPSG:3857")->ToPRJ().StdStr();
    EXPECT_TRUE(
        prj.starts_with("PROJCS[\"WGS_84_Pseudo_Mercator\",GEOGCS[\"GCS_WGS_1984\",DATUM["
                        "\"D_WGS_1984\",SPHEROID[\"WGS_1984\""))
        << prj;
    EXPECT_NE(prj.find("PARAMETER[\"Auxiliary_Sphere_Type\",0],"), std::string::npos) << prj;
    EXPECT_NE(prj.find("PROJECTION[\"Mercator_Auxiliary_Sphere\"]"), std::string::npos) << prj;
    EXPECT_EQ(FromWkt(prj)->ToEPSGCode(), BString("EPSG:3857"));
    char* lines[] = {prj.data(), nullptr};
    OGRSpatialReference theirs, known;
    ASSERT_EQ(theirs.importFromESRI(lines), OGRERR_NONE);
    known.importFromEPSG(3857);
    const char* const ignore_names[] = {"IGNORE_DATA_AXIS_TO_SRS_AXIS_MAPPING=YES", "CRITERION=EQUIVALENT",
                                        nullptr};
    EXPECT_TRUE(theirs.IsSame(&known, ignore_names));
    const std::string other = FromEpsg("3395")->ToPRJ().StdStr();
    EXPECT_EQ(other.find("Pseudo"), std::string::npos);
    EXPECT_EQ(FromWkt(other)->ToEPSGCode(), BString("EPSG:3395"));
}

TEST(BCoordSys, IdentifiesWhatDoesNotStateANumber) {
    // Two systems that are the same but for their names, the older one deprecated.
    std::string wkt = FromEpsg("2091")->ToWKT().StdStr();
    for (std::size_t at; (at = wkt.find(",AUTHORITY[")) != std::string::npos;)
        wkt.erase(at, wkt.find(']', at) + 1 - at);
    EXPECT_EQ(FromWkt(wkt)->ToEPSGCode(), BString("EPSG:2091"));
    wkt.replace(8, wkt.find('"', 8) - 8, "A name of ours");
    EXPECT_EQ(FromWkt(wkt)->ToEPSGCode(), BString("EPSG:2395"));
    // The same origin in exact thirds of a foot, and EPSG's own name in ESRI's flavour.
    std::string plane = FromEpsg("2230")->ToPRJ().StdStr();
    for (const auto& [from, to] : {std::pair<std::string, std::string>("6561666.667", "6561666.666666666"),
                                   {"NAD_1983_StatePlane_California_VI_FIPS_0406_Feet", "a site"}})
        plane.replace(plane.find(from), from.size(), to);
    EXPECT_EQ(FromWkt(plane)->ToEPSGCode(), BString("EPSG:2230"));
    EXPECT_EQ(FromWkt(FromEpsg("9748")->ToPRJ().StdStr())->ToEPSGCode(), BString("EPSG:9748"));
    std::string feet = kEsriUtm;
    feet.replace(feet.rfind("UNIT["), std::string::npos, "UNIT[\"Foot_US\",0.3048006096012192]]");
    EXPECT_NE(FromWkt(feet)->ToEPSGCode(), BString("EPSG:26912"));
    EXPECT_EQ(FromWkt(feet)->GetUnits()->GetName(), BString("US survey foot"));
    BIdentifier datum;
    ASSERT_TRUE(FromWkt(kEsriUtm)->GetDatumIdentifier("EPSG", datum));
    EXPECT_EQ(datum.Code, BString("6269"));
}

// "-" stands for a code that there is not; the identifier is left alone then.
TEST(BCoordSys, StatesTheCodeOfEachIssuer) {
    const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
        {"32612", "EPSG", "32612", "6326"},       {"32612", "GC", "EPSG:32612", "-"},
        {"32612", "ERMapper", "NUTM12", "WGS84"}, {"26912", "ERMapper", "-", "NAD83"},
        {"28355", "ERMapper", "MGA55", "GDA94"},  {"4267", "ERMapper", "NAD27", "NAD27"},
        {"2056", "ERMapper", "-", "-"},           {"32612", "ESRI", "-", "-"},
        {"2100", "ERMapper", "HGRS87", "EGSA87"}, {"4683", "ERMapper", "PRS92", "PRS92"}};
    for (const auto& [epsg, issuer, system, datum] : cases) {
        BIdentifier out("x", "-"), of_datum("x", "-");
        EXPECT_EQ(FromEpsg(epsg)->GetIdentifier(issuer, out), *system != '-') << epsg << issuer;
        EXPECT_EQ(FromEpsg(epsg)->GetDatumIdentifier(issuer, of_datum), *datum != '-') << epsg << issuer;
        EXPECT_EQ(out.Code, BString(system)) << epsg << issuer;
        EXPECT_EQ(of_datum.Code, BString(datum)) << epsg << issuer;
    }
}

TEST(BCoordSys, PutsLongitudeAndEastingFirst) {
    // Published worked examples, and systems whose northing comes first, by code and by text.
    const std::tuple<const char*, BPoint, double, double> cases[] = {
        {"4326", {16.0, 48.0, 7.0}, 16.0, 48.0},    {"27700", {0.5, 50.5, 7.0}, 577274.99, 69740.50},
        {"32633", {15.0, 0.0, 7.0}, 500000.0, 0.0}, {"2193", {173.0, 0.0, 7.0}, 1600000.0, 10000000.0},
        {"31467", {9.0, 0.0, 7.0}, 3500000.0, 0.0}, {"32661", {0.0, 80.0, 7.0}, 2000000.0, 887048.863},
    };
    for (const auto& [code, geodetic, x, y] : cases)
        for (const bool by_text : {false, true}) {
            const Ptr system = by_text ? FromWkt(FromEpsg(code)->ToWKT().StdStr()) : FromEpsg(code);
            const BPoint projected = system->ConvertFromGeodetic(geodetic);
            EXPECT_NEAR(std::hypot(projected.x - x, projected.y - y), 0, 0.01) << code;
            const BPoint back = system->ConvertToGeodetic(projected);
            EXPECT_NEAR(std::hypot(back.x - geodetic.x, back.y - geodetic.y), 0, 1e-9) << code;
            EXPECT_EQ(back.z, 7.0) << code;
        }
    EXPECT_THROW(FromEpsg("32633")->ConvertFromGeodetic({std::nan(""), 0.0, 0.0}), BCoordSysException);
    EXPECT_THROW(FromEpsg("32633")->ConvertToGeodetic({1e300, 0.0, 0.0}), BCoordSysException);
    EXPECT_THROW(FromWkt("LOCAL_CS[]")->ConvertToGeodetic({0.0, 0.0, 0.0}), BCoordSysException);
}

TEST(BCoordSys, KnowsItsBaseAndItsHeights) {
    const Ptr compound = FromEpsg("7405");  // British National Grid and heights above ODN
    EXPECT_EQ(compound->GetKind(), BCoordSys::kKindProjected);
    EXPECT_EQ(compound->GetVerticalUnits()->GetName(), BString("metre"));
    const Ptr grid(compound->GetBaseCoordSys());
    EXPECT_EQ(grid->ToEPSGCode(), BString("EPSG:27700"));
    EXPECT_FALSE(grid->GetVerticalUnits());
    const Ptr geodetic(grid->GetBaseCoordSys());
    EXPECT_EQ(geodetic->ToEPSGCode(), BString("EPSG:4277"));
    EXPECT_FALSE(Ptr(geodetic->GetBaseCoordSys()));
}

TEST(BCoordSys, ReadsTheFileThatItWroteAndArcInfoTexts) {
    const TempFolder folder;
    ASSERT_TRUE(FromEpsg("26912")->ToFile(BString(folder / "map.prj")));
    folder.Write("old.prj", "Projection UTM\nDatum NAD83\nZone 12\nUnits METERS\nParameters\n");
    for (const char* name : {"map.prj", "old.prj"})
        EXPECT_EQ(Ptr(BCoordSys::FromFile(BString(folder / name)))->ToEPSGCode(), BString("EPSG:26912"));
    EXPECT_FALSE(Ptr(BCoordSys::FromFile(BString(folder / "none.prj"))));
    EXPECT_FALSE(FromEpsg("26912")->ToFile(BString(folder / "none/map.prj")));
}

TEST(BCoordSys, ServesManyThreadsAtOnce) {
    const Ptr shared = FromWkt(kEsriUtm);
    const BPoint expected = FromEpsg("26912")->ConvertFromGeodetic({-110.0, 45.0, 0.0});
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < 50; ++round) {
                EXPECT_NEAR(shared->ConvertFromGeodetic({-110.0, 45.0, 0.0}).x, expected.x, 1e-6);
                EXPECT_EQ(shared->ToEPSGCode(), BString("EPSG:26912"));
                EXPECT_NE(shared->GetGCCoordSys(), nullptr);
                EXPECT_EQ(FromWkt(kWkt2)->GetKind(), 1);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
}

}  // namespace
}  // namespace Tellurion

// The LGIDict importer without a file: the coordinate systems of its parameters, compared with
// PROJ's own definition of an equal system, and the numbers that it computes.

#include "import/CGeoPDFImport.h"
#include "import/CLGIDatum.h"
#include "import/LGINumbers.h"

#include <Tellurion/BCoordSys.h>

#include <gtest/gtest.h>
#include <proj.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <memory>
#include <regex>
#include <set>
#include <sstream>

namespace VellumLib {
namespace {

using Tellurion::BCoordSys;
using Tellurion::BPoint;
using Tellurion::BString;

/// The importer without a file: what it would have read is set by the test.
class ParameterImport final : public CGeoPDFImport {
public:
    explicit ParameterImport(std::map<int, std::string> parameters) { Parameters = std::move(parameters); }

    void Set(int number, const std::string& value) { Parameters[number] = value; }

    using CGeoPDFImport::CTM;
    using CGeoPDFImport::Neatline;
    using CGeoPDFImport::PageHeight;
    using CGeoPDFImport::PageWidth;
    using CGeoPDFImport::Registration;

    void ReadCTM() override {}
    void ReadRegistration() override {}
    void ReadProjection() override {}
    void ReadNeatline() override {}
    void ReadPageSize() override {}
};

/// Short names of the parameters by their numbers; "-" for one that no projection here uses.
const std::vector<std::string> kKeys = {
    "-", "-", "units", "datum", "lon", "x",   "y", "-",     "hemisphere", "-",     "-",      "true",
    "-", "-", "down",  "-",     "-",   "lat", "-", "scale", "parallel",   "first", "second", "zone"};

/// Of a text such as "datum=WGE zone=33".
std::map<int, std::string> Parameters(const std::string& text) {
    std::map<int, std::string> parameters;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        const std::size_t equals = word.find('=');
        const auto key = std::find(kKeys.begin(), kKeys.end(), word.substr(0, equals));
        parameters[static_cast<int>(key - kKeys.begin())] = word.substr(equals + 1);
    }
    return parameters;
}

struct GoldenCase {
    const char* projection;
    const char* parameters;
    double longitude;
    double latitude;
    const char* equal;  ///< a code of PROJ's database, or PROJ's own text
    const char* text;   ///< as Shortened
};

const GoldenCase kGolden[] = {
    {"GEODETIC", "datum=WGE", 12, 47, "EPSG:4326", "GEOGCS"},
    {"GEOGRAPHIC", "datum=NAR-C", -100, 40, "EPSG:4269", "GEOGCS"},
    {"MG", "datum=WGE lon=9", 12, 47, "EPSG:4326", "GEOGCS"},
    {"UT", "datum=WGE zone=33 hemisphere=N", 14, 47, "EPSG:32633",
     R"(unnamed: Transverse_Mercator, latitude_of_origin 0, central_meridian 15, scale_factor 0.9996, false_easting 500000, false_northing 0, UNIT["metre", 1, AUTHORITY["EPSG", "9001"]])"},
    {"SPCS", "datum=NAR zone=4203", -98, 30.5, "EPSG:32139",
     R"(State Plane 83: Lambert_Conformal_Conic_2SP, latitude_of_origin 29.6666666666667, central_meridian -100.333333333333, standard_parallel_1 31.8833333333333, standard_parallel_2 30.1166666666667, false_easting 700000, false_northing 3000000, UNIT["metre", 1, AUTHORITY["EPSG", "9001"]], AUTHORITY["EPSG", "32139"])"},
    {"AC", "datum=NAR lat=23 lon=-96 first=29.5 second=45.5 x=0 y=0", -100, 40, "EPSG:5070",
     R"(Albers_Conic_Equal_Area: Albers_Conic_Equal_Area, latitude_of_center 23, longitude_of_center -96, standard_parallel_1 29.5, standard_parallel_2 45.5, false_easting 0, false_northing 0, Meter 1)"},
    {"AL", "datum=WGE lat=40 lon=-100 x=1000 y=-2000", -98, 41,
     "+proj=aeqd +lat_0=40 +lon_0=-100 +x_0=1000 +y_0=-2000",
     R"(Azimuthal_Equidistant: Azimuthal_Equidistant, latitude_of_center 40, longitude_of_center -100, false_easting 1000, false_northing -2000, Meter 1)"},
    {"BF", "datum=WGE lat=45 lon=2 x=500 y=600", 3, 46, "+proj=bonne +lat_1=45 +lon_0=2 +x_0=500 +y_0=600",
     R"(Bonne: Bonne, standard_parallel_1 45, central_meridian 2, false_easting 500, false_northing 600, Meter 1)"},
    {"CS", "datum=WGE lat=31.734 lon=35.212 x=170251 y=126867", 35, 32,
     "+proj=cass +lat_0=31.734 +lon_0=35.212 +x_0=170251 +y_0=126867",
     R"(Cassini: Cassini_Soldner, latitude_of_origin 31.734, central_meridian 35.212, false_easting 170251, false_northing 126867, Meter 1)"},
    {"LI", "datum=WGE lat=0 lon=10", 12, 47, "+proj=cea +lon_0=10",
     R"(Cylindrical_Equal_Area: Cylindrical_Equal_Area, latitude_of_origin 0, central_meridian 10, Meter 1)"},
    {"EF", "datum=WGE lon=0", 12, 47, "ESRI:54012", R"(Eckert_IV: Eckert_IV, central_meridian 0, Meter 1)"},
    {"ED", "datum=WGE lon=0", 12, 47, "ESRI:54010", R"(Eckert_VI: Eckert_VI, central_meridian 0, Meter 1)"},
    {"CP", "datum=WGE parallel=30 lon=10 x=7 y=8", 12, 47, "+proj=eqc +lat_ts=30 +lon_0=10 +x_0=7 +y_0=8",
     R"(Equidistant_Cylindrical: Equirectangular, standard_parallel_1 30, central_meridian 10, false_easting 7, false_northing 8, Meter 1)"},
    {"GN", "datum=WGE lat=40 lon=-100", -98, 41, "+proj=gnom +lat_0=40 +lon_0=-100",
     R"(Gnomonic: Gnomonic, latitude_of_origin 40, central_meridian -100, Meter 1)"},
    {"LE", "datum=RGF lat=46.5 lon=3 first=49 second=44 x=700000 y=6600000", 5, 45, "EPSG:2154",
     R"(Lambert_Conformal_Conic_2SP: Lambert_Conformal_Conic_2SP, latitude_of_origin 46.5, central_meridian 3, standard_parallel_1 49, standard_parallel_2 44, false_easting 700000, false_northing 6600000, Meter 1)"},
    {"MC", "datum=WGE lat=0 lon=0", 12, 47, "EPSG:3395",
     R"(Mercator_1SP: Mercator_1SP, central_meridian 0, scale_factor 1, Meter 1)"},
    {"MH", "datum=WGE lon=0", 12, 47, "ESRI:54003",
     R"(Miller_Cylindrical: Miller_Cylindrical, longitude_of_center 0, Meter 1)"},
    {"MP", "datum=WGE lon=0", 12, 47, "ESRI:54009", R"(Mollweide: Mollweide, central_meridian 0, Meter 1)"},
    {"NT", "datum=GEO lat=-41 lon=173 x=2510000 y=6023150", 174.7, -41.3, "EPSG:27200",
     R"(New_Zealand_Map_Grid: New_Zealand_Map_Grid, latitude_of_origin -41, central_meridian 173, false_easting 2510000, false_northing 6023150, Meter 1)"},
    {"OD", "datum=WGE lat=40 lon=-100", -98, 41, "+proj=ortho +lat_0=40 +lon_0=-100",
     R"(Orthographic: Orthographic, latitude_of_origin 40, central_meridian -100, Meter 1)"},
    {"PG", "datum=WGE true=71 down=45", 30, 80, "EPSG:3995",
     R"(Polar_Stereographic: Polar_Stereographic, latitude_of_origin 71, central_meridian 0, false_easting 0, false_northing 0, Meter 1)"},
    {"PH", "datum=SAN lat=0 lon=-54 x=5000000 y=10000000", -50, -10, "EPSG:29101",
     R"(Polyconic: Polyconic, latitude_of_origin 0, central_meridian -54, false_easting 5000000, false_northing 10000000, Meter 1)"},
    {"SA", "datum=WGE lon=0", 12, 47, "ESRI:54008",
     R"(Sinusoidal: Sinusoidal, longitude_of_center 0, Meter 1)"},
    {"SD", "datum=WGE lat=52 lon=5 scale=0.9999", 6, 53, "+proj=stere +lat_0=52 +lon_0=5 +k_0=1",
     R"(Stereographic: Stereographic, latitude_of_origin 52, central_meridian 5, scale_factor 1, Meter 1)"},
    {"TC", "datum=OGB lat=49 lon=-2 scale=0.9996012717 x=400000 y=-100000", -1, 52, "EPSG:27700",
     R"(Transverse_Mercator: Transverse_Mercator, latitude_of_origin 49, central_meridian -2, scale_factor 0.9996012717, false_easting 400000, false_northing -100000, Meter 1)"},
    {"VA", "datum=WGE lon=0", 12, 47, "ESRI:54029",
     R"(VanDerGrinten: VanDerGrinten, central_meridian 0, Meter 1)"},
};

/// "name: projection, parameter value, ..., unit metres", without the geographic system and the axes.
std::string Shortened(std::string text) {
    const std::pair<const char*, const char*> changes[] = {
        {R"re(^GEOGCS\[.*)re", "GEOGCS"},
        {R"re(^PROJCS\["([^"]*)",GEOGCS\[.*,PROJECTION\["([^"]*)"\](.*)\]$)re", "$1: $2$3"},
        {R"re((?:PARAMETER|UNIT)\["([^"]*)",([^,\]]*)\])re", "$1 $2"},
        {R"re(,AXIS\["Easting",EAST\],AXIS\["Northing",NORTH\])re", ""},
        {",", ", "}};
    for (const auto& [pattern, replacement] : changes)
        text = std::regex_replace(text, std::regex(pattern), replacement);
    return text;
}

/// By PROJ alone: the conversion of an equal system.
BPoint ByProj(std::string equal, double longitude, double latitude) {
    using Object = std::unique_ptr<PJ, PJ* (*)(PJ*)>;
    if (equal.front() == '+') equal += " +ellps=WGS84 +type=crs";
    const Object system(proj_create(nullptr, equal.c_str()), proj_destroy);
    if (proj_get_type(system.get()) != PJ_TYPE_PROJECTED_CRS) return {longitude, latitude, 0.0};
    const Object operation(proj_crs_get_coordoperation(nullptr, system.get()), proj_destroy);
    const Object ordered(proj_normalize_for_visualization(nullptr, operation.get()), proj_destroy);
    const PJ_COORD result = proj_trans(ordered.get(), PJ_FWD, proj_coord(longitude, latitude, 0.0, 0.0));
    return {result.xy.x, result.xy.y, 0.0};
}

std::string TextOf(const char* projection, const char* parameters) {
    ParameterImport import(Parameters(parameters));
    import.Set(kProjectionType, projection);
    return import.BuildWKT();
}

TEST(Projections, TextAndPointOfEachRowOfTheTable) {
    std::set<std::string> seen;
    for (const GoldenCase& c : kGolden) {
        seen.insert(c.projection);
        SCOPED_TRACE(c.projection);
        const std::string wkt = TextOf(c.projection, c.parameters);
        EXPECT_EQ(Shortened(wkt), c.text);
        const std::unique_ptr<BCoordSys> system(BCoordSys::FromWKT(BString(wkt)));
        ASSERT_TRUE(system);
        const BPoint ours = system->ConvertFromGeodetic({c.longitude, c.latitude, 0.0});
        const BPoint theirs = ByProj(c.equal, c.longitude, c.latitude);
        EXPECT_NEAR(ours.x, theirs.x, 1e-6);
        EXPECT_NEAR(ours.y, theirs.y, 1e-6);
    }
    for (const auto& [key, projection] : LGIProjections())
        EXPECT_EQ(seen.count(key), 1U) << key;
    EXPECT_EQ(LGIProjections().size(), 26U);
}

struct OddityCase {
    const char* projection;
    const char* parameters;
    const char* holds;
    const char* lacks = nullptr;
};

const OddityCase kOddities[] = {
    // UTM is south without a capital N, and always in metres.
    {"UT", "datum=WGE zone=33", "\"false_northing\",10000000"},
    {"UT", "datum=WGE zone=33 hemisphere=n", "\"false_northing\",10000000"},
    {"UT", "datum=WGE zone=33 units=FT", "UNIT[\"metre\",1", "foot"},
    // State plane is NAD83 whatever the datum, and a zone that is refused gets 10000 more.
    {"SPCS", "datum=NAS-C zone=4203", "North_American_Datum_1983", "1927"},
    {"SPCS", "zone=-5797", "\"standard_parallel_1\",31.88"},
    {"SPCS", "zone=4203 units=USSF", "UNIT[\"Foot_US\",0.3048006"},
    {"SA", "datum=WGE units=FT", "UNIT[\"Foot (International)\",0.3048]"},
    {"SA", "datum=WGE units=FATHOM", "UNIT[\"Meter\",1]"},
    {"MC", "datum=WGE scale=0.0", "\"scale_factor\",1]"},
    {"MC", "datum=WGE scale=0.9", "\"scale_factor\",0.9]"},
    // A stereographic projection leaves a given scale out, and gets zero without one.
    {"SD", "datum=WGE scale=0.5", "\"scale_factor\",1]", "0.5"},
    {"SD", "datum=WGE", "\"scale_factor\",0]"},
    {"PG", "datum=WGE true=71 down=45", "\"central_meridian\",0]", "\"central_meridian\",45"},
    // The suffix of a datum is ignored; a code in small letters or behind a hyphen is unknown.
    {"GEODETIC", "datum=NAS-C", "\"EPSG\",\"4267\""},
    {"SA", "datum=wge", "Sinusoidal", "4326"},
    {"SA", "datum=-WGE", "Sinusoidal", "4326"},
    {"ZZ", "datum=WGE", "PROJCS[\"\""},
    {"SA", "datum=WGE lon=10E", "\"longitude_of_center\",0]"},
};

TEST(Projections, Oddities) {
    for (const OddityCase& c : kOddities) {
        const std::string wkt = TextOf(c.projection, c.parameters);
        EXPECT_NE(wkt.find(c.holds), std::string::npos) << c.holds << " in " << wkt;
        EXPECT_TRUE(!c.lacks || wkt.find(c.lacks) == std::string::npos) << wkt;
    }
}

// Twice: the second text comes from the cache, the matrix must be scaled all the same.
TEST(Projections, EveryTermOfTheMatrixIsDividedByTheUnit) {
    const struct {
        const char* projection;
        const char* units;
        double factor;
    } cases[] = {{"SA", "USSF", 0.3048006096012192},
                 {"SA", "FT", 0.3048},
                 {"SPCS", "FT", 0.3048},
                 {"SA", "M", 1.0},
                 {"UT", "FT", 1.0},
                 {"GEODETIC", "FT", 1.0}};
    for (const auto& [projection, units, factor] : cases)
        for (int round = 0; round < 2; ++round) {
            ParameterImport import({{kProjectionType, projection}, {kDatum, "WGE"}, {kZone, "33"}});
            import.Set(kUnits, units);
            import.CTM = {1.0, 0.0, 0.0, 1.0, 100.0, 200.0};
            import.BuildWKT();
            EXPECT_EQ(import.CTM,
                      (std::vector<double>{1 / factor, 0, 0, 1 / factor, 100 / factor, 200 / factor}))
                << projection << " " << units;
        }
    // One that is too short.
    ParameterImport import({{kProjectionType, "SA"}, {kDatum, "WGE"}, {kUnits, "FT"}});
    import.CTM = {3.048};
    import.BuildWKT();
    EXPECT_EQ(import.CTM, std::vector<double>{3.048 / 0.3048});
}

TEST(LGINumbers, AreReadAsFromAStream) {
    EXPECT_EQ(LGIReal(" -12.5e1x"), -125.0);
    EXPECT_EQ(LGIReal("12,5"), 12.0);
    EXPECT_EQ(LGIReal("1e999"), 0.0);
    EXPECT_EQ(LGIReal("abc"), 0.0);
    EXPECT_EQ(LGIInteger("15"), 15);
    EXPECT_EQ(LGIInteger("99999999999"), 0);
}

TEST(DatumTable, ContentIsWhatItWas) {
    // FNV-1a, which any changed digit or letter changes.
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const auto& row : LGIDatumRows())
        for (const char c : std::string(row.code) + "|" + std::to_string(row.epsg) + "|" + row.name + "\n")
            hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    EXPECT_EQ(hash, 0xce07b34dca5fc9dbU);
    // One code is in two rows, of which the later one counts.
    EXPECT_EQ(LGIDatumRows().size(), 160U);
    EXPECT_EQ(LGIDatums().size(), 159U);
    EXPECT_EQ(LGIDatums().at("HIT").EPSG, 4254);
    EXPECT_EQ(LGIDatums().at("HIT").Name, "PROVISIONAL SOUTH CHILEAN 1963 (Hito XVIII 1963)");
}

using Pair = CMeasureDictionaryData::Pair;

TEST(Neatline, AreaDoesNotDependOnTheDirection) {
    const std::vector<Pair> clockwise = {{0, 0}, {0, 10}, {4, 10}, {4, 0}};
    EXPECT_EQ(NeatlineArea(clockwise), 40.0);
    EXPECT_EQ(NeatlineArea({clockwise.rbegin(), clockwise.rend()}), 40.0);
    EXPECT_EQ(NeatlineArea({{3, 4}}), 0.0);
    EXPECT_EQ(NeatlineArea({}), 0.0);
}

CMeasureDictionaryData ImportOf(const std::vector<Pair>& neatline, double x, double y) {
    ParameterImport import({{kProjectionType, "GEODETIC"}, {kDatum, "WGE"}});
    import.PageWidth = 600;
    import.PageHeight = 800;
    import.Neatline = neatline;
    import.Registration = {{.PageX = x, .PageY = y, .WorldY = 47, .WorldX = 11 }};
    import.Import();
    return import.GetMeasures().at(0);
}

TEST(LGIRecord, PointsBecomeFractionsOfTheNeatline) {
    const std::vector<Pair> neatline = {{100, 200}, {100, 600}, {300, 600}, {300, 200}};
    const CMeasureDictionaryData record = ImportOf(neatline, 150, 500);
    EXPECT_EQ(record.BBox, (std::vector<double>{100, 200, 300, 600}));
    EXPECT_EQ(record.Bounds, neatline);
    EXPECT_EQ(record.GPTS, (std::vector<Pair>{{47, 11}}));
    EXPECT_EQ(record.LPTS, (std::vector<Pair>{{0.25, 0.75}}));
    EXPECT_TRUE(record.GPTSInCoordSys && record.CTM.empty());
    EXPECT_EQ(record.CoordSys.EPSG, 0);
    // Without a neatline the box is turned inside out, and without a width there is no fraction.
    const CMeasureDictionaryData without = ImportOf({}, 150, 400);
    EXPECT_EQ(without.BBox, (std::vector<double>{600, 800, 0, 0}));
    EXPECT_EQ(without.LPTS, (std::vector<Pair>{{0.75, 0.5}}));
    EXPECT_FALSE(std::isfinite(ImportOf({{100, 200}, {100, 600}}, 150, 400).LPTS.at(0).first));
}

}  // namespace
}  // namespace VellumLib

// The systems that an LGIDict's parameters make: their text, and where a point of the
// world comes to lie, against PROJ's own definition of an equal system.

#include "ParameterImport.h"

#include "import/LGINumbers.h"

#include <Tellurion/BCoordSys.h>

#include <gtest/gtest.h>
#include <proj.h>

#include <memory>
#include <sstream>

namespace VellumLib {
namespace {

using Tellurion::BCoordSys;
using Tellurion::BPoint;
using Tellurion::BString;

const std::map<std::string, int> kKeys = {{"datum", kDatum},
                                          {"zone", kZone},
                                          {"hemisphere", kHemisphere},
                                          {"lat", kOriginLatitude},
                                          {"lon", kCentralMeridian},
                                          {"first", kStandardParallelOne},
                                          {"second", kStandardParallelTwo},
                                          {"parallel", kStandardParallel},
                                          {"x", kFalseEasting},
                                          {"y", kFalseNorthing},
                                          {"scale", kScaleFactor},
                                          {"true", kLatitudeOfTrueScale},
                                          {"down", kLongitudeDownFromPole},
                                          {"units", kUnits}};

/// Of a text such as "datum=WGE zone=33".
std::map<int, std::string> Parameters(const std::string& text) {
    std::map<int, std::string> parameters;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        const std::size_t equals = word.find('=');
        parameters[kKeys.at(word.substr(0, equals))] = word.substr(equals + 1);
    }
    return parameters;
}

struct GoldenCase {
    const char* projection;
    const char* parameters;
    const char* text;   ///< with ~ for the geographic system, and without axes
    const char* equal;  ///< a code of PROJ's database, or PROJ's own steps
    double longitude;
    double latitude;
};

const GoldenCase kGolden[] = {
    {"GEODETIC", "datum=WGE", R"(GEOGCS)", "EPSG:4326", 12, 47},
    {"GEOGRAPHIC", "datum=NAR-C", R"(GEOGCS)", "EPSG:4269", -100, 40},
    {"MG", "datum=WGE lon=9", R"(GEOGCS)", "EPSG:4326", 12, 47},
    {"UT", "datum=WGE zone=33 hemisphere=N",
     R"(PROJCS["unnamed",~,PROJECTION["Transverse_Mercator"],PARAMETER["latitude_of_origin",0],PARAMETER["central_meridian",15],PARAMETER["scale_factor",0.9996],PARAMETER["false_easting",500000],PARAMETER["false_northing",0],UNIT["metre",1,AUTHORITY["EPSG","9001"]]])",
     "EPSG:32633", 14, 47},
    {"SPCS", "datum=NAR zone=4203",
     R"(PROJCS["State Plane 83",~,PROJECTION["Lambert_Conformal_Conic_2SP"],PARAMETER["latitude_of_origin",29.6666666666667],PARAMETER["central_meridian",-100.333333333333],PARAMETER["standard_parallel_1",31.8833333333333],PARAMETER["standard_parallel_2",30.1166666666667],PARAMETER["false_easting",700000],PARAMETER["false_northing",3000000],UNIT["metre",1,AUTHORITY["EPSG","9001"]],AUTHORITY["EPSG","32139"]])",
     "EPSG:32139", -98, 30.5},
    {"AC", "datum=NAR lat=23 lon=-96 first=29.5 second=45.5 x=0 y=0",
     R"(PROJCS["Albers_Conic_Equal_Area",~,PROJECTION["Albers_Conic_Equal_Area"],PARAMETER["latitude_of_center",23],PARAMETER["longitude_of_center",-96],PARAMETER["standard_parallel_1",29.5],PARAMETER["standard_parallel_2",45.5],PARAMETER["false_easting",0],PARAMETER["false_northing",0],UNIT["Meter",1]])",
     "EPSG:5070", -100, 40},
    {"AL", "datum=WGE lat=40 lon=-100 x=1000 y=-2000",
     R"(PROJCS["Azimuthal_Equidistant",~,PROJECTION["Azimuthal_Equidistant"],PARAMETER["latitude_of_center",40],PARAMETER["longitude_of_center",-100],PARAMETER["false_easting",1000],PARAMETER["false_northing",-2000],UNIT["Meter",1]])",
     "+proj=aeqd +lat_0=40 +lon_0=-100 +x_0=1000 +y_0=-2000 +ellps=WGS84", -98, 41},
    {"BF", "datum=WGE lat=45 lon=2 x=500 y=600",
     R"(PROJCS["Bonne",~,PROJECTION["Bonne"],PARAMETER["standard_parallel_1",45],PARAMETER["central_meridian",2],PARAMETER["false_easting",500],PARAMETER["false_northing",600],UNIT["Meter",1]])",
     "+proj=bonne +lat_1=45 +lon_0=2 +x_0=500 +y_0=600 +ellps=WGS84", 3, 46},
    {"CS", "datum=WGE lat=31.734 lon=35.212 x=170251 y=126867",
     R"(PROJCS["Cassini",~,PROJECTION["Cassini_Soldner"],PARAMETER["latitude_of_origin",31.734],PARAMETER["central_meridian",35.212],PARAMETER["false_easting",170251],PARAMETER["false_northing",126867],UNIT["Meter",1]])",
     "+proj=cass +lat_0=31.734 +lon_0=35.212 +x_0=170251 +y_0=126867 +ellps=WGS84", 35, 32},
    {"LI", "datum=WGE lat=0 lon=10",
     R"(PROJCS["Cylindrical_Equal_Area",~,PROJECTION["Cylindrical_Equal_Area"],PARAMETER["latitude_of_origin",0],PARAMETER["central_meridian",10],UNIT["Meter",1]])",
     "+proj=cea +lon_0=10 +ellps=WGS84", 12, 47},
    {"EF", "datum=WGE lon=0",
     R"(PROJCS["Eckert_IV",~,PROJECTION["Eckert_IV"],PARAMETER["central_meridian",0],UNIT["Meter",1]])",
     "ESRI:54012", 12, 47},
    {"ED", "datum=WGE lon=0",
     R"(PROJCS["Eckert_VI",~,PROJECTION["Eckert_VI"],PARAMETER["central_meridian",0],UNIT["Meter",1]])",
     "ESRI:54010", 12, 47},
    {"CP", "datum=WGE parallel=30 lon=10 x=7 y=8",
     R"(PROJCS["Equidistant_Cylindrical",~,PROJECTION["Equirectangular"],PARAMETER["standard_parallel_1",30],PARAMETER["central_meridian",10],PARAMETER["false_easting",7],PARAMETER["false_northing",8],UNIT["Meter",1]])",
     "+proj=eqc +lat_ts=30 +lon_0=10 +x_0=7 +y_0=8 +ellps=WGS84", 12, 47},
    {"GN", "datum=WGE lat=40 lon=-100",
     R"(PROJCS["Gnomonic",~,PROJECTION["Gnomonic"],PARAMETER["latitude_of_origin",40],PARAMETER["central_meridian",-100],UNIT["Meter",1]])",
     "+proj=gnom +lat_0=40 +lon_0=-100 +ellps=WGS84", -98, 41},
    {"LE", "datum=RGF lat=46.5 lon=3 first=49 second=44 x=700000 y=6600000",
     R"(PROJCS["Lambert_Conformal_Conic_2SP",~,PROJECTION["Lambert_Conformal_Conic_2SP"],PARAMETER["latitude_of_origin",46.5],PARAMETER["central_meridian",3],PARAMETER["standard_parallel_1",49],PARAMETER["standard_parallel_2",44],PARAMETER["false_easting",700000],PARAMETER["false_northing",6600000],UNIT["Meter",1]])",
     "EPSG:2154", 5, 45},
    {"MC", "datum=WGE lat=0 lon=0",
     R"(PROJCS["Mercator_1SP",~,PROJECTION["Mercator_1SP"],PARAMETER["central_meridian",0],PARAMETER["scale_factor",1],UNIT["Meter",1]])",
     "EPSG:3395", 12, 47},
    {"MH", "datum=WGE lon=0",
     R"(PROJCS["Miller_Cylindrical",~,PROJECTION["Miller_Cylindrical"],PARAMETER["longitude_of_center",0],UNIT["Meter",1]])",
     "ESRI:54003", 12, 47},
    {"MP", "datum=WGE lon=0",
     R"(PROJCS["Mollweide",~,PROJECTION["Mollweide"],PARAMETER["central_meridian",0],UNIT["Meter",1]])",
     "ESRI:54009", 12, 47},
    {"NT", "datum=GEO lat=-41 lon=173 x=2510000 y=6023150",
     R"(PROJCS["New_Zealand_Map_Grid",~,PROJECTION["New_Zealand_Map_Grid"],PARAMETER["latitude_of_origin",-41],PARAMETER["central_meridian",173],PARAMETER["false_easting",2510000],PARAMETER["false_northing",6023150],UNIT["Meter",1]])",
     "EPSG:27200", 174.7, -41.3},
    {"OD", "datum=WGE lat=40 lon=-100",
     R"(PROJCS["Orthographic",~,PROJECTION["Orthographic"],PARAMETER["latitude_of_origin",40],PARAMETER["central_meridian",-100],UNIT["Meter",1]])",
     "+proj=ortho +lat_0=40 +lon_0=-100 +ellps=WGS84", -98, 41},
    {"PG", "datum=WGE true=71 down=45",
     R"(PROJCS["Polar_Stereographic",~,PROJECTION["Polar_Stereographic"],PARAMETER["latitude_of_origin",71],PARAMETER["central_meridian",0],PARAMETER["false_easting",0],PARAMETER["false_northing",0],UNIT["Meter",1]])",
     "EPSG:3995", 30, 80},
    {"PH", "datum=SAN lat=0 lon=-54 x=5000000 y=10000000",
     R"(PROJCS["Polyconic",~,PROJECTION["Polyconic"],PARAMETER["latitude_of_origin",0],PARAMETER["central_meridian",-54],PARAMETER["false_easting",5000000],PARAMETER["false_northing",10000000],UNIT["Meter",1]])",
     "EPSG:29101", -50, -10},
    {"SA", "datum=WGE lon=0",
     R"(PROJCS["Sinusoidal",~,PROJECTION["Sinusoidal"],PARAMETER["longitude_of_center",0],UNIT["Meter",1]])",
     "ESRI:54008", 12, 47},
    {"SD", "datum=WGE lat=52 lon=5 scale=0.9999",
     R"(PROJCS["Stereographic",~,PROJECTION["Stereographic"],PARAMETER["latitude_of_origin",52],PARAMETER["central_meridian",5],PARAMETER["scale_factor",1],UNIT["Meter",1]])",
     "+proj=stere +lat_0=52 +lon_0=5 +k_0=1 +ellps=WGS84", 6, 53},
    {"TC", "datum=OGB lat=49 lon=-2 scale=0.9996012717 x=400000 y=-100000",
     R"(PROJCS["Transverse_Mercator",~,PROJECTION["Transverse_Mercator"],PARAMETER["latitude_of_origin",49],PARAMETER["central_meridian",-2],PARAMETER["scale_factor",0.9996012717],PARAMETER["false_easting",400000],PARAMETER["false_northing",-100000],UNIT["Meter",1]])",
     "EPSG:27700", -1, 52},
    {"VA", "datum=WGE lon=0",
     R"(PROJCS["VanDerGrinten",~,PROJECTION["VanDerGrinten"],PARAMETER["central_meridian",0],UNIT["Meter",1]])",
     "ESRI:54029", 12, 47},
};

void CutOut(std::string& text, const std::string& part) {
    if (const std::size_t at = text.find(part); at != std::string::npos) text.erase(at, part.size());
}

/// The geographic system of a well-known text, with all its brackets.
std::string GeographicPart(const std::string& text) {
    const std::size_t start = text.find("GEOGCS[");
    if (start == std::string::npos) return {};
    int depth = 0;
    for (std::size_t i = start; i < text.size(); ++i) {
        if (text[i] == '[') ++depth;
        if (text[i] == ']' && --depth == 0) return text.substr(start, i + 1 - start);
    }
    return {};
}

std::string Shortened(std::string text) {
    const std::string part = GeographicPart(text);
    if (part.size() == text.size()) return "GEOGCS";
    const std::size_t at = text.find(part);
    text = text.substr(0, at) + "~" + text.substr(at + part.size());
    CutOut(text, ",AXIS[\"Easting\",EAST],AXIS[\"Northing\",NORTH]");
    return text;
}

/// By PROJ alone: the conversion of a system in its database, or its own steps.
class ByProj {
public:
    ByProj() : context_(proj_context_create()) {}
    ~ByProj() { proj_context_destroy(context_); }
    ByProj(const ByProj&) = delete;
    ByProj& operator=(const ByProj&) = delete;

    BPoint Convert(const std::string& equal, double longitude, double latitude) const {
        const Object object(proj_create(context_, equal.c_str()), proj_destroy);
        if (equal.front() == '+') return Apply(object.get(), proj_torad(longitude), proj_torad(latitude));
        if (proj_get_type(object.get()) != PJ_TYPE_PROJECTED_CRS) return {longitude, latitude, 0.0};
        const Object operation(proj_crs_get_coordoperation(context_, object.get()), proj_destroy);
        const Object ordered(proj_normalize_for_visualization(context_, operation.get()), proj_destroy);
        return Apply(ordered.get(), longitude, latitude);
    }

private:
    using Object = std::unique_ptr<PJ, PJ* (*)(PJ*)>;

    static BPoint Apply(PJ* operation, double x, double y) {
        const PJ_COORD result = proj_trans(operation, PJ_FWD, proj_coord(x, y, 0.0, 0.0));
        return {result.xy.x, result.xy.y, 0.0};
    }

    PJ_CONTEXT* context_;
};

std::string TextOf(const char* projection, const char* parameters) {
    ParameterImport import(Parameters(parameters));
    import.Set(kProjectionType, projection);
    return import.BuildWKT();
}

TEST(GoldenProjection, TextAndPointOfTheWorld) {
    for (const GoldenCase& c : kGolden) {
        SCOPED_TRACE(c.projection);
        const std::string wkt = TextOf(c.projection, c.parameters);
        EXPECT_EQ(Shortened(wkt), c.text);
        const std::unique_ptr<BCoordSys> system(BCoordSys::FromWKT(BString(wkt)));
        ASSERT_TRUE(system);
        const BPoint ours = system->ConvertFromGeodetic({c.longitude, c.latitude, 0.0});
        const BPoint theirs = ByProj().Convert(c.equal, c.longitude, c.latitude);
        EXPECT_NEAR(ours.x, theirs.x, 1e-6);
        EXPECT_NEAR(ours.y, theirs.y, 1e-6);
    }
}

TEST(Projections, EveryRowOfTheTableHasAGoldenCase) {
    std::map<std::string, int> seen;
    for (const GoldenCase& c : kGolden)
        ++seen[c.projection];
    for (const auto& [key, projection] : LGIProjections())
        EXPECT_EQ(seen[key], 1) << key;
    EXPECT_EQ(LGIProjections().size(), 26U);
}

struct OddityCase {
    const char* name;
    const char* projection;
    const char* parameters;
    const char* holds;
    const char* lacks = nullptr;
};

const OddityCase kOddities[] = {
    {"utm_south_without_a_hemisphere", "UT", "datum=WGE zone=33", "\"false_northing\",10000000"},
    {"utm_south_for_a_small_n", "UT", "datum=WGE zone=33 hemisphere=n", "\"false_northing\",10000000"},
    {"utm_takes_no_units", "UT", "datum=WGE zone=33 units=FT", "UNIT[\"metre\",1", "foot"},
    {"state_plane_is_nad83_whatever_the_datum", "SPCS", "datum=NAS-C zone=4203", "North_American_Datum_1983",
     "1927"},
    {"state_plane_zone_that_is_refused_gets_10000", "SPCS", "zone=-5797", "\"standard_parallel_1\",31.88"},
    {"state_plane_in_feet", "SPCS", "zone=4203 units=USSF", "UNIT[\"Foot_US\",0.3048006"},
    {"international_feet", "SA", "datum=WGE units=FT", "UNIT[\"Foot (International)\",0.3048]"},
    {"unknown_unit_is_the_metre", "SA", "datum=WGE units=FATHOM", "UNIT[\"Meter\",1]"},
    {"mercator_scale_of_zero_becomes_one", "MC", "datum=WGE scale=0.0", "\"scale_factor\",1]"},
    {"mercator_scale_is_kept", "MC", "datum=WGE scale=0.9", "\"scale_factor\",0.9]"},
    {"stereographic_leaves_a_given_scale_out", "SD", "datum=WGE scale=0.5", "\"scale_factor\",1]", "0.5"},
    {"stereographic_without_a_scale_gets_zero", "SD", "datum=WGE", "\"scale_factor\",0]"},
    {"polar_meridian_is_always_zero", "PG", "datum=WGE true=71 down=45", "\"central_meridian\",0]",
     "\"central_meridian\",45"},
    {"datum_suffix_counts_for_nothing", "GEODETIC", "datum=NAS-C", "\"EPSG\",\"4267\""},
    {"datum_code_is_case_sensitive", "SA", "datum=wge", "Sinusoidal", "4326"},
    {"datum_that_begins_with_a_hyphen_is_none", "SA", "datum=-WGE", "Sinusoidal", "4326"},
    {"unknown_projection_has_an_empty_name", "ZZ", "datum=WGE", "PROJCS[\"\""},
    {"half_an_exponent_is_no_number", "SA", "datum=WGE lon=10E", "\"longitude_of_center\",0]"},
};

TEST(ProjectionOddity, ShowsInTheText) {
    for (const OddityCase& c : kOddities) {
        SCOPED_TRACE(c.name);
        const std::string wkt = TextOf(c.projection, c.parameters);
        EXPECT_NE(wkt.find(c.holds), std::string::npos) << wkt;
        EXPECT_TRUE(!c.lacks || wkt.find(c.lacks) == std::string::npos) << wkt;
    }
}

struct ScalingCase {
    const char* projection;
    const char* units;
    double factor;
};

// Twice: the second text comes from the cache, the matrix must be scaled all the same.
TEST(MatrixScaling, DividesEveryTermEachTime) {
    const ScalingCase cases[] = {{"SA", "USSF", 0.3048006096012192},
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
            const std::vector<double> expected = {1.0 / factor,   0.0,           0.0, 1.0 / factor,
                                                  100.0 / factor, 200.0 / factor};
            EXPECT_EQ(import.CTM, expected) << projection << " " << units;
        }
}

TEST(Projections, AMatrixThatIsTooShortIsNoMemoryFault) {
    ParameterImport import({{kProjectionType, "SA"}, {kDatum, "WGE"}, {kUnits, "FT"}});
    import.CTM = {3.048, 6.096};
    import.BuildWKT();
    EXPECT_EQ(import.CTM.size(), 2U);
    EXPECT_DOUBLE_EQ(import.CTM[0], 10.0);
}

TEST(LGINumbers, AreReadAsFromAStream) {
    EXPECT_EQ(LGIReal(" -12.5e1x"), -125.0);
    EXPECT_EQ(LGIReal("12,5"), 12.0);
    EXPECT_EQ(LGIReal("1e999"), 0.0);
    EXPECT_EQ(LGIReal("abc"), 0.0);
    EXPECT_EQ(LGIInteger("15"), 15);
    EXPECT_EQ(LGIInteger("99999999999"), 0);
}

}  // namespace
}  // namespace VellumLib

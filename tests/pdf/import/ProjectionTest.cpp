// The systems that an LGIDict's parameters make: their text, and where a point of the
// world comes to lie, against PROJ's own definition of an equal system.

#include "ParameterImport.h"

#include "import/LGINumbers.h"

#include <Tellurion/BCoordSys.h>

#include <gtest/gtest.h>
#include <proj.h>

#include <memory>

namespace VellumLib {
namespace {

using Tellurion::BCoordSys;
using Tellurion::BPoint;
using Tellurion::BString;

struct GoldenCase {
    const char* projection;
    std::map<int, std::string> parameters;
    const char* text;   ///< with ~ for the geographic system, and without axes
    const char* equal;  ///< a code of PROJ's database, or PROJ's own steps
    double longitude;
    double latitude;
};

const GoldenCase kGolden[] = {
    {"GEODETIC", {{kDatum, "WGE"}}, R"(GEOGCS)", "EPSG:4326", 12, 47},
    {"GEOGRAPHIC", {{kDatum, "NAR-C"}}, R"(GEOGCS)", "EPSG:4269", -100, 40},
    {"MG", {{kDatum, "WGE"}, {kCentralMeridian, "9"}}, R"(GEOGCS)", "EPSG:4326", 12, 47},
    {"UT",
     {{kDatum, "WGE"}, {kZone, "33"}, {kHemisphere, "N"}},
     R"(PROJCS["unnamed",~,PROJECTION["Transverse_Mercator"],PARAMETER["latitude_of_origin",0],PARAMETER["central_meridian",15],PARAMETER["scale_factor",0.9996],PARAMETER["false_easting",500000],PARAMETER["false_northing",0],UNIT["metre",1,AUTHORITY["EPSG","9001"]]])",
     "EPSG:32633",
     14,
     47},
    {"SPCS",
     {{kDatum, "NAR"}, {kZone, "4203"}},
     R"(PROJCS["State Plane 83",~,PROJECTION["Lambert_Conformal_Conic_2SP"],PARAMETER["latitude_of_origin",29.6666666666667],PARAMETER["central_meridian",-100.333333333333],PARAMETER["standard_parallel_1",31.8833333333333],PARAMETER["standard_parallel_2",30.1166666666667],PARAMETER["false_easting",700000],PARAMETER["false_northing",3000000],UNIT["metre",1,AUTHORITY["EPSG","9001"]],AUTHORITY["EPSG","32139"]])",
     "EPSG:32139",
     -98,
     30.5},
    {"AC",
     {{kDatum, "NAR"},
      {kOriginLatitude, "23"},
      {kCentralMeridian, "-96"},
      {kStandardParallelOne, "29.5"},
      {kStandardParallelTwo, "45.5"},
      {kFalseEasting, "0"},
      {kFalseNorthing, "0"}},
     R"(PROJCS["Albers_Conic_Equal_Area",~,PROJECTION["Albers_Conic_Equal_Area"],PARAMETER["latitude_of_center",23],PARAMETER["longitude_of_center",-96],PARAMETER["standard_parallel_1",29.5],PARAMETER["standard_parallel_2",45.5],PARAMETER["false_easting",0],PARAMETER["false_northing",0],UNIT["Meter",1]])",
     "EPSG:5070",
     -100,
     40},
    {"AL",
     {{kDatum, "WGE"},
      {kOriginLatitude, "40"},
      {kCentralMeridian, "-100"},
      {kFalseEasting, "1000"},
      {kFalseNorthing, "-2000"}},
     R"(PROJCS["Azimuthal_Equidistant",~,PROJECTION["Azimuthal_Equidistant"],PARAMETER["latitude_of_center",40],PARAMETER["longitude_of_center",-100],PARAMETER["false_easting",1000],PARAMETER["false_northing",-2000],UNIT["Meter",1]])",
     "+proj=aeqd +lat_0=40 +lon_0=-100 +x_0=1000 +y_0=-2000 +ellps=WGS84",
     -98,
     41},
    {"BF",
     {{kDatum, "WGE"},
      {kOriginLatitude, "45"},
      {kCentralMeridian, "2"},
      {kFalseEasting, "500"},
      {kFalseNorthing, "600"}},
     R"(PROJCS["Bonne",~,PROJECTION["Bonne"],PARAMETER["standard_parallel_1",45],PARAMETER["central_meridian",2],PARAMETER["false_easting",500],PARAMETER["false_northing",600],UNIT["Meter",1]])",
     "+proj=bonne +lat_1=45 +lon_0=2 +x_0=500 +y_0=600 +ellps=WGS84",
     3,
     46},
    {"CS",
     {{kDatum, "WGE"},
      {kOriginLatitude, "31.734"},
      {kCentralMeridian, "35.212"},
      {kFalseEasting, "170251"},
      {kFalseNorthing, "126867"}},
     R"(PROJCS["Cassini",~,PROJECTION["Cassini_Soldner"],PARAMETER["latitude_of_origin",31.734],PARAMETER["central_meridian",35.212],PARAMETER["false_easting",170251],PARAMETER["false_northing",126867],UNIT["Meter",1]])",
     "+proj=cass +lat_0=31.734 +lon_0=35.212 +x_0=170251 +y_0=126867 +ellps=WGS84",
     35,
     32},
    {"LI",
     {{kDatum, "WGE"}, {kOriginLatitude, "0"}, {kCentralMeridian, "10"}},
     R"(PROJCS["Cylindrical_Equal_Area",~,PROJECTION["Cylindrical_Equal_Area"],PARAMETER["latitude_of_origin",0],PARAMETER["central_meridian",10],UNIT["Meter",1]])",
     "+proj=cea +lon_0=10 +ellps=WGS84",
     12,
     47},
    {"EF",
     {{kDatum, "WGE"}, {kCentralMeridian, "0"}},
     R"(PROJCS["Eckert_IV",~,PROJECTION["Eckert_IV"],PARAMETER["central_meridian",0],UNIT["Meter",1]])",
     "ESRI:54012",
     12,
     47},
    {"ED",
     {{kDatum, "WGE"}, {kCentralMeridian, "0"}},
     R"(PROJCS["Eckert_VI",~,PROJECTION["Eckert_VI"],PARAMETER["central_meridian",0],UNIT["Meter",1]])",
     "ESRI:54010",
     12,
     47},
    {"CP",
     {{kDatum, "WGE"},
      {kStandardParallel, "30"},
      {kCentralMeridian, "10"},
      {kFalseEasting, "7"},
      {kFalseNorthing, "8"}},
     R"(PROJCS["Equidistant_Cylindrical",~,PROJECTION["Equirectangular"],PARAMETER["standard_parallel_1",30],PARAMETER["central_meridian",10],PARAMETER["false_easting",7],PARAMETER["false_northing",8],UNIT["Meter",1]])",
     "+proj=eqc +lat_ts=30 +lon_0=10 +x_0=7 +y_0=8 +ellps=WGS84",
     12,
     47},
    {"GN",
     {{kDatum, "WGE"}, {kOriginLatitude, "40"}, {kCentralMeridian, "-100"}},
     R"(PROJCS["Gnomonic",~,PROJECTION["Gnomonic"],PARAMETER["latitude_of_origin",40],PARAMETER["central_meridian",-100],UNIT["Meter",1]])",
     "+proj=gnom +lat_0=40 +lon_0=-100 +ellps=WGS84",
     -98,
     41},
    {"LE",
     {{kDatum, "RGF"},
      {kOriginLatitude, "46.5"},
      {kCentralMeridian, "3"},
      {kStandardParallelOne, "49"},
      {kStandardParallelTwo, "44"},
      {kFalseEasting, "700000"},
      {kFalseNorthing, "6600000"}},
     R"(PROJCS["Lambert_Conformal_Conic_2SP",~,PROJECTION["Lambert_Conformal_Conic_2SP"],PARAMETER["latitude_of_origin",46.5],PARAMETER["central_meridian",3],PARAMETER["standard_parallel_1",49],PARAMETER["standard_parallel_2",44],PARAMETER["false_easting",700000],PARAMETER["false_northing",6600000],UNIT["Meter",1]])",
     "EPSG:2154",
     5,
     45},
    {"MC",
     {{kDatum, "WGE"}, {kOriginLatitude, "0"}, {kCentralMeridian, "0"}},
     R"(PROJCS["Mercator_1SP",~,PROJECTION["Mercator_1SP"],PARAMETER["central_meridian",0],PARAMETER["scale_factor",1],UNIT["Meter",1]])",
     "EPSG:3395",
     12,
     47},
    {"MH",
     {{kDatum, "WGE"}, {kCentralMeridian, "0"}},
     R"(PROJCS["Miller_Cylindrical",~,PROJECTION["Miller_Cylindrical"],PARAMETER["longitude_of_center",0],UNIT["Meter",1]])",
     "ESRI:54003",
     12,
     47},
    {"MP",
     {{kDatum, "WGE"}, {kCentralMeridian, "0"}},
     R"(PROJCS["Mollweide",~,PROJECTION["Mollweide"],PARAMETER["central_meridian",0],UNIT["Meter",1]])",
     "ESRI:54009",
     12,
     47},
    {"NT",
     {{kDatum, "GEO"},
      {kOriginLatitude, "-41"},
      {kCentralMeridian, "173"},
      {kFalseEasting, "2510000"},
      {kFalseNorthing, "6023150"}},
     R"(PROJCS["New_Zealand_Map_Grid",~,PROJECTION["New_Zealand_Map_Grid"],PARAMETER["latitude_of_origin",-41],PARAMETER["central_meridian",173],PARAMETER["false_easting",2510000],PARAMETER["false_northing",6023150],UNIT["Meter",1]])",
     "EPSG:27200",
     174.7,
     -41.3},
    {"OD",
     {{kDatum, "WGE"}, {kOriginLatitude, "40"}, {kCentralMeridian, "-100"}},
     R"(PROJCS["Orthographic",~,PROJECTION["Orthographic"],PARAMETER["latitude_of_origin",40],PARAMETER["central_meridian",-100],UNIT["Meter",1]])",
     "+proj=ortho +lat_0=40 +lon_0=-100 +ellps=WGS84",
     -98,
     41},
    {"PG",
     {{kDatum, "WGE"}, {kLatitudeOfTrueScale, "71"}, {kLongitudeDownFromPole, "45"}},
     R"(PROJCS["Polar_Stereographic",~,PROJECTION["Polar_Stereographic"],PARAMETER["latitude_of_origin",71],PARAMETER["central_meridian",0],PARAMETER["false_easting",0],PARAMETER["false_northing",0],UNIT["Meter",1]])",
     "EPSG:3995",
     30,
     80},
    {"PH",
     {{kDatum, "SAN"},
      {kOriginLatitude, "0"},
      {kCentralMeridian, "-54"},
      {kFalseEasting, "5000000"},
      {kFalseNorthing, "10000000"}},
     R"(PROJCS["Polyconic",~,PROJECTION["Polyconic"],PARAMETER["latitude_of_origin",0],PARAMETER["central_meridian",-54],PARAMETER["false_easting",5000000],PARAMETER["false_northing",10000000],UNIT["Meter",1]])",
     "EPSG:29101",
     -50,
     -10},
    {"SA",
     {{kDatum, "WGE"}, {kCentralMeridian, "0"}},
     R"(PROJCS["Sinusoidal",~,PROJECTION["Sinusoidal"],PARAMETER["longitude_of_center",0],UNIT["Meter",1]])",
     "ESRI:54008",
     12,
     47},
    {"SD",
     {{kDatum, "WGE"}, {kOriginLatitude, "52"}, {kCentralMeridian, "5"}, {kScaleFactor, "0.9999"}},
     R"(PROJCS["Stereographic",~,PROJECTION["Stereographic"],PARAMETER["latitude_of_origin",52],PARAMETER["central_meridian",5],PARAMETER["scale_factor",1],UNIT["Meter",1]])",
     "+proj=stere +lat_0=52 +lon_0=5 +k_0=1 +ellps=WGS84",
     6,
     53},
    {"TC",
     {{kDatum, "OGB"},
      {kOriginLatitude, "49"},
      {kCentralMeridian, "-2"},
      {kScaleFactor, "0.9996012717"},
      {kFalseEasting, "400000"},
      {kFalseNorthing, "-100000"}},
     R"(PROJCS["Transverse_Mercator",~,PROJECTION["Transverse_Mercator"],PARAMETER["latitude_of_origin",49],PARAMETER["central_meridian",-2],PARAMETER["scale_factor",0.9996012717],PARAMETER["false_easting",400000],PARAMETER["false_northing",-100000],UNIT["Meter",1]])",
     "EPSG:27700",
     -1,
     52},
    {"VA",
     {{kDatum, "WGE"}, {kCentralMeridian, "0"}},
     R"(PROJCS["VanDerGrinten",~,PROJECTION["VanDerGrinten"],PARAMETER["central_meridian",0],UNIT["Meter",1]])",
     "ESRI:54029",
     12,
     47},
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

class GoldenProjection : public testing::TestWithParam<GoldenCase> {};

TEST_P(GoldenProjection, TextAndPointOfTheWorld) {
    const GoldenCase& c = GetParam();
    ParameterImport import(c.parameters);
    import.Set(kProjectionType, c.projection);
    const std::string wkt = import.BuildWKT();
    EXPECT_EQ(Shortened(wkt), c.text);

    const std::unique_ptr<BCoordSys> system(BCoordSys::FromWKT(BString(wkt)));
    ASSERT_TRUE(system);
    const BPoint ours = system->ConvertFromGeodetic({c.longitude, c.latitude, 0.0});
    const BPoint theirs = ByProj().Convert(c.equal, c.longitude, c.latitude);
    EXPECT_NEAR(ours.x, theirs.x, 1e-6);
    EXPECT_NEAR(ours.y, theirs.y, 1e-6);
}

INSTANTIATE_TEST_SUITE_P(Rows, GoldenProjection, testing::ValuesIn(kGolden),
                         [](const auto& row) { return std::string(row.param.projection); });

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
    std::map<int, std::string> parameters;
    const char* holds;
    const char* lacks = nullptr;
};

const OddityCase kOddities[] = {
    {"utm_south_without_a_hemisphere", "UT", {{kDatum, "WGE"}, {kZone, "33"}}, "\"false_northing\",10000000"},
    {"utm_south_for_a_small_n",
     "UT",
     {{kDatum, "WGE"}, {kZone, "33"}, {kHemisphere, "n"}},
     "\"false_northing\",10000000"},
    {"utm_takes_no_units",
     "UT",
     {{kDatum, "WGE"}, {kZone, "33"}, {kUnits, "FT"}},
     "UNIT[\"metre\",1",
     "foot"},
    {"state_plane_is_nad83_whatever_the_datum",
     "SPCS",
     {{kDatum, "NAS-C"}, {kZone, "4203"}},
     "North_American_Datum_1983",
     "1927"},
    {"state_plane_zone_that_is_refused_gets_10000",
     "SPCS",
     {{kZone, "-5797"}},
     "\"standard_parallel_1\",31.88"},
    {"state_plane_in_feet", "SPCS", {{kZone, "4203"}, {kUnits, "USSF"}}, "UNIT[\"Foot_US\",0.3048006"},
    {"international_feet", "SA", {{kDatum, "WGE"}, {kUnits, "FT"}}, "UNIT[\"Foot (International)\",0.3048]"},
    {"unknown_unit_is_the_metre", "SA", {{kDatum, "WGE"}, {kUnits, "FATHOM"}}, "UNIT[\"Meter\",1]"},
    {"mercator_scale_of_zero_becomes_one",
     "MC",
     {{kDatum, "WGE"}, {kScaleFactor, "0.0"}},
     "\"scale_factor\",1]"},
    {"mercator_scale_is_kept", "MC", {{kDatum, "WGE"}, {kScaleFactor, "0.9"}}, "\"scale_factor\",0.9]"},
    {"stereographic_leaves_a_given_scale_out",
     "SD",
     {{kDatum, "WGE"}, {kScaleFactor, "0.5"}},
     "\"scale_factor\",1]",
     "0.5"},
    {"stereographic_without_a_scale_gets_zero", "SD", {{kDatum, "WGE"}}, "\"scale_factor\",0]"},
    {"polar_meridian_is_always_zero",
     "PG",
     {{kDatum, "WGE"}, {kLatitudeOfTrueScale, "71"}, {kLongitudeDownFromPole, "45"}},
     "\"central_meridian\",0]",
     "\"central_meridian\",45"},
    {"datum_suffix_counts_for_nothing", "GEODETIC", {{kDatum, "NAS-C"}}, "\"EPSG\",\"4267\""},
    {"datum_code_is_case_sensitive", "SA", {{kDatum, "wge"}}, "Sinusoidal", "4326"},
    {"datum_that_begins_with_a_hyphen_is_none", "SA", {{kDatum, "-WGE"}}, "Sinusoidal", "4326"},
    {"unknown_projection_has_an_empty_name", "ZZ", {{kDatum, "WGE"}}, "PROJCS[\"\""},
    {"half_an_exponent_is_no_number",
     "SA",
     {{kDatum, "WGE"}, {kCentralMeridian, "10E"}},
     "\"longitude_of_center\",0]"},
};

class ProjectionOddity : public testing::TestWithParam<OddityCase> {};

TEST_P(ProjectionOddity, ShowsInTheText) {
    const OddityCase& c = GetParam();
    ParameterImport import(c.parameters);
    import.Set(kProjectionType, c.projection);
    const std::string wkt = import.BuildWKT();
    EXPECT_NE(wkt.find(c.holds), std::string::npos) << wkt;
    if (!c.lacks) return;
    EXPECT_EQ(wkt.find(c.lacks), std::string::npos) << wkt;
}

INSTANTIATE_TEST_SUITE_P(Rows, ProjectionOddity, testing::ValuesIn(kOddities),
                         [](const auto& row) { return std::string(row.param.name); });

struct ScalingCase {
    const char* name;
    const char* projection;
    const char* units;
    double factor;
};

class MatrixScaling : public testing::TestWithParam<ScalingCase> {};

TEST_P(MatrixScaling, DividesEveryTermEachTime) {
    const ScalingCase& c = GetParam();
    // Twice: the second text comes from the cache, the matrix must be scaled all the same.
    for (int round = 0; round < 2; ++round) {
        ParameterImport import({{kProjectionType, c.projection}, {kDatum, "WGE"}, {kZone, "33"}});
        import.Set(kUnits, c.units);
        import.CTM = {1.0, 0.0, 0.0, 1.0, 100.0, 200.0};
        import.BuildWKT();
        const std::vector<double> expected = {1.0 / c.factor,  0.0, 0.0, 1.0 / c.factor, 100.0 / c.factor,
                                              200.0 / c.factor};
        EXPECT_EQ(import.CTM, expected);
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, MatrixScaling,
                         testing::Values(ScalingCase{"us_survey_feet", "SA", "USSF", 0.3048006096012192},
                                         ScalingCase{"international_feet", "SA", "FT", 0.3048},
                                         ScalingCase{"state_plane_feet", "SPCS", "FT", 0.3048},
                                         ScalingCase{"metres", "SA", "M", 1.0},
                                         ScalingCase{"utm_is_left_alone", "UT", "FT", 1.0},
                                         ScalingCase{"degrees_are_left_alone", "GEODETIC", "FT", 1.0}),
                         [](const auto& row) { return std::string(row.param.name); });

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

// GeoTIFF and what else GDAL opens, through the front door.

#include <Tellurion/BIdentifier.h>
#include <Tellurion/BLinearUnit.h>

#include "GeoTiffRoads.h"

#include <cpl_error.h>
#include <filesystem>
#include <set>

namespace MapAnchor {
namespace {

using namespace Tellurion;
using namespace GdalFiles;

std::string GeoTransform(const std::string& six) {
    return "<GeoTransform>" + six + "</GeoTransform>";
}

std::string Gcp(const std::string& id, const std::string& pixel, const std::string& line,
                const std::string& x, const std::string& y) {
    return "<GCP Id=\"" + id + "\" Pixel=\"" + pixel + "\" Line=\"" + line + "\" X=\"" + x + "\" Y=\"" + y +
           "\" Z=\"7\"/>";
}

std::string Gcps(const std::string& list, const std::string& system = "") {
    return "<GCPList Projection=\"" + system + "\">" + list + "</GCPList>";
}

std::string Registered(const std::string& as) {
    return "<Metadata><MDI key=\"AREA_OR_POINT\">" + as + "</MDI></Metadata>";
}

/// GDAL takes this text; as it gives it out again, with axes, it is too long for a system.
std::string SystemNobodyReads() {
    return "LOCAL_CS[\"" + std::string(99'960, 'x') + "\",UNIT[\"metre\",1]]";
}

const std::string kThreePoints = Gcp("a", "0", "0", "500", "900") + Gcp("b", "10.9", "0.2", "600", "900") +
                                 Gcp("c", "0", "-10.9", "500", "1000");
const std::string kUtm = "<SRS>EPSG:32633</SRS>";
const std::string kPlainTerms = GeoTransform("500,10,0,4000,0,-10");

const std::string kPointsInNoPlane =
    Gcp("a", "0", "0", "0", "0") + Gcp("b", "1", "1", "1", "1") + Gcp("c", "2", "2", "2", "2");
const std::string kFlat = GeoTransform("5,1,1,7,1,1");

TEST_F(GeoTiff, TheRoadsTakeWhatTheyShould) {
    constexpr Holds kPlaced{0, true};
    constexpr Holds kSystem{0, false, true};
    constexpr Ends kNoAffine{kUnsupported, "", kInvalidTransform};
    const std::string zero = GeoTransform("0,0,0,0,0,0");
    ExpectRoads(kTiff, ".tif",
                {{"plain", Vrt(kPlainTerms), kTaken, kPlaced},
                 {"rotated_by_a_quarter_turn", Vrt(GeoTransform("5,0,2,7,2,0")), kTaken, kPlaced},
                 {"all_zero", Vrt(zero), kRefused},
                 {"column_without_size", Vrt(GeoTransform("5,0,0,7,1,2")), kRefused},
                 {"row_without_size", Vrt(GeoTransform("5,1,2,7,0,0")), kRefused},
                 {"no_size_but_a_system", Vrt(zero + kUtm), {"", kInvalidFile, kInvalidFile}, kSystem},
                 {"not_invertible", Vrt(kFlat), kNoAffine},
                 {"term_that_is_no_number", Vrt(GeoTransform("nan,1,0,7,0,1")), kNoAffine},
                 {"points_go_before_terms", Vrt(kPlainTerms + Gcps(kThreePoints)), kTaken, {3, true}},
                 {"points_on_a_line", Vrt(Gcps(kPointsInNoPlane)), kNoFit, {3}},
                 {"point_and_terms", Vrt(kPlainTerms + Gcps(Gcp("a", "0", "0", "0", "0"))), kNoFit, {1}},
                 {"point_that_is_nowhere",
                  Vrt(Gcps(kThreePoints + Gcp("d", "nan", "inf", "nan", "inf"))),
                  kNoFit,
                  {4}},
                 {"nothing", Vrt(""), {kUnsupported, "", ""}},
                 {"system_alone", Vrt(kUtm), kTaken, kSystem},
                 {"system_that_nobody_reads", Vrt(kPlainTerms + "<SRS>" + SystemNobodyReads() + "</SRS>"),
                  kNoSystem, kPlaced},
                 {"points_listed_nowhere", "ODDRASTER lists-none", kRefused},
                 {"not_a_raster", "not a raster", kRefused},
                 {"empty", "", kRefused}});
}

TEST_F(GeoTiff, ControlPointsNameWholePixels) {
    const std::string far = Gcp("far", "1e300", "-inf", "1", "2") + Gcp("odd", "nan", "-0.9", "3", "4");
    const std::string file = folder.Write("map.tif", Vrt(Gcps(kThreePoints + far, "EPSG:32633")));
    const BGeoReference reference = Good(file);
    EXPECT_EQ(PointsOf(reference),
              "a: 0 0 500 900 7\nb: 10 0 600 900 7\nc: 0 -10 500 1000 7\n"
              "far: 2147483647 -2147483648 1 2 7\nodd: 0 0 3 4 7\n");
    EXPECT_EQ(CodeOf(reference), "EPSG:32633");
}

TEST_F(GeoTiff, OnlyTheWordPointMeansPoint) {
    const std::pair<const char*, bool> cases[] = {{"Point", true},  {"Area", false},   {"point", false},
                                                  {"POINT", false}, {"Raster", false}, {"", false}};
    for (const auto& [word, is_point] : cases) {
        const auto reference = Good(kTiff, folder.Write("map.tif", Vrt(kPlainTerms + Registered(word))));
        EXPECT_EQ(reference.IsPixelAsPointRegistered(), is_point) << word;
        // The registration moves nothing.
        EXPECT_EQ(References::Terms(reference), (Six{10, 0, 500, 0, -10, 4000})) << word;
    }
}

TEST_F(GeoTiff, FailuresSayWhatIsWrong) {
    const auto thrown = [](const char* type, const std::string& detail) {
        return Thrown{type, "BRefGeoTIFF::Read", detail};
    };
    const std::string differs =
        "BRefGeoTIFF::Read # of points in the header differs from the # of points listed.";
    ExpectFailures(
        kTiff, ".tif",
        {{"none", "none",
          thrown(kInvalidFile, "Could not open the file <%> as a GeoReference file for reading.")},
         {"zero",
          Vrt(GeoTransform("0,0,0,0,0,0")),
          thrown(kInvalidFile, "File <%> is an invalid GeoTIFF file.  XDimension and/or YDimension is zero"),
          {"BRefGeoTIFF::Read Failure XDimenions and/or YDimension is zero!"}},
         {"odd",
          "ODDRASTER lists-none",
          thrown(kInvalidFile,
                 "Number of points specified in the GeoTIFF (3) differs from the number read (0)."),
          {differs}},
         {"points_on_a_line",
          Vrt(Gcps(kPointsInNoPlane)),
          thrown(kInvalidTransform, "*"),
          {"BRefGeoTIFF::Read Failure setting the BMathTransform ERROR (@)"}},
         {"flat", Vrt(kFlat),
          thrown(kInvalidTransform,
                 "Failed creating Affine(1.000000 1.000000 5.000000 1.000000 1.000000 7.000000)")}});
    // By name only points that are listed nowhere are logged.
    BGeoReference reference;
    for (const std::string& content :
         {std::string("none"), Vrt(GeoTransform("0,0,0,0,0,0")), std::string("ODDRASTER lists-none")})
        Roads::Read(folder.Write("named.tif", content), reference);
    EXPECT_EQ(log.lines, std::vector<std::string>{differs + "  Attempting to build an Affine Transform."});

    const std::string text = folder.Write("text.tif", Vrt("<SRS>" + SystemNobodyReads() + "</SRS>"));
    const std::string detail = Roads::Read(kTiff, text, reference, Roads::kStrict).detail;
    EXPECT_TRUE(detail.starts_with("Failed to get the coordinate system based on the WKT string <LOCAL_CS["));
    EXPECT_TRUE(detail.ends_with(">."));
}

struct UnitCase {
    const char* label;
    const char* code;  ///< null for none
};

constexpr UnitCase kUnits[] = {
    {"m", "METERS"}, {"ft", "INTERNATIONAL FEET"}, {"sft", "USFEET"}, {"yd", "INTERNATIONAL YARDS"},
    {"syd", "YARD"}, {"fath", "FATHOM"},           {"rd", "RODS"},    {"km", nullptr},
    {"M", nullptr},  {"metre", nullptr},           {"", nullptr},     {"m ", nullptr},
};

TEST_F(GeoTiff, TheVerticalUnitOfOneBand) {
    const auto read = [&](const std::string& bands) {
        const auto reference = Good(kTiff, folder.Write("map.tif", VrtText(kPlainTerms, bands)));
        BIdentifier identifier;
        const bool found = reference.HasVerticalUnit() &&
                           reference.GetVerticalUnit()->GetIdentifier(BString("GC"), identifier);
        return found ? identifier.Code.StdStr() : std::string();
    };
    for (const UnitCase& test : kUnits) {
        const std::string unit = "<UnitType>" + std::string(test.label) + "</UnitType>";
        for (const char* colour : {"", "<ColorInterp>Gray</ColorInterp>"})
            EXPECT_EQ(read(VrtBand(1, colour + unit)), test.code ? test.code : "") << test.label << colour;
        EXPECT_EQ(read(VrtBand(1, "<ColorInterp>Red</ColorInterp>" + unit)), "") << test.label;
        EXPECT_EQ(read(VrtBand(1, unit) + VrtBand(2, unit) + VrtBand(3, unit)), "") << test.label;
    }
}

/// An auxiliary file as Imagine writes it beside a raster that cannot hold its place.
void MakeAuxiliary(const std::string& path, const std::string& raster) {
    auto* driver = GetGDALDriverManager()->GetDriverByName("HFA");
    ASSERT_TRUE(driver);
    const char* const options[] = {"AUX=YES", raster.c_str(), nullptr};
    const Dataset made(driver->Create(path.c_str(), 20, 10, 1, GDT_Byte, const_cast<char**>(options)));
    ASSERT_TRUE(made);
    double terms[6] = {7000, 2, 0, 8000, 0, -2};
    OGRSpatialReference system;
    system.importFromEPSG(32634);
    made->SetGeoTransform(terms);
    made->SetSpatialRef(&system);
    made->SetMetadataItem("AREA_OR_POINT", "Point", "");
    made->GetRasterBand(1)->SetUnitType("ft");
}

TEST_F(GeoTiff, TheAuxiliaryFileSpeaksWhereTheRasterIsSilent) {
    const struct {
        const char* name;
        std::string reference;
        bool own_terms;
        const char* system;
        bool is_point;
    } cases[] = {
        {"silent", "", false, "none", true},
        {"terms_of_its_own", kPlainTerms + Registered("Area"), true, "none", false},
        {"system_of_its_own", kPlainTerms + kUtm, true, "EPSG:32633", true},
        {"system_that_nobody_reads", kPlainTerms + "<SRS>" + SystemNobodyReads() + "</SRS>", true,
         "EPSG:32634", true},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        const TempFolder own;
        const std::string file = own.Write("map.tif", Vrt(test.reference));
        MakeAuxiliary(own / "map.aux", "DEPENDENT_FILE=map.tif");
        for (const bool by_name : kBothRoads) {
            const BGeoReference reference = by_name ? Good(file) : Good(kTiff, file);
            ASSERT_TRUE(reference.HasMathTransform());
            EXPECT_EQ(References::Terms(reference)[2], test.own_terms ? 500 : 7000);
            // A text of the raster's own that is merely empty is an answer.
            EXPECT_EQ(CodeOf(reference), test.system);
            EXPECT_EQ(reference.IsPixelAsPointRegistered(), test.is_point);
            ASSERT_TRUE(reference.HasVerticalUnit());
            EXPECT_EQ(reference.GetVerticalUnit()->GetName(), BString("foot"));
        }
    }
}

TEST_F(GeoTiff, ReadingLeavesNoTraceInTheFolder) {
    const std::string file = MakeTiff(folder / "map.tif");
    const std::string dem = folder.Write("grid.asc",
                                         "ncols 2\nnrows 2\nxllcorner 5\nyllcorner 6\ncellsize 1\n"
                                         "1 2\n3 4\n");
    const std::string before = TempFolder::Slurp(file) + TempFolder::Slurp(dem);
    std::filesystem::permissions(folder / ".",
                                 std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    for (const bool by_name : {true, false, true, false}) {
        BGeoReference reference;
        Read(by_name, file, reference);
        EXPECT_EQ(Read(by_name, dem, reference).type, "");
    }
    std::filesystem::permissions(folder / ".", std::filesystem::perms::owner_all);
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder / "."))
        names.insert(entry.path().filename().string());
    EXPECT_EQ(names, (std::set<std::string>{"grid.asc", "map.tif"}));
    EXPECT_EQ(TempFolder::Slurp(file) + TempFolder::Slurp(dem), before);
}

int errors_heard = 0;
void CPL_STDCALL HearError(CPLErr, CPLErrorNum, const char*) {
    ++errors_heard;
}

TEST_F(GeoTiff, TheHostsErrorStateIsItsOwn) {
    CPLErrorSetState(CE_Warning, 42, "of the host");
    CPLPushErrorHandler(HearError);
    errors_heard = 0;
    BGeoReference reference;
    Roads::Read(kTiff, folder.Write("cut.tif", std::string("II*\0\x08\0\0\0\xFF\xFF", 10)), reference);
    EXPECT_EQ(Roads::Save(kTiff, folder / "none.tif", reference).type, "BFileAccessException");
    CPLPopErrorHandler();
    EXPECT_EQ(errors_heard, 0);
    EXPECT_EQ(CPLGetLastErrorNo(), 42);
    EXPECT_STREQ(CPLGetLastErrorMsg(), "of the host");
    CPLErrorReset();
}

TEST_F(GeoTiff, AHostThatTookTheDriversAwayIsServed) {
    const std::string file = folder.Write("map.tif", Vrt(kPlainTerms));
    BGeoReference reference;
    ASSERT_EQ(Roads::Read(kTiff, file, reference).type, "");
    GDALDestroyDriverManager();
    EXPECT_EQ(Roads::Read(kTiff, file, reference).type, "");
}

}  // namespace
}  // namespace MapAnchor

// GeoTIFF and what else GDAL opens, through the front door.

#include <Tellurion/BIdentifier.h>
#include <Tellurion/BLinearUnit.h>

#include "GeoTiffRoads.h"

#include <cpl_error.h>
#include <filesystem>
#include <set>
#include <thread>

namespace MapAnchor {
namespace {

using namespace Tellurion;
using namespace GdalFiles;

constexpr const char* kInvalidFile = "BGeoReferenceInvalidReferenceFileException";
constexpr const char* kInvalidTransform = "BGeoReferenceInvalidTransformException";
constexpr const char* kInvalidSystem = "BGeoReferenceInvalidCoordSysException";
constexpr const char* kUnsupported = "BUnsupportedFileTypeException";

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

struct RoadCase {
    const char* name;
    std::string content;
    std::string by_name;  ///< type of what is thrown, empty for success
    std::string by_type;
    std::string strict;  ///< by type with both flags set
    bool has_transform;
    std::size_t points;
};

TEST_F(GeoTiff, TheRoadsTakeWhatTheyShould) {
    const std::vector<RoadCase> cases = {
        {"plain", Vrt(kPlainTerms), "", "", "", true, 0},
        {"rotated_by_a_quarter_turn", Vrt(GeoTransform("5,0,2,7,2,0")), "", "", "", true, 0},
        {"all_zero", Vrt(GeoTransform("0,0,0,0,0,0")), kUnsupported, kInvalidFile, kInvalidFile, false, 0},
        {"column_without_size", Vrt(GeoTransform("5,0,0,7,1,2")), kUnsupported, kInvalidFile, kInvalidFile,
         false, 0},
        {"row_without_size", Vrt(GeoTransform("5,1,2,7,0,0")), kUnsupported, kInvalidFile, kInvalidFile,
         false, 0},
        {"no_size_but_a_system", Vrt(GeoTransform("0,0,0,0,0,0") + kUtm), "", kInvalidFile, kInvalidFile,
         false, 0},
        {"not_invertible", Vrt(GeoTransform("5,1,1,7,1,1")), kUnsupported, "", kInvalidTransform, false, 0},
        {"term_that_is_no_number", Vrt(GeoTransform("nan,1,0,7,0,1")), kUnsupported, "", kInvalidTransform,
         false, 0},
        {"points_go_before_terms", Vrt(kPlainTerms + Gcps(kThreePoints)), "", "", "", true, 3},
        {"points_on_a_line",
         Vrt(Gcps(Gcp("a", "0", "0", "0", "0") + Gcp("b", "1", "1", "1", "1") +
                  Gcp("c", "2", "2", "2", "2"))),
         "", "", kInvalidTransform, false, 3},
        {"two_points", Vrt(kPlainTerms + Gcps(Gcp("a", "0", "0", "0", "0") + Gcp("b", "1", "1", "1", "1"))),
         "", "", kInvalidTransform, false, 2},
        {"point_that_is_nowhere", Vrt(Gcps(kThreePoints + Gcp("d", "nan", "inf", "nan", "inf"))), "", "",
         kInvalidTransform, false, 4},
        {"nothing", Vrt(""), kUnsupported, "", "", false, 0},
        {"system_alone", Vrt(kUtm), "", "", "", false, 0},
        {"system_that_nobody_reads", Vrt(kPlainTerms + "<SRS>" + SystemNobodyReads() + "</SRS>"), "", "",
         kInvalidSystem, true, 0},
        {"points_listed_nowhere", "ODDRASTER lists-none", kUnsupported, kInvalidFile, kInvalidFile, false, 0},
        {"not_a_raster", "not a raster", kUnsupported, kInvalidFile, kInvalidFile, false, 0},
        {"empty", "", kUnsupported, kInvalidFile, kInvalidFile, false, 0},
    };
    for (const RoadCase& test : cases) {
        SCOPED_TRACE(test.name);
        const std::string file = folder.Write(std::string(test.name) + ".tif", test.content);
        BGeoReference by_name, by_type, strict;
        EXPECT_EQ(ReadByName(file, by_name).type, test.by_name);
        EXPECT_EQ(by_name.HasMathTransform(), test.has_transform);
        EXPECT_EQ(by_name.PointPairVector.size(), test.points);
        EXPECT_EQ(ReadByType(file, by_type).type, test.by_type);
        EXPECT_EQ(by_type.HasMathTransform(), test.has_transform);
        EXPECT_EQ(ReadByType(file, strict, kStrict).type, test.strict);
    }
}

TEST_F(GeoTiff, ControlPointsNameWholePixels) {
    const std::string far = Gcp("far", "1e300", "-inf", "1", "2") + Gcp("odd", "nan", "-0.9", "3", "4");
    const std::string file = folder.Write("map.tif", Vrt(Gcps(kThreePoints + far, "EPSG:32633")));
    BGeoReference reference;
    ASSERT_EQ(ReadByName(file, reference).type, "");
    std::vector<std::array<int, 2>> pixels;
    for (const BPointPair& pair : reference.PointPairVector) {
        pixels.push_back({pair.Column, pair.Row});
        EXPECT_TRUE(pair.Enabled);
    }
    EXPECT_EQ(pixels, (std::vector<std::array<int, 2>>{
                          {0, 0}, {10, 0}, {0, -10}, {2147483647, -2147483647 - 1}, {0, 0}}));
    EXPECT_EQ(reference.PointPairVector[1].Name, BString("b"));
    EXPECT_EQ(reference.PointPairVector[1].World.x, 600);
    EXPECT_EQ(reference.PointPairVector[2].World.y, 1000);
    EXPECT_EQ(reference.PointPairVector[0].World.z, 7);
    ASSERT_TRUE(reference.HasCoordSys());
    EXPECT_EQ(reference.CoordSys->ToEPSGCode(), BString("EPSG:32633"));
}

TEST_F(GeoTiff, OnlyTheWordPointMeansPoint) {
    const std::pair<const char*, bool> cases[] = {{"Point", true},  {"Area", false},   {"point", false},
                                                  {"POINT", false}, {"Raster", false}, {"", false}};
    for (const auto& [word, is_point] : cases) {
        const std::string file = folder.Write("map.tif", Vrt(kPlainTerms + Registered(word)));
        BGeoReference reference;
        ASSERT_EQ(ReadByType(file, reference).type, "");
        EXPECT_EQ(reference.IsPixelAsPointRegistered(), is_point) << word;
        // The registration moves nothing.
        EXPECT_EQ(TermsOf(reference), (std::array<double, 6>{10, 0, 500, 0, -10, 4000})) << word;
    }
}

TEST_F(GeoTiff, FailuresSayWhatIsWrong) {
    BGeoReference reference;
    const std::string none = folder.Write("none.tif", "none");
    Thrown thrown = ReadByType(none, reference);
    EXPECT_EQ(thrown.source, "BRefGeoTIFF::Read");
    EXPECT_EQ(thrown.detail, "Could not open the file <" + none + "> as a GeoReference file for reading.");
    ReadByName(none, reference);
    EXPECT_TRUE(log.lines.empty());

    const std::string zero = folder.Write("zero.tif", Vrt(GeoTransform("0,0,0,0,0,0")));
    thrown = ReadByType(zero, reference);
    EXPECT_EQ(thrown.detail,
              "File <" + zero + "> is an invalid GeoTIFF file.  XDimension and/or YDimension is zero");
    ReadByName(zero, reference);
    EXPECT_EQ(log.lines,
              std::vector<std::string>{"BRefGeoTIFF::Read Failure XDimenions and/or YDimension is zero!"});
    log.lines.clear();

    const std::string odd = folder.Write("odd.tif", "ODDRASTER lists-none");
    EXPECT_EQ(ReadByType(odd, reference).detail,
              "Number of points specified in the GeoTIFF (3) differs from the number read (0).");
    ReadByName(odd, reference);
    EXPECT_EQ(log.lines, (std::vector<std::string>{
                             "BRefGeoTIFF::Read # of points in the header differs from the # of points "
                             "listed.",
                             "BRefGeoTIFF::Read # of points in the header differs from the # of points "
                             "listed.  Attempting to build an Affine Transform."}));
    log.lines.clear();

    const std::string two = folder.Write("two.tif", Vrt(Gcps(Gcp("a", "0", "0", "0", "0"))));
    thrown = ReadByType(two, reference, kStrict);
    EXPECT_EQ(thrown.source, "BRefGeoTIFF::Read");
    ASSERT_EQ(log.lines.size(), 1U);
    EXPECT_EQ(log.lines[0],
              "BRefGeoTIFF::Read Failure setting the BMathTransform ERROR (" + thrown.detail + ")");

    const std::string flat = folder.Write("flat.tif", Vrt(GeoTransform("5,1,1,7,1,1")));
    EXPECT_EQ(ReadByType(flat, reference, kStrict).detail,
              "Failed creating Affine(1.000000 1.000000 5.000000 1.000000 1.000000 7.000000)");

    const std::string text = folder.Write("text.tif", Vrt("<SRS>" + SystemNobodyReads() + "</SRS>"));
    thrown = ReadByType(text, reference, kStrict);
    EXPECT_EQ(
        thrown.detail.rfind("Failed to get the coordinate system based on the WKT string <LOCAL_CS[", 0), 0U);
    EXPECT_EQ(thrown.detail.substr(thrown.detail.size() - 2), ">.");
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
        BGeoReference reference;
        EXPECT_EQ(ReadByType(folder.Write("map.tif", VrtText(kPlainTerms, bands)), reference).type, "");
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
    struct Case {
        const char* name;
        std::string reference;
        bool own_terms;
        std::string system;
        bool is_point;
    };
    const Case cases[] = {
        {"silent", "", false, "", true},
        {"terms_of_its_own", kPlainTerms + Registered("Area"), true, "", false},
        {"system_of_its_own", kPlainTerms + kUtm, true, "EPSG:32633", true},
        {"system_that_nobody_reads", kPlainTerms + "<SRS>" + SystemNobodyReads() + "</SRS>", true,
         "EPSG:32634", true},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        const TempFolder own;
        const std::string file = own.Write("map.tif", Vrt(test.reference));
        MakeAuxiliary(own / "map.aux", "DEPENDENT_FILE=map.tif");
        for (const bool by_name : {true, false}) {
            BGeoReference reference;
            ASSERT_EQ(by_name ? ReadByName(file, reference).type : ReadByType(file, reference, kStrict).type,
                      "");
            ASSERT_TRUE(reference.HasMathTransform());
            EXPECT_EQ(TermsOf(reference)[2], test.own_terms ? 500 : 7000);
            // A text of the raster's own that is merely empty is an answer.
            EXPECT_EQ(reference.HasCoordSys() ? reference.CoordSys->ToEPSGCode().StdStr() : "", test.system);
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
    for (int i = 0; i < 2; ++i) {
        BGeoReference reference;
        ReadByName(file, reference);
        ReadByType(file, reference);
        EXPECT_EQ(ReadByName(dem, reference).type, "");
        EXPECT_EQ(ReadByType(dem, reference).type, "");
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
    ReadByType(folder.Write("cut.tif", std::string("II*\0\x08\0\0\0\xFF\xFF", 10)), reference);
    EXPECT_EQ(SaveByType(folder / "none.tif", reference).type, "BFileAccessException");
    CPLPopErrorHandler();
    EXPECT_EQ(errors_heard, 0);
    EXPECT_EQ(CPLGetLastErrorNo(), 42);
    EXPECT_STREQ(CPLGetLastErrorMsg(), "of the host");
    CPLErrorReset();
}

TEST_F(GeoTiff, AHostThatTookTheDriversAwayIsServed) {
    const std::string file = folder.Write("map.tif", Vrt(kPlainTerms));
    BGeoReference reference;
    ASSERT_EQ(ReadByType(file, reference).type, "");
    GDALDestroyDriverManager();
    EXPECT_EQ(ReadByType(file, reference).type, "");
}

TEST_F(GeoTiff, FilesAreReadInThreadsAtOnce) {
    std::vector<std::thread> threads;
    std::array<int, 4> wrong{};
    for (std::size_t t = 0; t < wrong.size(); ++t) {
        const std::string column = std::to_string(t * 1000);
        const std::string file =
            folder.Write("map" + column + ".tif", Vrt(GeoTransform(column + ",10,0,4000,0,-10") + kUtm));
        threads.emplace_back([file, t, &wrong] {
            for (int i = 0; i < 50; ++i) {
                BGeoReference reference;
                const bool read = ReadByType(file, reference, kStrict).type.empty();
                if (!read || TermsOf(reference)[2] != static_cast<double>(t) * 1000) ++wrong[t];
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, (std::array<int, 4>{}));
}

}  // namespace
}  // namespace MapAnchor

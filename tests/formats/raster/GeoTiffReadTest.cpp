// GeoTIFF and what else GDAL opens, through the entry point.

#include <Tellurion/BIdentifier.h>
#include <Tellurion/BLinearUnit.h>

#include "GeoTiffRoads.h"

#include <cpl_error.h>
#include <filesystem>

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

std::string Gcps(const std::string& list, const std::string& system = "", const std::string& more = "") {
    return Vrt("<GCPList Projection=\"" + system + "\">" + list + "</GCPList>" + more);
}

std::string Registered(const std::string& as) {
    return "<Metadata><MDI key=\"AREA_OR_POINT\">" + as + "</MDI></Metadata>";
}

const std::string kThreePoints = Gcp("a", "0", "0", "500", "900") + Gcp("b", "10.9", "0.2", "600", "900") +
                                 Gcp("c", "0", "-10.9", "500", "1000");
const std::string kUtm = "<SRS>EPSG:32633</SRS>";
const std::string kPlainTerms = GeoTransform("500,10,0,4000,0,-10");
const std::string kPointsOnALine =
    Gcp("a", "0", "0", "0", "0") + Gcp("b", "1", "1", "1", "1") + Gcp("c", "2", "2", "2", "2");
const std::string kZero = GeoTransform("0,0,0,0,0,0");
const std::string kFlat = GeoTransform("5,1,1,7,1,1");
/// GDAL accepts this text; as it returns it, with axes, it is too long for a system.
const std::string kUnreadable = "<SRS>LOCAL_CS[\"" + std::string(99'960, 'x') + "\",UNIT[\"metre\",1]]</SRS>";

TEST_F(GeoTiff, IsReadByNameAndByType) {
    const ReadTable reads(kTiff, ".tif", "BRefGeoTIFF::Read");
    constexpr Holds kPlaced{0, true};
    constexpr Holds kSystem{0, false, true};
    constexpr Ends kNoAffine{kUnsupported, "", kInvalidTransform};
    reads.Places("registration_moves_nothing", Vrt(kPlainTerms + Registered("Point")),
                 {10, 0, 500, 0, -10, 4000});
    reads.Ends("rotated_by_a_quarter_turn", Vrt(GeoTransform("5,0,2,7,2,0")), kTaken, kPlaced);
    reads.Ends("all_zero", Vrt(kZero), kRefused);
    reads.Ends("column_without_size", Vrt(GeoTransform("5,0,0,7,1,2")), kRefused);
    reads.Ends("row_without_size", Vrt(GeoTransform("5,1,2,7,0,0")), kRefused);
    reads.Ends("no_size_but_a_system", Vrt(kZero + kUtm), kByNameAlone, kSystem);
    reads.Ends("not_invertible", Vrt(kFlat), kNoAffine);
    reads.Ends("term_that_is_not_a_number", Vrt(GeoTransform("nan,1,0,7,0,1")), kNoAffine);
    reads.Ends("points_on_a_line", Gcps(kPointsOnALine), kNoFit, {3});
    reads.Ends("point_and_terms", Gcps(Gcp("a", "0", "0", "0", "0"), "", kPlainTerms), kNoFit, {1});
    reads.Ends("point_that_is_nowhere", Gcps(kThreePoints + Gcp("d", "nan", "inf", "nan", "inf")), kNoFit,
               {4});
    reads.Ends("nothing", Vrt(""), {kUnsupported, "", ""});
    reads.Ends("system_alone", Vrt(kUtm), kTaken, kSystem);
    reads.Ends("unreadable_system", Vrt(kPlainTerms + kUnreadable), kNoSystem, kPlaced);
    reads.Ends("points_listed_nowhere", "ODDRASTER lists-none", kRefused);
    reads.Ends("not_a_raster", "not a raster", kRefused);

    const std::string differs =
        "BRefGeoTIFF::Read # of points in the header differs from the # of points listed.";
    reads.Fails("none", kInvalidFile, "Could not open the file <%> as a GeoReference file for reading.");
    reads.Fails(Vrt(kZero), kInvalidFile,
                "File <%> is an invalid GeoTIFF file.  XDimension and/or YDimension is zero",
                {"BRefGeoTIFF::Read Failure XDimenions and/or YDimension is zero!"});
    reads.Fails("ODDRASTER lists-none", kInvalidFile,
                "Number of points specified in the GeoTIFF (3) differs from the number read (0).", {differs});
    reads.Fails(Gcps(kPointsOnALine), kInvalidTransform, "*",
                {"BRefGeoTIFF::Read Failure setting the BMathTransform ERROR (@)"});
    reads.Fails(Vrt(kFlat), kInvalidTransform,
                "Failed creating Affine(1.000000 1.000000 5.000000 1.000000 1.000000 7.000000)");
    BGeoReference reference;
    Roads::Read(folder.Write("named.tif", "ODDRASTER lists-none"), reference);
    EXPECT_EQ(log.lines, std::vector<std::string>{differs + "  Attempting to build an Affine Transform."});
    const Thrown unread =
        Roads::Read(kTiff, folder.Write("text.tif", Vrt(kUnreadable)), reference, Roads::kStrict);
    EXPECT_TRUE(
        unread.detail.starts_with("Failed to get the coordinate system based on the WKT string <LOCAL_CS["));
}

TEST_F(GeoTiff, CutsControlPointsToWholePixels) {
    const std::string far = Gcp("far", "1e300", "-inf", "1", "2") + Gcp("odd", "nan", "-0.9", "3", "4");
    const BGeoReference reference = Good(folder.Write("map.tif", Gcps(kThreePoints + far, "EPSG:32633")));
    EXPECT_EQ(PointsOf(reference),
              "a: 0 0 500 900 7\nb: 10 0 600 900 7\nc: 0 -10 500 1000 7\n"
              "far: 2147483647 -2147483648 1 2 7\nodd: 0 0 3 4 7\n");
    EXPECT_EQ(CodeOf(reference), "EPSG:32633");
}

TEST_F(GeoTiff, ReadsRegistrationAndVerticalUnitToTheLetter) {
    for (const auto& [word, is_point] : {std::pair{"Point", true}, {"Area", false}, {"point", false}})
        EXPECT_EQ(Good(kTiff, folder.Write("map.tif", Vrt(Registered(word)))).IsPixelAsPointRegistered(),
                  is_point);
    const auto read = [&](const std::string& bands) {
        const auto reference = Good(kTiff, folder.Write("map.tif", VrtText(kPlainTerms, bands)));
        BIdentifier code("", "KILOMETERS");
        if (reference.HasVerticalUnit()) reference.GetVerticalUnit()->GetIdentifier("GC", code);
        return code.Code.StdStr();
    };
    for (const auto& [label, code] : kUnits) {
        const std::string unit = "<UnitType>" + std::string(label) + "</UnitType>";
        EXPECT_EQ(read(VrtBand(1, unit)), code);
        EXPECT_EQ(read(VrtBand(1, "<ColorInterp>Gray</ColorInterp>" + unit)), code);
        EXPECT_EQ(read(VrtBand(1, "<ColorInterp>Red</ColorInterp>" + unit)), "KILOMETERS") << label;
        EXPECT_EQ(read(VrtBand(1, unit) + VrtBand(2, unit)), "KILOMETERS") << label;
    }
    EXPECT_EQ(read(VrtBand(1, "<UnitType>M</UnitType>")), "KILOMETERS");
}

/// An auxiliary file as Imagine writes it beside a raster that cannot store its place.
void MakeAuxiliary(const std::string& path) {
    auto* driver = GetGDALDriverManager()->GetDriverByName("HFA");
    ASSERT_TRUE(driver);
    const char* const options[] = {"AUX=YES", "DEPENDENT_FILE=map.tif", nullptr};
    const Dataset made(driver->Create(path.c_str(), 20, 10, 1, GDT_Byte, const_cast<char**>(options)));
    ASSERT_TRUE(made);
    double terms[6] = {7000, 2, 0, 8000, 0, -2};
    made->SetGeoTransform(terms);
    made->SetProjection(References::Of("32634", {1, 0, 0, 0, 1, 0}).CoordSys->ToWKT().Utf8());
    made->SetMetadataItem("AREA_OR_POINT", "Point", "");
    made->GetRasterBand(1)->SetUnitType("ft");
}

TEST_F(GeoTiff, ReadsTheAuxiliaryFileWhereTheRasterIsSilent) {
    // A text of the raster's own that is merely empty counts.
    const std::tuple<std::string, double, const char*, bool> cases[] = {
        {"", 7000, "none", true},
        {kPlainTerms + Registered("Area"), 500, "none", false},
        {kPlainTerms + kUtm, 500, "EPSG:32633", true},
        {kPlainTerms + kUnreadable, 500, "EPSG:32634", true}};
    MakeAuxiliary(folder / "map.aux");
    for (const auto& [content, x, system, is_point] : cases) {
        const std::string file = folder.Write("map.tif", Vrt(content));
        for (const BGeoReference& reference : {Good(file), Good(kTiff, file)}) {
            EXPECT_EQ(References::Terms(reference)[2], x);
            EXPECT_EQ(CodeOf(reference), system);
            EXPECT_EQ(reference.IsPixelAsPointRegistered(), is_point);
            ASSERT_TRUE(reference.HasVerticalUnit());
            EXPECT_EQ(reference.GetVerticalUnit()->GetName(), BString("foot"));
        }
    }
}

TEST_F(GeoTiff, LeavesNoTraceInTheFolder) {
    using std::filesystem::perms;
    const std::string file = MakeTiff(folder / "map.tif");
    const std::string dem =
        folder.Write("grid.asc", "ncols 2\nnrows 2\nxllcorner 5\nyllcorner 6\ncellsize 1\n1 2\n3 4\n");
    const std::string before = TempFolder::Slurp(file) + TempFolder::Slurp(dem);
    std::filesystem::permissions(folder / ".", perms::owner_read | perms::owner_exec);
    for (const bool by_name : kBothRoads) {
        BGeoReference reference;
        Read(by_name, file, reference);
        EXPECT_EQ(Read(by_name, dem, reference).type, "");
    }
    std::filesystem::permissions(folder / ".", perms::owner_all);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder / "."), {}), 2);
    EXPECT_EQ(TempFolder::Slurp(file) + TempFolder::Slurp(dem), before);
}

int errors_heard = 0;
void CPL_STDCALL HearError(CPLErr, CPLErrorNum, const char*) {
    ++errors_heard;
}

TEST_F(GeoTiff, KeepsTheHostsErrorStateAndDoesWithoutItsDrivers) {
    const std::string file = folder.Write("map.tif", Vrt(kPlainTerms));
    CPLErrorSetState(CE_Warning, 42, "of the host");
    CPLPushErrorHandler(HearError);
    BGeoReference reference;
    Roads::Read(kTiff, folder.Write("cut.tif", std::string("II*\0\x08\0\0\0\xFF\xFF", 10)), reference);
    EXPECT_EQ(Roads::Save(kTiff, folder / "none.tif", reference).type, kNoAccess);
    CPLPopErrorHandler();
    EXPECT_EQ(errors_heard, 0);
    EXPECT_EQ(CPLGetLastErrorNo(), 42);
    EXPECT_STREQ(CPLGetLastErrorMsg(), "of the host");
    CPLErrorReset();
    GDALDestroyDriverManager();
    EXPECT_TRUE(Good(kTiff, file).HasMathTransform());
}

}  // namespace
}  // namespace MapAnchor

#include <gtest/gtest.h>

#include "RunTool.h"
#include "TempFolder.h"

#include <gdal_priv.h>
#include <ogr_spatialref.h>

#include <cmath>

namespace {

using nlohmann::json;

/// A hundred kilometres by fifty in the middle of the UTM zone, a GeoTIFF of the same in the
/// next zone's numbers, and some that are not quite the same.
class ManyReferences : public testing::Test {
protected:
    ManyReferences() {
        folder.Write("utm32.tfw", "100\n0\n0\n-100\n650050\n5299950\n");
        folder.Write("shifted.tfw", "100\n0\n0\n-100\n650080\n5299910\n");
        folder.Write("double.tfw", "200\n0\n0\n-200\n650100\n5299900\n");
        folder.Write("bare.tfw", "100\n0\n0\n-100\n650050\n5299950\n");
        for (const char* name : {"utm32.prj", "shifted.prj", "double.prj"})
            folder.Write(name, PrjOf("EPSG:32632"));
        folder.Write("east.tfw", "0.001\n0\n0\n-0.001\n179.5005\n10.4995\n");
        folder.Write("west.tfw", "0.001\n0\n0\n-0.001\n-180.4995\n10.4995\n");
        folder.Write("east.prj", PrjOf("EPSG:4326"));
        folder.Write("west.prj", PrjOf("EPSG:4326"));
    }
    ToolRun Run(const std::string& words) const { return RunTool(Words(words, folder / "")); }
    /// The raster of utm32.tfw, with control points of zone 33 that PROJ has computed.
    void WriteZone33() const {
        GDALAllRegister();
        OGRSpatialReference zone32, zone33;
        zone32.importFromEPSG(32632);
        zone33.importFromEPSG(32633);
        const std::unique_ptr<OGRCoordinateTransformation> way(
            OGRCreateCoordinateTransformation(&zone32, &zone33));
        std::vector<GDAL_GCP> points(9);
        GDALInitGCPs(9, points.data());
        for (int i = 0; i < 9; ++i) {
            GDAL_GCP& point = points[static_cast<std::size_t>(i)];
            point.dfGCPPixel = i % 3 * 500.0;
            point.dfGCPLine = std::floor(i / 3) * 250.0;
            point.dfGCPX = 650000 + 100 * point.dfGCPPixel;
            point.dfGCPY = 5300000 - 100 * point.dfGCPLine;
            way->Transform(1, &point.dfGCPX, &point.dfGCPY);
        }
        const GDALDatasetUniquePtr raster(GetGDALDriverManager()->GetDriverByName("GTiff")->Create(
            (folder / "zone33.tif").c_str(), 1000, 500, 1, GDT_Byte, nullptr));
        raster->SetGCPs(9, points.data(), &zone33);
        GDALDeinitGCPs(9, points.data());
    }

    const TempFolder folder;
};

struct DiffCase {
    const char* name;
    const char* words;
    int status;
    double units;   ///< largest distance in map units
    double pixels;  ///< and in pixels; below 0 for a failure
    const char* id = "";
};

TEST_F(ManyReferences, DistanceOfTwo) {
    const DiffCase cases[] = {
        {"same", "%utm32.tfw %utm32.tfw --size 1000x500", 0, 0, 0},
        {"shifted", "%utm32.tfw %shifted.tfw --size 1000x500", 0, 50, 0.5},
        {"in_pixels_of_the_first", "%double.tfw %shifted.tfw --size 1x1", 0, 92.19544457292888,
         0.4609772228646444},
        {"a_turn_apart", "%east.tfw %west.tfw --size 1000x1000", 0, 0, 0},
        {"one_without_a_system", "%utm32.tfw %bare.tfw --size 1000x500", 3, 0, 0, "crs-missing"},
        {"within", "%utm32.tfw %shifted.tfw --size 9x9 --max-pixels 0.6", 0, 50, 0.5},
        {"too_far", "%utm32.tfw %shifted.tfw --size 9x9 --max-pixels 0.4", 2, 50, 0.5, "distance-exceeded"},
        {"unknown_size", "%utm32.tfw %shifted.tfw", 2, 0, -1},
        {"missing_file", "%utm32.tfw %none.tfw", 2, 0, -1},
    };
    for (const DiffCase& test : cases) {
        const ToolRun run = Run(std::string("diff --json ") + test.words);
        EXPECT_EQ(run.status, test.status) << test.name << run.err << run.out;
        const json ours = run.Ours();
        EXPECT_EQ(ours["ok"], test.pixels >= 0) << test.name;
        const auto& remarks = ours["diagnostics"];
        EXPECT_EQ(remarks.empty() ? "" : remarks.back().value("id", ""), test.id) << test.name;
        if (test.pixels < 0) continue;
        EXPECT_EQ(ours["distances"].size(), 5U) << test.name;
        EXPECT_NEAR(ours["largest"]["distance"].get<double>(), test.units, 1e-8) << test.name;
        EXPECT_NEAR(ours["largest"]["pixels"].get<double>(), test.pixels, 1e-9) << test.name;
    }
}

// The size comes from the raster, its positions from another zone; the affine through
// its curved points leaves an error of its own, told as the residual.
TEST_F(ManyReferences, AnotherSystemIsTransformed) {
    WriteZone33();
    const ToolRun run = Run("diff --json %utm32.tfw %zone33.tif");
    const json ours = run.Ours();
    ASSERT_EQ(ours["ok"], true) << run.out;
    EXPECT_EQ(ours["distances"][2]["column"], 1000.0);
    EXPECT_EQ(ours["units"], "metre");
    EXPECT_GT(ours["largest"]["pixels"].get<double>(), 0.01);
    EXPECT_LT(ours["largest"]["pixels"].get<double>(), 2.0);
    const ToolRun text = Run("diff %utm32.tfw %zone33.tif");
    EXPECT_NE(text.out.find("lower right"), std::string::npos);
}

struct CheckCase {
    const char* name;
    const char* words;
    int status;
    std::vector<std::string> ids;
};

TEST_F(ManyReferences, AreJudged) {
    WriteZone33();
    const CheckCase cases[] = {
        {"nothing_asked", "%utm32.tfw", 0, {}},
        {"system", "%utm32.tfw --expect-crs EPSG:32632", 0, {}},
        {"system_in_other_words", "%utm32.tfw --expect-crs NUTM32~WGS84", 0, {}},
        {"wrong_system", "%utm32.tfw --expect-crs 25832", 2, {"crs-mismatch"}},
        {"no_system", "%bare.tfw --expect-crs 25832", 2, {"crs-missing"}},
        {"within", "%utm32.tfw --size 1000x500 --within 10,47,13,48", 0, {}},
        {"too_wide", "%utm32.tfw --size 9000x500 --within 10,47,13,48", 2, {"outside"}},
        {"across_the_antimeridian", "%east.tfw --size 1000x1000 --within 179,9,-179,11", 0, {}},
        {"not_the_long_way_round", "%east.tfw --size 1000x1000 --within=-179,9,179,11", 2, {"outside"}},
        {"within_itself", "%east.tfw --size 1000x1000 --within 179.5,9.5,-179.5,10.5", 0, {}},
        {"within_a_file", "%utm32.tfw --size 400x200 --within %zone33.tif", 2, {"outside"}},
        {"nowhere", "%bare.tfw --within 10,47,13,48", 2, {"no-footprint", "extent-unknown"}},
        {"residuals", "%zone33.tif --max-rmse 2", 0, {}},
        {"large_residuals", "%zone33.tif --max-rmse 1e-6", 2, {"rmse-exceeded"}},
        {"no_points", "%utm32.tfw --max-rmse 1", 2, {"rmse-unknown"}},
        {"no_file", "%none.tfw", 2, {}},
        {"two_of_three", "%utm32.tfw %bare.tfw %utm32.tfw --expect-crs 32632", 3, {}},
    };
    for (const CheckCase& test : cases) {
        const ToolRun run = Run(std::string("check --json ") + test.words);
        EXPECT_EQ(run.status, test.status) << test.name << run.err << run.out;
        const json ours = run.Ours();
        EXPECT_EQ(ours["passed"], test.status != 2) << test.name;
        std::vector<std::string> ids;
        for (const json& remark : ours["diagnostics"])
            ids.push_back(remark.value("id", ""));
        EXPECT_EQ(ids, test.ids) << test.name << run.out;
    }
    for (const char* option :
         {"--expect-crs=NOWHERE", "--within=1,2,3", "--within=0,50,1,40", "--within=none.tif"})
        EXPECT_EQ(Run(std::string("check %utm32.tfw ") + option).status, 64) << option;
}

}  // namespace

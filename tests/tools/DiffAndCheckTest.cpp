#include <gtest/gtest.h>

#include "GdalFiles.h"
#include "RunTool.h"

#include <ogr_spatialref.h>

namespace {

using nlohmann::json;

/// A hundred kilometres by fifty in the middle of the UTM zone, the same in pixels of five
/// kilometres and in the next zone's coordinates, and some that are not quite the same.
class ManyReferences : public testing::Test {
protected:
    ManyReferences() {
        for (const auto& [name, content] : {std::pair{"utm32", "100\n0\n0\n-100\n650050\n5299950\n"},
                                            {"coarse", "5000\n0\n0\n-5000\n652500\n5297500\n"},
                                            {"shifted", "100\n0\n0\n-100\n650080\n5299910\n"},
                                            {"double", "200\n0\n0\n-200\n650100\n5299900\n"},
                                            {"bare", "100\n0\n0\n-100\n650050\n5299950\n"},
                                            {"east", "0.001\n0\n0\n-0.001\n179.5005\n10.4995\n"},
                                            {"west", "0.001\n0\n0\n-0.001\n-180.4995\n10.4995\n"}})
            folder.Write(std::string(name) + ".tfw", content);
        for (const char* name : {"utm32.prj", "coarse.prj", "shifted.prj", "double.prj"})
            folder.Write(name, PrjOf("EPSG:32632"));
        for (const char* name : {"east.prj", "west.prj"})
            folder.Write(name, PrjOf("EPSG:4326"));
    }
    /// The raster of coarse.tfw, with control points of zone 33 that PROJ has computed.
    void WriteZone33() const {
        OGRSpatialReference zone32, zone33;
        zone32.importFromEPSG(32632);
        zone33.importFromEPSG(32633);
        const std::unique_ptr<OGRCoordinateTransformation> to_zone33(
            OGRCreateCoordinateTransformation(&zone32, &zone33));
        std::string points;
        for (int i = 0; i < 9; ++i) {
            const int column = i % 3 * 10, row = i / 3 * 5;
            double x = 650000 + 5000.0 * column, y = 5300000 - 5000.0 * row;
            to_zone33->Transform(1, &x, &y);
            points += "<GCP Id=\"\" Pixel=\"" + std::to_string(column) + "\" Line=\"" + std::to_string(row) +
                      "\" X=\"" + std::to_string(x) + "\" Y=\"" + std::to_string(y) + "\"/>";
        }
        folder.Write("zone33.tif",
                     GdalFiles::Vrt("<GCPList Projection=\"EPSG:32633\">" + points + "</GCPList>"));
    }

    const ToolFolder folder;
};

struct DiffCase {
    const char* words;
    int status;
    double units;   ///< largest distance in map units
    double pixels;  ///< and in pixels; below 0 for a failure
    const char* id = "";
};

TEST_F(ManyReferences, DistanceOfTwo) {
    const DiffCase cases[] = {
        {"%utm32.tfw %utm32.tfw --size 1000x500", 0, 0, 0},
        {"%utm32.tfw %shifted.tfw --size 1000x500", 0, 50, 0.5},
        {"%double.tfw %shifted.tfw --size 1x1", 0, 92.19544457292888, 0.4609772228646444},
        {"%east.tfw %west.tfw --size 1000x1000", 0, 0, 0},
        {"%utm32.tfw %bare.tfw --size 1000x500", 3, 0, 0, "crs-missing"},
        {"%utm32.tfw %shifted.tfw --size 9x9 --max-pixels 0.6", 0, 50, 0.5},
        {"%utm32.tfw %shifted.tfw --size 9x9 --max-pixels 0.4", 2, 50, 0.5, "distance-exceeded"},
        {"%utm32.tfw %shifted.tfw", 2, 0, -1},
        {"%utm32.tfw %none.tfw", 2, 0, -1},
    };
    for (const DiffCase& test : cases) {
        const json ours = folder.ExpectRun(std::string("diff --json ") + test.words, test.status).Ours();
        SCOPED_TRACE(test.words);
        EXPECT_EQ(ours["ok"], test.pixels >= 0);
        const auto& remarks = ours["diagnostics"];
        EXPECT_EQ(remarks.empty() ? "" : remarks.back().value("id", ""), test.id);
        if (test.pixels < 0) continue;
        EXPECT_EQ(ours["distances"].size(), 5U);
        EXPECT_NEAR(ours["largest"]["distance"].get<double>(), test.units, 1e-8);
        EXPECT_NEAR(ours["largest"]["pixels"].get<double>(), test.pixels, 1e-9);
    }
}

// The size comes from the raster, its positions from another zone; the affine through
// its curved points leaves an error of its own.
TEST_F(ManyReferences, AnotherSystemIsTransformed) {
    WriteZone33();
    const json ours = folder.ExpectRun("diff --json %coarse.tfw %zone33.tif", 0, R"("units":"metre")").Ours();
    EXPECT_EQ(ours["distances"][2]["column"], 20.0);
    EXPECT_GT(ours["largest"]["distance"].get<double>(), 1.0);
    EXPECT_LT(ours["largest"]["distance"].get<double>(), 200.0);
    folder.ExpectRun("diff %coarse.tfw %zone33.tif", 0, "", {"lower right"});
}

struct CheckCase {
    const char* words;
    int status;
    std::vector<std::string> ids = {};
};

TEST_F(ManyReferences, AreChecked) {
    WriteZone33();
    const CheckCase cases[] = {
        {"%utm32.tfw", 0},
        {"%utm32.tfw --expect-crs EPSG:32632", 0},
        {"%utm32.tfw --expect-crs NUTM32~WGS84", 0},
        {"%utm32.tfw --expect-crs 25832", 2, {"crs-mismatch"}},
        {"%bare.tfw --expect-crs 25832", 2, {"crs-missing"}},
        {"%utm32.tfw --size 1000x500 --within 10,47,13,48", 0},
        {"%utm32.tfw --size 9000x500 --within 10,47,13,48", 2, {"outside"}},
        // Across the antimeridian, not the long way round.
        {"%east.tfw --size 1000x1000 --within 179,9,-179,11", 0},
        {"%east.tfw --size 1000x1000 --within=-179,9,179,11", 2, {"outside"}},
        {"%east.tfw --size 1000x1000 --within 179.5,9.5,-179.5,10.5", 0},
        {"%utm32.tfw --size 400x200 --within %zone33.tif", 2, {"outside"}},
        {"%bare.tfw --within 10,47,13,48", 2, {"no-footprint", "extent-unknown"}},
        {"%zone33.tif --max-rmse 2", 0},
        {"%zone33.tif --max-rmse 1e-6", 2, {"rmse-exceeded"}},
        {"%utm32.tfw --max-rmse 1", 2, {"rmse-unknown"}},
        {"%none.tfw", 2},
        {"%utm32.tfw %bare.tfw %utm32.tfw --expect-crs 32632", 3},
    };
    for (const CheckCase& test : cases) {
        const json ours = folder.ExpectRun(std::string("check --json ") + test.words, test.status).Ours();
        EXPECT_EQ(ours["passed"], test.status != 2) << test.words;
        std::vector<std::string> ids;
        for (const json& remark : ours["diagnostics"])
            ids.push_back(remark.value("id", ""));
        EXPECT_EQ(ids, test.ids) << test.words;
    }
    for (const char* option :
         {"--expect-crs=NOWHERE", "--within=1,2,3", "--within=0,50,1,40", "--within=none.tif"})
        folder.ExpectRun(std::string("check %utm32.tfw ") + option, 64);
}

}  // namespace

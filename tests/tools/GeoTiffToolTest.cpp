// GeoTIFF at the command line, from end to end.

#include <gtest/gtest.h>

#include "GdalFiles.h"
#include "RunTool.h"
#include "TempFolder.h"

namespace {

using nlohmann::json;

constexpr const char* kWorldFile = "0.5\n0\n0\n-0.5\n676000.25\n5241999.75\n";

class GeoTiffTool : public testing::Test {
protected:
    GeoTiffTool() {
        folder.Write("place.tfw", kWorldFile);
        GdalFiles::MakeTiff(folder / "map.tif");
    }
    const TempFolder folder;
};

TEST_F(GeoTiffTool, ConvertGeoreferencesARasterThatIsThere) {
    const auto pixels = GdalFiles::Pixels(folder / "map.tif");
    EXPECT_EQ(RunTool({"info", folder / "map.tif"}).status, 5);
    const ToolRun refused = RunTool({"convert", folder / "place.tfw", folder / "map.tif"});
    EXPECT_EQ(refused.status, 2);
    EXPECT_NE(refused.err.find("--overwrite georeferences it in place"), std::string::npos) << refused.err;
    const ToolRun saved =
        RunTool({"convert", folder / "place.tfw", folder / "map.tif", "--overwrite", "--json"});
    EXPECT_EQ(saved.status, 0) << saved.err;
    EXPECT_EQ(saved.Ours()["written"], json::array({folder / "map.tif"}));
    EXPECT_EQ(GdalFiles::Pixels(folder / "map.tif"), pixels);

    const ToolRun run = RunTool({"info", "--json", folder / "map.tif"});
    EXPECT_EQ(run.status, 0);
    const json read = run.Objects().at(0);
    EXPECT_EQ(read["geoTransform"], json({676000.0, 0.5, 0.0, 5242000.0, 0.0, -0.5}));
    EXPECT_EQ(read["mapanchor"]["referenceType"], "TIF");
    EXPECT_EQ(read["mapanchor"]["pixelAnchor"], "corner");
    EXPECT_EQ(read["mapanchor"]["pixelIsPoint"], false);
}

TEST_F(GeoTiffTool, ATargetThatIsNoRaster) {
    for (const bool there : {false, true}) {
        const std::string target = there ? folder.Write("other.tif", "no raster") : folder / "none.tif";
        const ToolRun run = RunTool({"convert", folder / "place.tfw", target, "--overwrite", "--json"});
        EXPECT_EQ(run.status, 2);
        const json ours = run.Ours();
        EXPECT_EQ(ours["error"]["type"], "BFileAccessException");
        EXPECT_EQ(ours["diagnostics"].dump().find("lost"), std::string::npos);
        EXPECT_EQ(std::filesystem::exists(target), there);
    }
    EXPECT_EQ(TempFolder::Slurp(folder / "other.tif"), "no raster");
}

TEST_F(GeoTiffTool, InfoTellsPointsUnitAndRegistration) {
    const std::string points = folder.Write(
        "points.tif",
        GdalFiles::VrtText("<Metadata><MDI key=\"AREA_OR_POINT\">Point</MDI></Metadata>"
                           "<GCPList Projection=\"EPSG:32633\">"
                           "<GCP Id=\"a\" Pixel=\"0.9\" Line=\"0\" X=\"500000\" Y=\"4100000\"/>"
                           "<GCP Id=\"b\" Pixel=\"20\" Line=\"0\" X=\"500200\" Y=\"4100000\"/>"
                           "<GCP Id=\"c\" Pixel=\"0\" Line=\"10\" X=\"500000\" Y=\"4099900\"/></GCPList>",
                           GdalFiles::VrtBand(1, "<UnitType>sft</UnitType>")));
    const ToolRun run = RunTool({"info", "--json", points});
    EXPECT_EQ(run.status, 0) << run.out;
    const json read = run.Objects().at(0);
    const json ours = read["mapanchor"];
    EXPECT_EQ(ours["points"].size(), 3U);
    EXPECT_EQ(ours["points"][0]["column"], 0);
    EXPECT_EQ(read["geoTransform"][1], 10.0);
    EXPECT_EQ(ours["coordSys"]["epsg"], "EPSG:32633");
    EXPECT_EQ(ours["pixelIsPoint"], true);
    EXPECT_EQ(ours["verticalUnit"]["name"], "US survey foot");

    // By name the unit is left out, and that is said.
    const ToolRun saved = RunTool({"convert", points, folder / "map.tif", "--overwrite", "--json"});
    EXPECT_EQ(saved.status, 3);
    EXPECT_NE(saved.out.find("the vertical unit is not saved"), std::string::npos) << saved.out;
    EXPECT_EQ(GdalFiles::Open(folder / "map.tif")->GetGCPCount(), 3);
}

TEST_F(GeoTiffTool, NothingOfGdalOrProjReachesStderr) {
    const std::string cut = folder.Write("cut.tif", std::string("II*\0\x08\0\0\0\xFF\xFF", 10));
    const ToolRun run = RunTool({"info", "--json", "--type", "tif", cut});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.Ours()["error"]["type"], "BGeoReferenceInvalidReferenceFileException");
    EXPECT_EQ(RunTool({"info", "--json", MAPANCHOR_SEEDS "/geotiff/unit_that_nobody_knows.tif"}).err, "");
}

}  // namespace

// GeoTIFF at the command line, from end to end.

#include <gtest/gtest.h>

#include "GdalFiles.h"
#include "RunTool.h"

namespace {

TEST(GeoTiffTool, ConvertGeoreferencesARasterInPlace) {
    const ToolFolder folder;
    folder.Write("place.tfw", "0.5\n0\n0\n-0.5\n676000.25\n5241999.75\n");
    const auto pixels = GdalFiles::Pixels(GdalFiles::MakeTiff(folder / "map.tif"));
    folder.ExpectRun("info %map.tif", 4);
    folder.ExpectRun("convert %place.tfw %map.tif", 2, "", {"--overwrite georeferences it in place"});
    folder.ExpectRun("convert %place.tfw %map.tif --overwrite --json", 0, R"("written":["%map.tif"])");
    EXPECT_EQ(GdalFiles::Pixels(folder / "map.tif"), pixels);
    folder.ExpectRun("info --json %map.tif", 0,
                     R"("geoTransform":[676000,0.5,0,5242000,0,-0.5],"referenceType":"TIF",
                        "pixelAnchor":"corner","pixelIsPoint":false)");
    // Targets that are no raster, or not there.
    folder.Write("other.tif", "no raster");
    for (const char* target : {"%other.tif", "%none.tif"})
        folder.ExpectRun(std::string("convert --overwrite --json %place.tfw ") + target, 2,
                         R"("error":{"type":"BFileAccessException"})");
    folder.ExpectFile("other.tif", "no raster");
    folder.ExpectFile("none.tif", "");
}

TEST(GeoTiffTool, InfoPrintsPointsUnitAndRegistration) {
    const ToolFolder folder;
    GdalFiles::MakeTiff(folder / "map.tif");
    folder.Write("points.tif",
                 GdalFiles::VrtText("<Metadata><MDI key=\"AREA_OR_POINT\">Point</MDI></Metadata>"
                                    "<GCPList Projection=\"EPSG:32633\">"
                                    "<GCP Id=\"a\" Pixel=\"0.9\" Line=\"0\" X=\"500000\" Y=\"4100000\"/>"
                                    "<GCP Id=\"b\" Pixel=\"20\" Line=\"0\" X=\"500200\" Y=\"4100000\"/>"
                                    "<GCP Id=\"c\" Pixel=\"0\" Line=\"10\" X=\"500000\" Y=\"4099900\"/>"
                                    "</GCPList>",
                                    GdalFiles::VrtBand(1, "<UnitType>sft</UnitType>")));
    folder.ExpectRun("info --json %points.tif", 3,
                     R"("points":[{"column":0},{"column":20},{"column":0}],"coordSys":{"epsg":"EPSG:32633"},
                        "geoTransform":[500000,10,0,4100000,0,-10],"pixelIsPoint":true,
                        "verticalUnit":{"name":"US survey foot"})");
    folder.ExpectRun("convert %points.tif %map.tif --overwrite", 3, "", {"the vertical unit is not saved"});
    EXPECT_EQ(GdalFiles::Open(folder / "map.tif")->GetGCPCount(), 3);
}

TEST(GeoTiffTool, NothingOfGdalOrProjReachesStderr) {
    const ToolFolder folder;
    folder.Write("cut.tif", std::string("II*\0\x08\0\0\0\xFF\xFF", 10));
    const ToolRun run = folder.ExpectRun("info --json --type tif %cut.tif", 2,
                                         R"("error":{"type":"BGeoReferenceInvalidReferenceFileException"})");
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(RunTool({"info", "--json", MAPANCHOR_SEEDS "/geotiff/unit_that_nobody_knows.tif"}).err, "");
}

}  // namespace

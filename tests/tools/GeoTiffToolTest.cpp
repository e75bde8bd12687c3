// GeoTIFF at the command line, from end to end.

#include <gtest/gtest.h>

#include <functional>

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

struct SaveCase {
    const char* source;
    int status;
    const char* id;  ///< of a diagnostic; empty for none
    std::function<void(GDALDataset&)> finish;
    const char* beside = "";  ///< the content of map.tif.aux.xml
    double column = -1.0;     ///< of the first control point as GDAL reads it; -1 for none
    const char* system = "WGS 84 / UTM zone 32N";
};

TEST(GeoTiffTool, WhatIsSavedIsWhatGdalReads) {
    const auto placed = [](GDALDataset& raster) {
        double terms[] = {1, 2, 0, 3, 0, -2};
        raster.SetGeoTransform(terms);
        OGRSpatialReference system;
        system.importFromEPSG(25833);
        raster.SetSpatialRef(&system);
    };
    const auto of_centres = [](GDALDataset& raster) { raster.SetMetadataItem("AREA_OR_POINT", "Point"); };
    const SaveCase cases[] = {
        {"place.tfw", 0, "", placed},
        {"bare.tfw", 0, "", placed, "", -1.0, ""},  // kept its old system under the new transform
        {"place.tfw", 0, "", [](GDALDataset&) {}, "<PAMDataset><SRS>EPSG:25833</SRS></PAMDataset>"},
        {"points.rsf", 0, "lost-point-names", of_centres, "", 2.0},  // went one pixel off
    };
    for (const SaveCase& test : cases) {
        const ToolFolder folder;
        for (const char* name : {"place.tfw", "bare.tfw"})
            folder.Write(name, "0.5\n0\n0\n-0.5\n676000.25\n5241999.75\n");
        folder.Write("place.prj", PrjOf("32632"));
        folder.ExpectRun("convert --size 20x10 %place.tfw %corners.rsf", 0);
        std::string points = TempFolder::Slurp(folder / "corners.rsf");
        for (std::size_t at = 0; (at = points.find(" 0 0 0 ", at)) != std::string::npos; ++at)
            points.replace(at, 7, " 3 2 0 ");
        folder.Write("points.rsf", points);
        GdalFiles::MakeTiff(folder / "map.tif", 1, test.finish);
        if (*test.beside) folder.Write("map.tif.aux.xml", test.beside);
        folder.ExpectRun("convert --overwrite --json %" + std::string(test.source) + " %map.tif", test.status,
                         R"("proof":{"exact":true,"confirmedByGdal":true})", {test.id});
        const auto raster = GdalFiles::Open(folder / "map.tif");
        const auto* system = raster->GetGCPCount() > 0 ? raster->GetGCPSpatialRef() : raster->GetSpatialRef();
        EXPECT_STREQ(system ? system->GetName() : "", test.system);
        EXPECT_EQ(raster->GetGCPCount() > 0 ? raster->GetGCPs()->dfGCPPixel : -1.0, test.column);
    }
}

TEST(GeoTiffTool, AnInexactSaveIsTakenBack) {
    const ToolFolder folder;
    folder.Write("place.tfw", "0.0000000000005\n0\n0\n-0.0000000000005\n10\n50\n");
    GdalFiles::MakeTiff(folder / "map.tif");
    folder.Write("old.wld", "old");
    folder.ExpectRun("convert --overwrite --json --type wld --size 20x10 %place.tfw %old.wld", 3, "",
                     {"lost-digits"});
    folder.Write("old.wld", "old");
    folder.ExpectRun("convert --overwrite --require-exact --json --type wld --size 20x10 %place.tfw %old.wld",
                     2, "", {"is not exact and was taken back"});
    folder.ExpectFile("old.wld", "old");
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

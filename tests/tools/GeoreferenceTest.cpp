#include "PagePdf.h"
#include "RunTool.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

/// Twelve clicks on a map with 2 m per pixel; P4 is 20 pixels off.
constexpr const char* kClicks =
    "pixel,line,easting,northing,name\n"
    "712.96,1089.45,677427.788,5239823.083,P0\n1879.06,131.22,679754.322,5241737.885,P1\n"
    "779.19,468.63,677556.124,5241062.676,P2\n2509.02,952.27,681018.769,5240094.587,P3\n"
    "1922.96,1735.85,679809.164,5238527.819,P4\n2014.3,126.73,680028.469,5241743.874,P5\n"
    "904.55,61.18,677807.606,5241875.953,P6\n2155.97,1755.43,680312.944,5238484.749,P7\n"
    "1182.69,1602.62,678369.78,5238796.365,P8\n2637.06,195.44,681273.2,5241610.183,P9\n"
    "2895.85,871.72,681792.881,5240255.353,P10\n1520.94,772.8,679043.458,5240456.535,P11\n";

TEST(Georeference, NamesTheGrossErrorAndSavesWithoutIt) {
    const ToolFolder folder;
    folder.Write("p.csv", kClicks);
    const std::string scan = "georeference %/scan.png --size 3000x2000 --crs EPSG:25832 --gcps %/p.csv";
    const auto ours = folder.ExpectRun(scan + " --json", 3, {}, {"--drop P4 leaves them out"}).Ours();
    for (const auto& point : ours["points"])
        EXPECT_EQ(point["suspect"], point["name"] == "P4") << point;
    EXPECT_EQ(ours["transform"]["alternatives"].size(), 6U);
    EXPECT_FALSE(ours.contains("written"));
    folder.ExpectRun(scan + " --max-rmse 2 -o %/scan.pgw", 2, {}, {"more than 2; nothing was saved"});
    folder.ExpectFile("scan.pgw", "");
    folder.ExpectRun(scan + " --max-rmse 2 --drop P4 --fit affine -o %/scan.pgw", 3, {},
                     {"wrote ", "adjusted for degrees of freedom"});
    const double metres = std::stod(TempFolder::Slurp(folder / "scan.pgw"));
    EXPECT_NEAR(metres, 2.0, 0.005);
    const auto saved =
        folder.ExpectRun(scan + " --drop P4 -o %/scan.rsf --json", 3, {}, {"whole pixels"}).Ours();
    EXPECT_GT(saved["roundingPixels"].get<double>(), 0.01);
    EXPECT_LT(saved["roundingPixels"].get<double>(), 1.0);
    folder.Write("page.pdf", PagePdf("/MediaBox [0 0 1500 1000] /UserUnit 2").Text());
    folder.ExpectRun(
        "georeference %/page.pdf --crs EPSG:25832 --gcps %/p.csv --drop P4 --fit conformal --overwrite "
        "-o %/page.pdf --json",
        3, R"("size":[3000,2000])", {"the file holds the points, not the fit: read it with --fit conformal"});
}

TEST(Georeference, TakesBoundsAndPointsInOtherWords) {
    const ToolFolder folder;
    const std::string raster = "georeference %/a.png --size 100x50 ";
    folder.ExpectRun(raster + "--bounds 676000,5241000,678000,5242000 --crs EPSG:25832 -o %/a.pgw", 0);
    folder.ExpectFile("a.pgw",
                      "20.000000000000\n0.000000000000\n0.000000000000\n-20.000000000000\n"
                      "676010.000000000000\n5241990.000000000000\n");
    const std::string clicks = "--gcp 0,0,11,48 --gcp 100,0,11.1,48 --gcp 0,50,11,47.9,0,A ";
    const auto ours =
        folder.ExpectRun(raster + clicks + "--points-crs EPSG:4326 --crs EPSG:25832 --json", 0).Ours();
    EXPECT_NEAR(ours["points"][2]["x"].get<double>(), 649503.4, 5000) << "metres, not degrees";
    EXPECT_EQ(ours["points"][2]["name"], "A");
    folder.Write("lon.csv", "pixel,line,lon,lat\n0,0,11,48\n100,0,11.1,48\n0,50,11,47.9\n");
    folder.ExpectRun(
        raster + "--gcps %/lon.csv", 3, {},
        {"are taken as those of WGS 84", "affine     -        The fit cannot do without one of"});
    folder.ExpectRun(raster + "--gcps %/lon.csv --points-crs EPSG:4258 --json", 0,
                     R"("coordSys":{"epsg":"EPSG:4258"},"diagnostics":[])");
    for (const auto& [words, status, text] :
         {std::tuple{raster + "", 64, "wants control points"},
          {raster + clicks + "--drop B", 64, "no point named B"},
          {raster + clicks + "--crs nowhere:1", 64, "unknown coordinate system: nowhere:1"},
          {raster + "--gcp 1,2,3", 64, "wants PIXEL,LINE,X,Y"},
          {raster + "--gcp 1,2,3,4", 2, "needs 3 points"},
          {raster + "--gcps %/none.csv", 2, "none.csv> does NOT exist"},
          {std::string("georeference %/none.png ") + clicks, 2, "--size WxH"}})
        folder.ExpectRun(words, status, {}, {text});
}

}  // namespace

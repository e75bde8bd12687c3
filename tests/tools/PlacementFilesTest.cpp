#include "GdalFiles.h"
#include "RunTool.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

namespace {

constexpr const char* kQgis =
    "#CRS: urn:ogc:def:crs:EPSG::25832\nmapX,mapY,pixelX,pixelY,enable,dX,dY,residual\n"
    "676000.5,5242000.25,10.5,-20.25,1,0,0,0\n676100.5,5242000.25,110.5,-20.25,1,0,0,0\n"
    "676100.5,5241900.25,110.5,-120.25,1,0,0,0\n676050,5241900,60,-120.75,0,0,0,0\n";

TEST(PlacementFiles, PointsOfQgisAreAKindOfTheirOwn) {
    const ToolFolder folder;
    const std::string file = folder.Write("a.points", kQgis);
    folder.ExpectRun("convert %/a.points %/b.points", 0, {}, {"read back: at most 0.000 pixels"});
    const std::string saved = TempFolder::Slurp(folder / "b.points");
    EXPECT_EQ(saved.substr(0, saved.find("60,-120.75,0")), std::string(kQgis, saved.find("60,-120.75,0")));
    const auto ours = folder.ExpectRun("info %/a.points --json", 0).Ours();
    EXPECT_EQ(ours["referenceType"], "POINTS");
    EXPECT_EQ(ours["points"].size(), 4U);
    folder.ExpectRun("convert %/a.points %/b.rsf", 3, {}, {"moves the fit through them by up to 0.5"});
    folder.ExpectRun("convert %/b.rsf %/c.points", 0, {}, {"0.000 pixels"});
    folder.Write("scan.png", "");
    folder.Write("scan.png.points", kQgis);
    folder.ExpectRun("sources %/scan.png", 0, {}, {"POINTS", "scan.png.points"});
    folder.Write("bad.points", "mapX,mapY,sourceX,sourceY\n1,2,3,x4\n");
    folder.ExpectRun("info %/bad.points", 2, {}, {"bad.points> cannot be read", "line 2, column 7"});
    folder.ExpectRun("convert --to points %/b.rsf %/c.points", 2, {}, {"exists"});
}

/// The origin of a raster as GDAL places it, or its first control point: pixel, line, x, y.
std::string PlaceInGdal(const std::string& file) {
    const GdalFiles::Dataset raster = GdalFiles::Open(file);
    if (!raster) return "not opened";
    std::ostringstream text;
    if (raster->GetGCPCount() > 0) {
        const GDAL_GCP& point = raster->GetGCPs()[0];
        text << point.dfGCPPixel << ' ' << point.dfGCPLine << ' ' << point.dfGCPX << ' ' << point.dfGCPY;
        return text.str();
    }
    double terms[6] = {};
    raster->GetGeoTransform(terms);
    text << raster->GetRasterXSize() << ' ' << terms[0] << ' ' << terms[3];
    return text.str();
}

TEST(PlacementFiles, AuxiliaryFilesAndWrappersPlaceRastersInGdal) {
    const ToolFolder folder;
    const std::string scan = GdalFiles::MakeTiff(folder / "a&b.tif", 3);
    folder.Write("p.points", kQgis);
    // Statistics that are there stay there.
    folder.Write("a&b.tif.aux.xml",
                 "<PAMDataset><Metadata><MDI key=\"k\">kept</MDI></Metadata></PAMDataset>");
    EXPECT_EQ(RunTool({"georeference", scan, "--gcps", folder / "p.points", "--fit", "affine", "--overwrite",
                       "-o", scan + ".aux.xml"})
                  .status,
              3);
    EXPECT_NE(TempFolder::Slurp(scan + ".aux.xml").find("kept"), std::string::npos);
    EXPECT_EQ(PlaceInGdal(scan), "10.5 20.25 676000 5.242e+06");
    const ToolRun bounds = RunTool({"georeference", scan, "--bounds", "11,47,12,48", "--crs", "EPSG:4326",
                                    "--overwrite", "-o", scan + ".aux.xml"});
    EXPECT_EQ(bounds.status, 0) << bounds.err;
    EXPECT_EQ(PlaceInGdal(scan), "20 11 48");
    std::filesystem::create_directory(folder / "out");
    const ToolRun wrapped = RunTool({"convert", scan, folder / "out/w.vrt"});
    EXPECT_EQ(wrapped.status, 0) << wrapped.err;
    EXPECT_NE(wrapped.out.find("read back by GDAL alone: at most 0.000 pixels"), std::string::npos)
        << wrapped.out;
    EXPECT_NE(TempFolder::Slurp(folder / "out/w.vrt").find("relativeToVRT=\"1\">../a&amp;b.tif<"),
              std::string::npos);
    EXPECT_EQ(PlaceInGdal(folder / "out/w.vrt"), "20 11 48");
    for (const auto& [fit, target, words] :
         {std::tuple{"conformal", scan + ".aux.xml",
                     "not the fit: read it with --fit conformal, or save a world file, which holds this fit"},
          {"tps", scan + ".aux.xml", "not the fit: read it with --fit tps"},
          {"conformal", folder / "fit.vrt", "not the fit: save a world file, which holds this fit"},
          {"tps", folder / "tps.vrt", "not the fit: the program that reads it makes its own"}})
        EXPECT_NE(RunTool({"georeference", scan, "--gcps", folder / "p.points", "--fit", fit, "--overwrite",
                           "-o", target})
                      .err.find(words),
                  std::string::npos)
            << fit << target;
    folder.Write("text.aux.xml", "no XML");
    for (const auto& [target, words] : {std::pair{"text.aux.xml", "is not an auxiliary file of GDAL"},
                                        {"b.vrt", "GDAL does not open the raster"}})
        folder.ExpectRun(
            std::string("convert --image none.png --overwrite --size 9x9 %/p.points %/") + target, 2, {},
            {words});
}

TEST(PlacementFiles, GroundOverlaysOfKmlAreBoxesOrQuadrangles) {
    const ToolFolder folder;
    folder.Write("p.points", kQgis);
    const std::string box = "georeference %/a.png --size 300x200 --bounds 179,47,181,48 --crs EPSG:4326 -o ";
    folder.ExpectRun(box + "%/box.kml", 3, {}, {"lost-system"});
    EXPECT_NE(TempFolder::Slurp(folder / "box.kml").find("<LatLonBox><north>48</north><south>47</south>"),
              std::string::npos);
    folder.ExpectRun("convert --size 300x200 %/box.kml %/box.pgw", 0, {}, {"0.000 pixels"});
    folder.ExpectRun("convert --size 300x200 --image a&b<\x01.png %/p.points %/quad.kml", 3, {},
                     {"a KML overlay has its corners alone"});
    folder.ExpectRun("convert --size 300x200 --image a.png --fit tps %/p.points %/tps.kml", 3, {},
                     {"holds a projective transform alone, not the fit tps"});
    EXPECT_NE(TempFolder::Slurp(folder / "quad.kml").find("<href>a&amp;b&lt;"), std::string::npos);
    EXPECT_NE(TempFolder::Slurp(folder / "quad.kml").find("<gx:LatLonQuad>"), std::string::npos);
    folder.Write("none.kml", "<kml/>");
    for (const auto& [words, text] : {std::pair{"info %/box.kml", "--size WxH gives it"},
                                      {"info --size 2x2 %/none.kml", "it has no GroundOverlay"},
                                      {"convert %/p.points %/x.kml", "--size WxH gives it"}})
        folder.ExpectRun(words, 2, {}, {text});
}

}  // namespace

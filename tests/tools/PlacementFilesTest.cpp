#include "RunTool.h"

#include <gtest/gtest.h>

namespace {

constexpr const char* kQgis =
    "#CRS: EPSG:25832\nmapX,mapY,sourceX,sourceY,enable,dX,dY,residual\n"
    "676000.5,5242000.25,10.5,-20.25,1,0,0,0\n676100.5,5242000.25,110.5,-20.25,1,0,0,0\n"
    "676100.5,5241900.25,110.5,-120.25,1,0,0,0\n676050,5241900,60,-120.75,0,0,0,0\n";

TEST(PlacementFiles, PointsOfQgisAreAKindOfTheirOwn) {
    const ToolFolder folder;
    const std::string file = folder.Write("a.points", kQgis);
    folder.ExpectRun("convert %/a.points %/b.points", 0, {}, {"read back: at most 0.000 pixels"});
    const std::string saved = TempFolder::Slurp(folder / "b.points");
    EXPECT_EQ(saved.substr(0, saved.find("60,-120.75,0")), std::string(kQgis, saved.find("60,-120.75,0")));
    const auto ours = folder.ExpectRun("info --json %/a.points", 0).Ours();
    EXPECT_EQ(ours["referenceType"], "POINTS");
    EXPECT_EQ(ours["points"].size(), 4U);
    folder.ExpectRun("convert %/a.points %/b.rsf", 3, {}, {"moves the fit through them by up to 0.5"});
    folder.ExpectRun("convert %/b.rsf %/c.points", 0, {}, {"0.000 pixels"});
    folder.Write("scan.png", "");
    folder.Write("scan.png.points", kQgis);
    folder.ExpectRun("sources %/scan.png", 0, {"POINTS", "scan.png.points"});
    folder.Write("bad.points", "mapX,mapY,sourceX,sourceY\n1,2,3,x4\n");
    folder.ExpectRun("info %/bad.points", 2, {}, {"bad.points> cannot be read", "line 2, column 7"});
    folder.ExpectRun("convert --to points %/b.rsf %/c.points", 2, {}, {"exists"});
}

}  // namespace

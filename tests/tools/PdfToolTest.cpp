// Geospatial PDF at the command line.

#include "PagePdf.h"
#include "RunTool.h"
#include "TempFolder.h"

#include <gtest/gtest.h>

namespace {

const std::string kDict =
    "<< /CTM [(2) (0) (0) (2) (400000) (5200000)] /Neatline [(0) (0) (0) (800) (600) (800) (600) (0)] "
    "/Description (Main) /Projection << /Type /P /ProjectionType (UT) /Datum (WGE) /Zone 33 /Hemisphere (N) "
    ">> >>";
const std::string kInset =
    "<< /CTM [(1) (0) (0) (1) (0) (0)] /Neatline [(0) (0) (0) (10) (10) (10) (10) (0)] /Description (Inset) "
    "/Projection << /Type /P /ProjectionType (GEODETIC) /Datum (WGE) >> >>";

std::string PageWith(const std::string& dicts, const std::string& more = "") {
    return PagePdf("/MediaBox [0 0 600 800] " + more + " /LGIDict " + dicts).Text();
}

TEST(PdfInfo, PageAtSeventyTwoDotsUnlessTold) {
    const TempFolder folder;
    const std::string file = folder.Write("map.pdf", PageWith("[" + kDict + "]"));
    const auto plain = RunTool({"info", "--json", file});
    EXPECT_EQ(plain.status, 0) << plain.err;
    const auto object = plain.Objects().at(0);
    EXPECT_EQ(object["size"], (nlohmann::json{600, 800}));
    EXPECT_EQ(object["geoTransform"], (nlohmann::json{400000, 2, 0, 5201600, 0, -2}));
    EXPECT_EQ(object["mapanchor"]["referenceType"], "PDF");
    EXPECT_EQ(object["mapanchor"]["pdfPage"]["maps"][0]["name"], "Main");
    EXPECT_EQ(object["mapanchor"]["pdfPage"]["maps"][0]["area"], 480000);
    const auto finer = RunTool({"info", "--json", "--dpi", "144", file}).Objects().at(0);
    EXPECT_EQ(finer["size"], (nlohmann::json{1200, 1600}));
    EXPECT_EQ(finer["geoTransform"][1], 1);
    const auto sized = RunTool({"info", "--json", "--size", "300x400", file}).Objects().at(0);
    EXPECT_EQ(sized["geoTransform"][1], 4);
}

TEST(PdfInfo, OtherMapsAndARotationAreWarnings) {
    const TempFolder folder;
    const std::string file = folder.Write("map.pdf", PageWith("[" + kInset + kDict + "]", "/Rotate 90"));
    const auto run = RunTool({"info", file});
    EXPECT_EQ(run.status, 3);
    EXPECT_NE(run.err.find("other maps, which are not read: \"Inset\""), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("turned by 90 degrees"), std::string::npos) << run.err;
    EXPECT_NE(run.out.find("media box 0 0 600 800"), std::string::npos) << run.out;
    const auto maps = RunTool({"info", "--json", file}).Objects().at(0)["mapanchor"]["pdfPage"]["maps"];
    EXPECT_EQ(maps[0]["inUse"], false);
    EXPECT_EQ(maps[1]["inUse"], true);
}

TEST(PdfInfo, BoxByName) {
    const TempFolder folder;
    const std::string file =
        folder.Write("map.pdf", PageWith("[" + kDict + "]", "/CropBox [100 100 400 300]"));
    const auto crop = RunTool({"info", "--json", "--pdf-box", "crop", file}).Objects().at(0);
    EXPECT_EQ(crop["size"], (nlohmann::json{300, 200}));
    const auto trim = RunTool({"info", "--json", "--pdf-box", "trim", file}).Objects().at(0);
    EXPECT_EQ(trim["size"], (nlohmann::json{600, 800}));
}

TEST(PdfInfo, RefusedFormsAreExplained) {
    const TempFolder folder;
    const auto single = RunTool({"info", folder.Write("single.pdf", PageWith(kDict))});
    EXPECT_EQ(single.status, 2);
    EXPECT_NE(single.err.find("The key LGIDict is not of type Array."), std::string::npos) << single.err;
    EXPECT_NE(single.err.find("one dictionary stands in its place"), std::string::npos) << single.err;
    const auto none = RunTool({"info", folder.Write("none.pdf", PagePdf("/MediaBox [0 0 9 9]").Text())});
    EXPECT_EQ(none.status, 4);
    EXPECT_NE(none.err.find("No Geospatial data found"), std::string::npos) << none.err;
}

TEST(PdfConvert, ToAWorldFileOfThePage) {
    const TempFolder folder;
    const std::string file = folder.Write("map.pdf", PageWith("[" + kDict + "]"));
    const std::string out = folder / "map.tfw";
    EXPECT_NE(RunTool({"convert", file, out}).status, 2);
    EXPECT_TRUE(TempFolder::Slurp(out).starts_with("2.0000000")) << TempFolder::Slurp(out);
}

}  // namespace

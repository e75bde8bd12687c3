#include <gtest/gtest.h>

#include "PagePdf.h"
#include "RunTool.h"
#include "TempFolder.h"

#include <cpl_minixml.h>

#include <memory>

namespace {

/// How many shapes of a style a drawing has; below 0 for what is no well-formed drawing.
int CountOf(const std::string& drawing, const std::string& style) {
    const std::unique_ptr<CPLXMLNode, decltype(&CPLDestroyXMLNode)> root(CPLParseXMLString(drawing.c_str()),
                                                                         CPLDestroyXMLNode);
    const CPLXMLNode* svg = root ? CPLGetXMLNode(root.get(), "=svg") : nullptr;
    if (!svg) return -1;
    int count = 0;
    for (const CPLXMLNode* shape = svg->psChild; shape; shape = shape->psNext)
        if (style == CPLGetXMLValue(shape, "class", "")) ++count;
    return count;
}

struct PreviewCase {
    const char* name;
    const char* file;
    std::vector<std::pair<const char*, int>> shapes;
};

TEST(Preview, DrawsWhatIsThere) {
    const TempFolder folder;
    folder.Write("map<&>.tfw", "0.1\n0\n0\n-0.1\n175.05\n49.95\n");
    folder.Write("map<&>.prj", PrjOf("4326"));
    folder.Write(
        "map.tab",
        "!table\n!version 300\n!charset Neutral\n\nDefinition Table\n  File \"map.tif\"\n  Type \"RASTER\"\n"
        "  (10,50) (0,0) Label \"a\",\n  (20,50) (100,0) Label \"b\",\n  (20,40) (100,100) Label \"c\",\n"
        "  (10,41) (0,100) Label \"d\"\n  CoordSys Earth Projection 1, 104\n  Units \"degree\"\n");
    folder.Write(
        "map.pdf",
        PagePdf(
            "/MediaBox [0 0 600 800] /CropBox [10 10 500 700] /LGIDict [<< /CTM [(2) (0) (0) (2) (400000) "
            "(5200000)] /Neatline [(0) (0) (0) (800) (600) (800) (600) (0)] /Description (Main) "
            "/Projection << /Type /P /ProjectionType (UT) /Datum (WGE) /Zone 33 /Hemisphere (N) >> >>]")
            .Text());
    const PreviewCase cases[] = {
        {"cut_area", "map<&>.tfw", {{"sea", 1}, {"area", 2}, {"ring", 0}, {"raster", 1}, {"point", 0}}},
        {"residuals", "map.tab", {{"area", 1}, {"point", 4}, {"arrow", 4}, {"raster", 1}}},
        {"page", "map.pdf", {{"area", 2}, {"ring", 1}, {"box", 4}, {"raster", 1}}},
    };
    for (const PreviewCase& test : cases) {
        const std::string svg = folder / (std::string(test.name) + ".svg");
        const ToolRun run = RunTool({"preview", "--size", "100x100", folder / test.file, "-o", svg});
        EXPECT_EQ(run.status, 0) << test.name << run.err;
        const std::string drawing = TempFolder::Slurp(svg);
        for (const auto& [style, count] : test.shapes)
            EXPECT_EQ(CountOf(drawing, style), count) << test.name << " " << style;
        EXPECT_EQ(RunTool({"preview", "--size", "100x100", folder / test.file}).out, drawing) << test.name;
    }
}

TEST(Preview, NothingIsReplacedUnasked) {
    const TempFolder folder;
    const std::string file = folder.Write("map.tfw", "1\n0\n0\n-1\n5\n5\n");
    const std::string svg = folder.Write("map.svg", "old");
    EXPECT_EQ(RunTool({"preview", file, "-o", svg}).status, 2);
    EXPECT_EQ(TempFolder::Slurp(svg), "old");
    EXPECT_EQ(RunTool({"preview", file, "-o", svg, "--overwrite"}).status, 3);  // no area is drawn
    EXPECT_EQ(CountOf(TempFolder::Slurp(svg), "sea"), 1);
    EXPECT_EQ(RunTool({"preview", file, "-o", "/dev/full", "--overwrite"}).status, 2);
}

}  // namespace

#include <gtest/gtest.h>

#include "../pdf/import/GeoPdfFiles.h"
#include "RunTool.h"

#include <cpl_minixml.h>

#include <filesystem>
#include <memory>

namespace {

namespace fs = std::filesystem;

/// How many shapes of a style a drawing has; below 0 for XML that is not well-formed.
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
    const char* file;
    std::vector<std::pair<const char*, int>> shapes;
};

TEST(Preview, DrawsWhatIsThere) {
    const ToolFolder folder;
    folder.Write("map<&>.tfw", "0.1\n0\n0\n-0.1\n175.05\n49.95\n");
    folder.Write("map<&>.prj", PrjOf("4326"));
    folder.Write("map.tab",
                 "!table\n!version 300\n\nDefinition Table\n  File \"map.tif\"\n  Type \"RASTER\"\n"
                 "  (10,50) (0,0) Label \"a\",\n  (20,50) (100,0) Label \"b\",\n"
                 "  (20,40) (100,100) Label \"c\",\n  (10,41) (0,100) Label \"d\"\n"
                 "  CoordSys Earth Projection 1, 104\n  Units \"degree\"\n");
    folder.Write("exact.tab",
                 "!table\n!version 300\n\nDefinition Table\n  File \"map.tif\"\n  Type \"RASTER\"\n"
                 "  (10,50) (0,0) Label \"a\",\n  (20,50) (100,0) Label \"b\",\n"
                 "  (20,40) (100,100) Label \"c\"\n"
                 "  CoordSys Earth Projection 1, 104\n  Units \"degree\"\n");
    folder.Write("pole.tfw", "20000\n0\n0\n-20000\n-990000\n990000\n");
    folder.Write("pole.prj", PrjOf("3413"));
    folder.Write("world.tfw", "3.6\n0\n0\n-1.8\n-178.2\n89.1\n");
    folder.Write("world.prj", PrjOf("4326"));
    folder.Write("plan.tfw", "1\n0\n0\n-1\n676000\n5240000\n");
    folder.Write("plan.prj", PrjOf("25832"));
    folder.Write("map.pdf",
                 GeoPdf::LGIDict{.page = "/MediaBox [0 0 600 800] /CropBox [10 10 500 700]"}.Text());
    const PreviewCase cases[] = {
        // On the locator an area that crosses the antimeridian is two, on the map around it one.
        {"map<&>.tfw", {{"sea", 2}, {"area", 3}, {"ring", 0}, {"raster", 0}, {"point", 0}}},
        {"map.tab", {{"area", 2}, {"point", 4}, {"arrow", 4}, {"head", 4}, {"raster", 1}}},
        {"exact.tab", {{"sea", 2}, {"area", 2}, {"point", 0}, {"arrow", 0}, {"raster", 0}}},
        {"pole.tfw", {{"sea", 2}, {"area", 2}, {"raster", 0}}},
        {"world.tfw", {{"sea", 1}, {"area", 1}}},
        // Without room for a coast the raster has a map of its own beside that of the region.
        {"plan.tfw", {{"sea", 2}, {"ring", 2}, {"frame", 3}, {"corner", 8}}},
        {"map.pdf", {{"area", 3}, {"ring", 2}, {"box", 1}, {"raster", 1}}},
    };
    for (const PreviewCase& test : cases) {
        const std::string preview = std::string("preview --size 100x100 %") + test.file;
        folder.ExpectRun(preview + " --overwrite -o %map.svg", 0);
        const std::string drawing = TempFolder::Slurp(folder / "map.svg");
        for (const auto& [style, count] : test.shapes)
            EXPECT_EQ(CountOf(drawing, style), count) << test.file << " " << style;
        EXPECT_EQ(folder.ExpectRun(preview, 0).out, drawing);
    }
}

TEST(Preview, ReplacesNothingUnaskedAndNeverItsSource) {
    const ToolFolder folder;
    const std::string content = "1\n0\n0\n-1\n5\n5\n";
    const std::string file = folder.Write("map.tfw", content);
    const std::string svg = folder.Write("map.svg", "old");
    fs::create_hard_link(file, folder / "hard.svg");
    fs::create_symlink("map.tfw", folder / "soft.svg");
    fs::create_symlink("nowhere", folder / "dangling.svg");
    const struct {
        const char* target;
        bool overwrite;
        int status;
        const char* message;
    } rows[] = {{"map.svg", false, 2, "--overwrite replaces it"},
                {"dangling.svg", false, 2, "--overwrite replaces it"},
                {"map.tfw", true, 2, "is the file that is drawn"},
                {"hard.svg", true, 2, "is the file that is drawn"},
                {"soft.svg", true, 2, "is the file that is drawn"},
                {"none/map.svg", true, 2, "No such file or directory"},
                {"/dev/full", true, 2, "No space left on device"},
                {"map.jpg", true, 64, "previews are drawn as .svg and .png, not as .jpg"},
                {"map.svg", true, 3, "no footprint"},
                {"new.svg", false, 3, "no footprint"}};
    for (const auto& row : rows) {
        std::vector<std::string> words = {
            "preview", file, "-o", fs::path(row.target).is_absolute() ? row.target : folder / row.target};
        if (row.overwrite) words.emplace_back("--overwrite");
        const std::string old = TempFolder::Slurp(svg);
        const ToolRun run = RunTool(words);
        EXPECT_TRUE(row.status == 3 || TempFolder::Slurp(svg) == old) << row.target;
        EXPECT_EQ(run.status, row.status) << row.target;
        EXPECT_NE(run.err.find(row.message), std::string::npos) << run.err;
        EXPECT_EQ(TempFolder::Slurp(file), content) << row.target;
    }
    for (const char* target : {"map.svg", "new.svg"})
        EXPECT_EQ(CountOf(TempFolder::Slurp(folder / target), "sea"), 0);
}

/// The thumbnail is a part of the drawing, and a raster that cannot be read is no reason to fail.
TEST(Preview, ShowsTheRasterItself) {
    const ToolFolder folder;
    folder.Write("map.asc", "ncols 3\nnrows 2\nxllcorner 10\nyllcorner 40\ncellsize 1\n1 2 3\n4 5 6\n");
    folder.Write("map.prj", PrjOf("4326"));
    folder.Write("bad.asc", "ncols 3\nnrows 50\nxllcorner 10\nyllcorner 40\ncellsize 1e-4\n1 2 3\n");
    folder.Write("bad.prj", PrjOf("4326"));
    const struct {
        const char* arguments;
        int pictures;
        bool is_noted;
    } rows[] = {{"%map.asc", 1, false}, {"--no-thumbnail %map.asc", 0, false}, {"%bad.asc", 0, true}};
    for (const auto& row : rows) {
        const ToolRun run = folder.ExpectRun(std::string("preview ") + row.arguments, 0);
        EXPECT_EQ(CountOf(run.out, "picture"), row.pictures) << row.arguments;
        EXPECT_EQ(run.err.find("note: there is no thumbnail of") != std::string::npos, row.is_noted)
            << run.err;
    }
}

/// Where there is no renderer the tool refuses, and leaves no file.
TEST(Preview, DrawsPngOrRefuses) {
    const ToolFolder folder;
    folder.Write("map.asc", "ncols 3\nnrows 2\nxllcorner 10\nyllcorner 40\ncellsize 1\n1 2 3\n4 5 6\n");
    folder.Write("map.prj", PrjOf("4326"));
    const ToolRun run = RunTool({"preview", folder / "map.asc", "-o", folder / "map.PNG"});
    const std::string png = TempFolder::Slurp(folder / "map.PNG");
    if (run.status == 0) {
        ASSERT_TRUE(png.starts_with("\x89PNG"));
        EXPECT_EQ(png.substr(16, 4), std::string("\0\0\x05\xF0", 4)) << "twice 760 pixels wide";
    } else {
        EXPECT_NE(run.err.find("write an SVG file instead"), std::string::npos) << run.err;
        EXPECT_TRUE(png.empty());
    }
#ifdef MAPANCHOR_PNG_PREVIEW
    EXPECT_EQ(run.status, 0) << run.err;
#endif
}

}  // namespace

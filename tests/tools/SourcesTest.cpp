#include <gtest/gtest.h>

#include "../formats/raster/ChartFiles.h"
#include "GdalFiles.h"
#include "RunTool.h"

#include <algorithm>
#include <array>
#include <regex>
#include <set>

namespace {

using MapAnchor::FrameFile;

constexpr const char* kWorld = "10\n0\n0\n-10\n500005\n4099995\n";
constexpr const char* kShifted = "10\n0\n0\n-10\n500010\n4099995\n";  // half a pixel to the east

/// Of 20 by 10 pixels, without a place.
void MakePng(const std::string& path) {
    GDALAllRegister();
    GDALDriverManager& drivers = *GetGDALDriverManager();
    const GdalFiles::Dataset pixels(drivers.GetDriverByName("MEM")->Create("", 20, 10, 1, GDT_Byte, nullptr));
    const GdalFiles::Dataset made(drivers.GetDriverByName("PNG")->CreateCopy(
        path.c_str(), pixels.get(), FALSE, nullptr, nullptr, nullptr));
}

std::string AuxiliaryText(const std::string& place) {
    return "<PAMDataset>" + place + "</PAMDataset>";
}

constexpr const char* kPlace = "<GeoTransform>600000, 10, 0, 4100000, 0, -10</GeoTransform>";

struct SourcesCase {
    const char* fault;  ///< that the row would catch
    std::vector<std::pair<const char*, std::string>> files;
    const char* words;
    int status;
    const char* text;     ///< of stdout or stderr
    const char* members;  ///< of the JSON of info
};

TEST(Sources, TheWinnerIsReadAndTheOthersAreNamed) {
    const std::string prj = PrjOf("32633");
    const SourcesCase cases[] = {
        {"a prj in capitals is missed",
         {{"map.PNW", ""}, {"map.PGW", kWorld}, {"map.PRJ", prj}},
         "%map.png",
         0,
         "read from map.PGW, map.PRJ",
         R"("referenceType":"WLD","coordSys":{"epsg":"EPSG:32633"})"},
        {"the auxiliary file wins, though not in GDAL for this kind",
         {{"map.pgw", kWorld}, {"map.png.aux.xml", AuxiliaryText(kPlace)}},
         "%map.png",
         0,
         "also there: map.png.aux.xml, 10000.00 px away",
         R"("geoTransform":[500000,10,0,4100000,0,-10])"},
        {"the system of an auxiliary file is lost",
         {{"map.wld", kWorld}, {"map.png.aux.xml", AuxiliaryText("<SRS>" + prj + "</SRS>")}},
         "%map.png",
         0,
         "read from map.wld, map.png.aux.xml",
         R"("coordSys":{"epsg":"EPSG:32633"})"},
        {"the source is not picked",
         {{"map.pgw", kWorld}, {"map.wld", kShifted}},
         "--source map.wld %map.png",
         0,
         "0.50 px away",
         R"("geoTransform":[500005,10,0,4100000,0,-10])"},
        {"an unknown source is read as another one",
         {{"map.pgw", kWorld}},
         "--source tab %map.png",
         4,
         "has no source \"tab\"; there are: WLD",
         R"("ok":false)"},
        {"a file of another raster counts",
         {{"map2.pgw", kWorld}, {"mapx.tab", ""}},
         "%map.png",
         4,
         "does not contain",
         R"("ok":false)"},
        {"the name of an unreadable file is kept quiet",
         {{"map.pgw", kWorld}, {"map.tab", "no table"}},
         "%map.png",
         0,
         "also there: map.tab, which cannot be read",
         R"("referenceType":"WLD")"},
        {"a system is put over one that is there",
         {{"map.pgw", kWorld}, {"map.prj", prj}},
         "--crs EPSG:25832 %map.png",
         0,
         "EPSG:32633",
         R"("coordSys":{"epsg":"EPSG:32633"})"},
        {"a system does not replace one that is there",
         {{"map.pgw", kWorld}, {"map.prj", prj}},
         "--override-crs EPSG:25832 %map.png",
         0,
         "EPSG:25832",
         R"("coordSys":{"epsg":"EPSG:25832"})"},
    };
    for (const SourcesCase& test : cases) {
        SCOPED_TRACE(test.fault);
        const ToolFolder folder;
        MakePng(folder / "map.png");
        for (const auto& [name, text] : test.files)
            folder.Write(name, text);
        folder.ExpectRun(std::string("info ") + test.words, test.status, "", {test.text});
        folder.ExpectRun(std::string("info --json ") + test.words, test.status, test.members);
    }
}

TEST(Sources, TheTableComparesThemWithGdal) {
    const ToolFolder folder;
    MakePng(folder / "map.png");
    folder.Write("map.pgw", kWorld);
    folder.Write("map.prj", PrjOf("32633"));
    folder.Write("map.wld", kShifted);
    folder.ExpectRun("convert --size 20x10 %map.pgw %map.rsf", 0);
    folder.ExpectRun("sources --json %map.png", 0,
                     R"("ok":true,"sources":[
        {"kind":"WLD","files":["%map.pgw","%map.prj"],"wins":true,"winsInGdal":true,"distancePixels":0,"ok":true},
        {"kind":"WLD","files":["%map.wld","%map.prj"],"wins":false,"winsInGdal":false,"distancePixels":0.5,
         "distanceMetres":5},
        {"kind":"RSF","wins":false,"winsInGdal":false,"distanceMetres":0}],"diagnostics":[{"id":"sources-differ"}])");
    folder.ExpectRun("sources %map.png", 0, "",
                     {"WLD    map.wld, map.prj no        no           0.50   5.000"});
    // At 60 degrees north a degree of longitude is half as long as one of latitude.
    folder.Write("map.pgw", "0.001\n0\n0\n-0.001\n20.0005\n60.0045\n");
    folder.Write("map.wld", "0.001\n0\n0\n-0.001\n20.001\n60.0045\n");
    folder.Write("map.prj", PrjOf("4326"));
    folder.ExpectRun("sources %map.png", 0, "", {"0.50     27.803"});
}

TEST(Sources, FilesInAnArchiveAreRead) {
    const ToolFolder folder;
    MakePng(folder / "map.png");
    const std::string archive = "/vsizip/" + (folder / "maps.zip");
    VSILFILE* const zip = VSIFOpenL(archive.c_str(), "wb");
    for (const auto& [name, text] :
         {std::pair<std::string, std::string>{"map.png", folder.Slurp(folder / "map.png")},
          {"map.pgw", kWorld},
          {"map.PRJ", PrjOf("32633")},
          {"page.pdf", "%PDF-1.4"}}) {
        VSILFILE* const entry = VSIFOpenL((archive + "/" + name).c_str(), "wb");
        EXPECT_EQ(VSIFWriteL(text.data(), 1, text.size(), entry), text.size());
        VSIFCloseL(entry);
    }
    VSIFCloseL(zip);
    const std::string in = "info --json " + archive;
    folder.ExpectRun(
        in + "/map.png", 0,
        R"("size":[20,10],"geoTransform":[500000,10,0,4100000,0,-10],"coordSys":{"epsg":"EPSG:32633"})");
    folder.ExpectRun(in + "/map.pgw", 0, R"("referenceType":"WLD","size":[20,10])");
    folder.ExpectRun(in + "/missing.pgw", 2, R"("error":{"type":"BFileNotFoundException","class":"access"})");
    folder.ExpectRun(in + "/page.pdf", 5, R"("error":{"class":"unsupported"})",
                     {"read only as a plain file"});
    folder.ExpectRun("convert --overwrite " + archive + "/map.png %out.tfw", 0);
}

TEST(Sources, EveryCommandTakesTheRaster) {
    const ToolFolder folder;
    MakePng(folder / "map.png");
    MakePng(folder / "alone.png");
    folder.Write("map.pgw", kWorld);
    folder.Write("map.prj", PrjOf("32633"));
    folder.Write("other.tfw", kWorld);
    const ToolRun rows = RunTool({"batch", folder / "."});
    ASSERT_EQ(rows.Objects().size(), 2U) << rows.out;  // the raster and the sidecar without one
    EXPECT_EQ(rows.Objects()[0]["description"], folder / "./map.png");
    EXPECT_EQ(rows.Objects()[0]["mapanchor"]["files"][1], folder / "./map.prj");
    EXPECT_EQ(RunTool({"batch", "--all", folder / "."}).Objects().size(), 5U);
    folder.ExpectRun("convert %map.png %copy.tab", 0);
    EXPECT_NE(TempFolder::Slurp(folder / "copy.tab").find("File \"map.png\""), std::string::npos);
    folder.ExpectRun("diff %map.png %copy.tab", 0);
    folder.ExpectRun("check --expect-crs EPSG:32633 %map.png", 0);
    folder.ExpectRun("footprint --json %map.png", 0);
    folder.ExpectRun("preview %map.png", 0, "", {"20 by 10 pixels"});
    folder.ExpectRun("info --json %alone.png", 4, R"("error":{"class":"no-reference"})");
}

std::set<std::string> Matches(const std::string& file, const std::string& pattern) {
    const std::string text = TempFolder::Slurp(std::string(MAPANCHOR_SOURCES) + file);
    const std::regex regex(pattern);
    std::set<std::string> found;
    for (std::sregex_iterator it(text.begin(), text.end(), regex), end; it != end; ++it)
        found.insert((*it)[1].str());
    return found;
}

TEST(Diagnostics, ThePageExplainsEachId) {
    std::set<std::string> ids = Matches("/src/formats/common/policy/DiagnosticIds.h", "= \"([a-z-]+)\";");
    ids.merge(Matches("/tools/mapanchor/read/RemarkIds.h", "= \"([a-z-]+)\";"));
    EXPECT_GT(ids.size(), 30U);
    EXPECT_EQ(Matches("/docs/diagnostics.md", "\n### ([a-z-]+)\n[^#]+\\*\\*Remedy:\\*\\*"), ids);
}

struct DoubtCase {
    const char* name;
    std::string content;
    const char* id;  ///< empty for a file that is read without a doubt
};

TEST(Diagnostics, WhatIsDoubtfulIsSaid) {
    const auto ers = [](const std::string& lines) {
        return "DatasetHeader Begin\n" + lines +
               "RasterInfo Begin\nCellInfo Begin\nXdimension = 1\nYdimension = 1\nCellInfo End\nNrOfLines = "
               "10\n"
               "NrOfCellsPerLine = 20\nRegistrationCoord Begin\nEastings = 500000\nNorthings = 4000000\n"
               "RegistrationCoord End\nRasterInfo End\nDatasetHeader End\n";
    };
    const auto rsf = [](const std::string& rows) { return "1 4\n" + rows; };
    const auto chart = [](const std::string& points) { return "BSB/NA=x,RA=9,9\nKNP/GD=WGS84\n" + points; };
    const auto frame = [](std::array<double, 8> corners) {
        FrameFile file;
        std::copy(corners.begin(), corners.end(), file.coverage.begin());
        return file.Bytes();
    };
    const DoubtCase cases[] = {
        {"plain.tfw", "1\r\n0\r\n0\r\n-1\r\n5\r\n5\r\nmore", ""},
        {"commas.tfw", "1,\n0,\n0,\n-1,\n5,\n5", ""},
        {"decimal.tfw", "1,5\n0\n0\n-1\n5\n5\n", "world-file-text"},
        {"exponent.tfw", "1.5D+01\n0\n0\n-1\n5\n5\n", "world-file-text"},
        {"comment.tfw", "1 # pixel\n0\n0\n-1\n5\n5\n", "world-file-text"},
        {"blank.tfw", "1\n\n0\n-1\n5\n5\n", "world-file-text"},
        {"table.csv", "1\n2\n3\n4\n5\n6\n", "guessed-world-file"},
        {"zero.tfw", "0\n0\n0\n0\n5\n5\n", "scale-zero"},
        {"line.rsf",
         rsf("a 0 0 0 0 0 0 1\nb 500 500 0 500 500 0 1\nc 501 500 0 501 500 0 1\nd 1000 1000 0 1000 1000 0 "
             "1\n"),
         "points-near-line"},
        {"datum.ers",
         ers("CoordinateSpace Begin\nDatum = \"NOSUCH\"\nProjection = \"NUTM12\"\nCoordinateSpace End\n"),
         "system-replaced"},
        {"names.ers",
         ers("CoordinateSpace Begin\nDatum = \"WGS84\"\nProjection = \"NOSUCH\"\nCoordinateSpace End\n"),
         "system-unknown"},
        {"part.rsf", rsf("a 0.5 9.75 0 0 9 0 1\nb 8 9 0 8 9 0 1\nc 0 0 0 0 0 0 1\nd 8 0 0 8 0 0 1\n"),
         "points-rounded"},
        {"part.tab",
         "!table\nType \"RASTER\"\n(0, 0) (0.25, 0) Label \"a\",\n(9, 0) (9, 0) Label \"b\",\n"
         "(9, 9) (9, 9) Label \"c\"\nCoordSys Earth Projection 1, 104\n",
         "points-rounded"},
        {"beyond.tab",
         "!table\nType \"RASTER\"\n(0, 0) (0, 0) Label \"a\",\n(9, 0) (3000000000, 0) Label \"b\",\n"
         "(9, 9) (9, 9) Label \"c\"\nCoordSys Earth Projection 1, 104\n",
         "points-rounded"},
        {"beyond.rsf", rsf("a 0 9 0 0 9 0 1\nb 8 3000000000 0 8 9 0 1\nc 0 0 0 0 0 0 1\nd 8 0 0 8 0 0 1\n"),
         "points-rounded"},
        {"whole.rsf", rsf("a 0 9 0 0 9 0 1\nb 8 9 0 8 9 0 1\nc 0 0 0 0 0 0 1\nd 8 0 0 8 0 0 1\n"), ""},
        {"part.kap", chart("REF/1,0,0,1,1\nREF/2,9.5,0,1,2\nREF/3,9,9,2,2\n"), "points-rounded"},
        {"beyond.kap", chart("REF/1,0,0,1,1\nREF/2,3000000000,0,1,2\nREF/3,9,9,2,2\n"), "points-rounded"},
        {"date.kap", chart("REF/1,0,0,1,179\nREF/2,9,0,1,-179\nREF/3,9,9,2,-179\n"), "crosses-antimeridian"},
        {"few.kap", chart("REF/1,0,0,1,1\nREF/2,1,0,1,2\nREF/3,1,1,2,2\n"), "points-cover-little"},
        {"far.kap", chart("REF/1,0,0,1,1\nREF/2,99,0,1,2\nREF/3,99,9,2,2\n"), "points-outside"},
        {"level.on1", frame({11.536, -100, 10, -100, 11.536, -96.928, 10, -96.928}), ""},
        {"polar.on1", frame({85, -100, 84, -90, 85, -80, 84, -70}), "polar-frame"},
        {"apart.on1", frame({11.536, -100, 10, -100, 11.536, -96.926, 10, -96.926}), "frame-corners-differ"},
        {"turned.ers", ers("CoordinateSpace Begin\nRotation = 0:30:0.0\nCoordinateSpace End\n"),
         "rotation-not-read"},
    };
    const ToolFolder folder;
    for (const DoubtCase& test : cases) {
        SCOPED_TRACE(test.name);
        folder.Write(test.name, test.content);
        const ToolRun run = RunTool({"info", "--json", folder / test.name});
        std::set<std::string> ids;
        const auto ours = run.Ours();
        for (const auto& remark : ours["diagnostics"])
            ids.insert(remark["id"].get<std::string>());
        EXPECT_EQ(ids.contains(test.id), *test.id != '\0') << run.out;
        EXPECT_EQ(ids.empty(), *test.id == '\0') << run.out;
    }
    folder.Write("two.rsf",
                 rsf("a 0.9 9.9 0 0 9 0 1\nb 8 3e9 0 8 9 0 1\nc 0 0 0 0 0 0 1\nd 8 0 0 8 0 0 1\n"));
    folder.ExpectRun("info %two.rsf", 3, "",
                     {"1 of 4 control points state fractions of pixels, which are dropped: up to 1.27 px",
                      "1 of 4 control points state pixels that are no whole numbers of 32 bits"});
    MakePng(folder / "map.png");
    folder.Write("map.pgw", kWorld);
    folder.Write("map.prj", PrjOf("4326"));
    folder.ExpectRun("info --json %map.png", 3, R"("diagnostics":[{},{"id":"degrees-out-of-range"}])");
    folder.Write("map.prj", PrjOf("4807"));  // counts in grads
    folder.Write("map.pgw", "1e-4\n0\n0\n-1e-4\n2\n99\n");
    folder.ExpectRun("info --json %map.png", 0, R"("diagnostics":[{"id":"read-from"}])");
    folder.Write("map.ers", std::regex_replace(ers(""), std::regex("NrOfLines = 10"), "NrOfLines = 11"));
    folder.ExpectRun("info --json %map.ers", 3, R"("diagnostics":[{"id":"raster-size-differs"}])");
}

}  // namespace

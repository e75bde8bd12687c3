#include <gtest/gtest.h>

#include "RunTool.h"
#include "TempFolder.h"

#include <Tellurion/Printable.h>

#include <cpl_minixml.h>

#include <sstream>

namespace {

/// All that must not get through: escape sequences, control characters of both sets, bytes that are not
/// UTF-8, turned directions, separators, a noncharacter, marks of documents, a line that is forged.
const std::string kNasty =
    "a\x1b[31m\r\x07\x7f\xc2\x9b\xc2\x85\xff\xe9\xe2\x80\xae\xe2\x81\xa6\xe2\x80\xa8\xef\xbf\xbf<&>']]>\n"
    "mapanchor: forged";

void ExpectPrintable(const std::string& text, const std::string& what) {
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        line.erase(0, line.find_first_not_of('\x1e'));  // begins a row of a GeoJSON sequence
        EXPECT_EQ(Tellurion::Printable(line), line) << what;
        EXPECT_FALSE(line.starts_with("mapanchor: forged")) << what;
        const bool is_json = what.find("json") != std::string::npos || what.find("stac") != std::string::npos;
        EXPECT_TRUE(!is_json || nlohmann::json::accept(line)) << what << line;
    }
}

// What files hold and how they are called is data, for every command and every kind of output.
TEST(NastyText, StaysData) {
    const TempFolder folder;
    const std::string file = folder.Write(kNasty + ".tfw", "0.1\n0\n0\n-0.1\n10\n50\n");
    folder.Write(kNasty + ".prj", "GEOGCS[\"" + kNasty + R"(",DATUM["D",SPHEROID["S",6378137,298]],)" +
                                      R"(PRIMEM["G",0],UNIT["degree",0.0174532925199433]])");
    const std::string tab =
        folder.Write("n.tab", "!table\n!version 300\n!charset Neutral\n\nDefinition Table\n  File \"" +
                                  kNasty + "\"\n  Type \"RASTER\"\n  (10,50) (0,0) Label \"" + kNasty +
                                  "\",\n  (20,50) (100,0) Label \"b\",\n  (20,40) (100,100) Label \"c\"\n"
                                  "  CoordSys Earth Projection 1, 104\n  Units \"degree\"\n");
    const std::string broken = folder.Write("n.rsf", "4 1\n" + kNasty + " x y\n");
    const std::string names = file + '\0' + tab + '\0' + broken + '\0' + kNasty + '\0' + "=1+1" + '\0';
    const std::vector<std::vector<std::string>> commands = {
        {"info", "-v", "-0", "-"},
        {"info", "-v", "--color", "never", "--type", "rsf", broken},
        {"info", "--json", "-0", "-"},
        {"check", "--expect-crs", "EPSG:4326", "-0", "-"},
        {"check", "--json", "-0", "-"},
        {"footprint", "--size", "9x9", "-0", "-"},
        {"footprint", "--json", "-0", "-"},
        {"ext", "map." + kNasty},
        {"diff", "--size", "9x9", file, tab},
        {"diff", "--json", "--size", "9x9", tab, file},
        {"preview", "--size", "9x9", file},
        {"preview", file, "-o", folder / kNasty + "/none.svg"},
        {"convert", "--dry-run", file, folder / kNasty + ".wld"},
        {"convert", file, folder / kNasty + ".none"},
        {"crs", kNasty},
        {"crs", "--json", kNasty},
        {"--" + kNasty},
        {"info", "--type", kNasty, file},
        {"check", "--within", kNasty, file},
        {"batch", "-0"},
        {"batch", "-0", "--to", "csv"},
        {"batch", "-0", "--to", "geojsonseq"},
        {"batch", "-0", "--to", "stac"},
        {"batch", "--resume", folder / kNasty + "/none", file},
        {"batch", "-0", "-q", "--size", "9x9", "--index", folder / "index.csv"},
        {"batch", "-0", "-q", "--size", "9x9", "--index", folder / "index.gml"}};
    for (const auto& words : commands) {
        std::string what;
        for (const std::string& word : words)
            what += Tellurion::Printable(word) + " ";
        const ToolRun run = RunTool(words, {.in = names});
        EXPECT_LE(run.status, 64) << what;
        EXPECT_FALSE(run.out.empty() && run.err.empty()) << what;
        ExpectPrintable(run.out, words[0] == "batch" && words.size() == 2 ? "json" : what);
        ExpectPrintable(run.err, "messages");
        const bool is_csv = words.back() == "csv";
        EXPECT_TRUE(!is_csv || run.out.find("\n'=1+1,false,") != std::string::npos) << run.out;
        if (words[0] == "preview" && run.status == 0) {
            CPLXMLNode* const drawing = CPLParseXMLString(run.out.c_str());
            EXPECT_TRUE(drawing) << run.out;
            CPLDestroyXMLNode(drawing);
        }
    }
    for (const char* index : {"index.csv", "index.gml"})
        ExpectPrintable(TempFolder::Slurp(folder / index), index);
}

}  // namespace

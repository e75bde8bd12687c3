#include <gtest/gtest.h>

#include "RunTool.h"

#include <set>
#include <sstream>

namespace {

using nlohmann::json;

struct CrsCase {
    std::string words;
    const char* understood_as;
    const char* epsg;  ///< empty where no EPSG system matches
    const char* epsg_name;
    const char* units;
};

TEST(Crs, ConvertsBetweenNotations) {
    const CrsCase cases[] = {
        {"EPSG:27700", "EPSG code", "EPSG:27700", "OSGB36 / British National Grid", "metre"},
        {"4326", "EPSG code", "EPSG:4326", "WGS 84", "degree"},
        {"NUTM12 NAD27", "names", "EPSG:26712", "NAD27 / UTM zone 12N", "metre"},
        {"nutm12~nad27", "names", "EPSG:26712", "NAD27 / UTM zone 12N", "metre"},
        {"NZTM", "names", "EPSG:2193", "NZGD2000 / New Zealand Transverse Mercator 2000", "metre"},
        {"L2CAL6M NAD83 USFEET", "names", "EPSG:2230", "NAD83 / California zone 6 (ftUS)", "US survey foot"},
        {"LAT-LONG NAD83", "names", "EPSG:4269", "NAD83", "degree"},
        {"CoordSys~Earth~Projection~8,~104,~\"m\",~-111,~0,~0.9996,~500000,~0", "MapInfo clause",
         "EPSG:32612", "WGS 84 / UTM zone 12N", "metre"},
        {PrjOf("4326"), "well-known text", "EPSG:4326", "WGS 84", "degree"},
        {"NUTM31 ED50FRA", "names", "", "", "metre"},
    };
    for (const CrsCase& c : cases) {
        SCOPED_TRACE(c.words);
        const ToolRun run = RunTool(Words("crs --json " + c.words));
        EXPECT_EQ(run.status, 0) << run.err;
        const json ours = run.Ours(), system = ours["coordSys"];
        EXPECT_EQ(ours["understoodAs"], c.understood_as);
        EXPECT_EQ(system.value("epsg", ""), c.epsg);
        EXPECT_EQ(system.value("epsgName", ""), c.epsg_name);
        EXPECT_EQ(system["units"], c.units);
        EXPECT_NE(run.out.find("\"coordinateSystem\":{\"wkt\":\""), std::string::npos);
    }
}

TEST(Crs, PrintsTheTextsThatFilesHold) {
    const ToolFolder folder;
    folder.ExpectRun("crs --json EPSG:26712", 0,
                     R"("texts":{"erMapper":{"projection":"NUTM12","datum":"NAD27"},
                        "mif":"CoordSys Earth Projection 8, 62, \"m\", -111, 0, 0.9996, 500000, 0"})",
                     {R"("prj":"PROJCS[\"NAD_1927_UTM_Zone_12N\")"});
    folder.ExpectRun(
        "crs EPSG:26712", 0, "",
        {"EPSG:26712, NAD27 / UTM zone 12N", "NUTM12 NAD27", "metre, 1 to a metre", "projected"});
    folder.ExpectRun("crs none.prj", 2, "", {"none.prj: error: No such file or directory"});
    EXPECT_EQ(RunTool({"crs", "LOCAL_CS[]"}).out.find("without a name\n"), 0U);
    for (const char* unknown : {"EPSG:999999", "NOWHERE", "NUTM12~NOWHERE", "GEOGCS[\"broken", "a~b~c~d",
                                "CoordSys~Earth~Projection~999,~104"})
        folder.ExpectRun(std::string("crs --json ") + unknown, 2, R"("ok":false)", {"error: "});
}

TEST(Crs, PrintsOneNotationAlone) {
    const std::pair<const char*, const char*> kStarts[] = {
        {"wkt1", "COMPD_CS["},  {"wkt2", "COMPOUNDCRS["}, {"esri", "PROJCS[\"British_National_Grid\""},
        {"projjson", "{"},      {"proj", "+proj=tmerc"},  {"mif", "CoordSys Earth Projection 8, 79"},
        {"epsg", "EPSG:7405\n"}};
    for (const auto& [notation, start] : kStarts) {
        const ToolRun run = RunTool({"crs", "--to", notation, "EPSG:27700+5701"});
        EXPECT_EQ(run.out.find(start), 0U) << notation << run.out;
        const std::string name = notation;
        const bool keeps_heights = name == "wkt1" || name == "wkt2" || name == "projjson" || name == "epsg";
        EXPECT_EQ(run.status, keeps_heights ? 0 : 3) << notation << run.err;
        EXPECT_EQ(run.err.empty(), keeps_heights) << notation << run.err;
    }
    EXPECT_EQ(RunTool({"crs", "--to", "ersmapper", "EPSG:26712"}).out, "NUTM12 NAD27\n");
    EXPECT_EQ(RunTool({"crs", "--to", "wkt1", "EPSG:8857"}).status, 2);
    const json parts = RunTool({"crs", "--json", "EPSG:25832+7837"}).Ours()["coordSys"];
    EXPECT_EQ(parts["horizontal"]["epsg"], "EPSG:25832");
    EXPECT_EQ(parts["vertical"]["epsg"], "EPSG:7837");
}

// One row per kind, with the library that serves those of closed SDKs.
TEST(Formats, ListsWhatThisBuildServes) {
    const ToolRun run = RunTool({"formats", "--json"});
    std::set<json> served;
    std::istringstream lines(run.out);
    for (std::string line; std::getline(lines, line);) {
        const json format = json::parse(line);
        if (format.contains("servedBy")) served.insert(format["name"]);
        if (format["name"] != "WLD") continue;
        EXPECT_EQ(format["type"], 4);
        EXPECT_EQ(format["readExtensions"].size(), 11U);
        EXPECT_EQ(format["saveExtensions"].size(), 13U);
    }
    EXPECT_EQ(served, (std::set<json>{"ECW", "JP2", "SID"}));
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(RunTool({"formats"}).out.find(".tfw"), std::string::npos);
}

TEST(Ext, PrintsTheWorldFileExtension) {
    EXPECT_EQ(RunTool({"ext", "a.tif", "b.JPEG", "c.png"}).out, ".tfw\n.jpgw\n.pgw\n");
    EXPECT_EQ(RunTool({"ext", "--json", "a.tif"}).Ours()["worldFileExtension"], ".tfw");
}

}  // namespace

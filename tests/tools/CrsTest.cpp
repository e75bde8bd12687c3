#include <gtest/gtest.h>

#include "RunTool.h"

#include <map>
#include <sstream>

namespace {

using nlohmann::json;

struct CrsCase {
    const char* name;
    std::string words;
    const char* understood_as;
    const char* epsg;  ///< empty where no EPSG system matches
    const char* epsg_name;
    const char* units;
};

TEST(Crs, IsToldInOtherWords) {
    const CrsCase cases[] = {
        {"epsg_code", "EPSG:27700", "EPSG code", "EPSG:27700", "OSGB36 / British National Grid", "metre"},
        {"bare_number", "4326", "EPSG code", "EPSG:4326", "WGS 84", "degree"},
        {"er_mapper_names", "NUTM12 NAD27", "names", "EPSG:26712", "NAD27 / UTM zone 12N", "metre"},
        {"names_in_one_word", "nutm12~nad27", "names", "EPSG:26712", "NAD27 / UTM zone 12N", "metre"},
        {"er_mapper_name_alone", "NZTM", "names", "EPSG:2193",
         "NZGD2000 / New Zealand Transverse Mercator 2000", "metre"},
        {"names_with_a_unit", "L2CAL6M NAD83 USFEET", "names", "EPSG:2230",
         "NAD83 / California zone 6 (ftUS)", "US survey foot"},
        {"names_of_charts", "LAT-LONG NAD83", "names", "EPSG:4269", "NAD83", "degree"},
        {"map_info_clause", "CoordSys~Earth~Projection~8,~104,~\"m\",~-111,~0,~0.9996,~500000,~0",
         "MapInfo clause", "EPSG:32612", "WGS 84 / UTM zone 12N", "metre"},
        {"well_known_text", PrjOf("4326"), "well-known text", "EPSG:4326", "WGS 84", "degree"},
        {"no_epsg_system", "NUTM31 ED50FRA", "names", "", "", "metre"},
    };
    for (const CrsCase& c : cases) {
        SCOPED_TRACE(c.name);
        const ToolRun run = RunTool(Words("crs --json " + c.words));
        EXPECT_EQ(run.status, 0) << run.err;
        const json object = run.Objects().at(0);
        const json& ours = object["mapanchor"];
        EXPECT_EQ(ours["understoodAs"], c.understood_as);
        EXPECT_EQ(ours["coordSys"].value("epsg", ""), c.epsg);
        EXPECT_EQ(ours["coordSys"].value("epsgName", ""), c.epsg_name);
        EXPECT_EQ(ours["coordSys"]["units"], c.units);
        EXPECT_FALSE(object["coordinateSystem"]["wkt"].get<std::string>().empty());
    }
}

TEST(CrsTexts, AreTheOnesThatFilesHold) {
    const json texts = RunTool({"crs", "--json", "EPSG:26712"}).Ours()["texts"];
    EXPECT_EQ(texts["erMapper"], (json{{"projection", "NUTM12"}, {"datum", "NAD27"}}));
    EXPECT_EQ(texts["mif"], "CoordSys Earth Projection 8, 62, \"m\", -111, 0, 0.9996, 500000, 0");
    EXPECT_EQ(texts["prj"].get<std::string>().find("PROJCS[\"NAD_1927_UTM_Zone_12N\""), 0U);
    const ToolRun run = RunTool({"crs", "EPSG:26712"});
    for (const char* part :
         {"EPSG:26712, NAD27 / UTM zone 12N", "NUTM12 NAD27", "metre, 1 to a metre", "projected"})
        EXPECT_NE(run.out.find(part), std::string::npos) << part;
    EXPECT_EQ(RunTool({"crs", "LOCAL_CS[]"}).out.find("without a name\n"), 0U);
}

TEST(CrsTexts, ThatNobodyKnowsAreRefused) {
    for (const char* text : {"EPSG:999999", "NOWHERE", "NUTM12 NOWHERE", "GEOGCS[\"broken", "a b c d",
                             "CoordSys Earth Projection 999, 104"}) {
        const ToolRun run = RunTool({"crs", "--json", text});
        EXPECT_EQ(run.status, 2) << text;
        EXPECT_EQ(run.Ours()["ok"], false) << text;
        EXPECT_NE(run.err.find("error"), std::string::npos) << text;
    }
    EXPECT_EQ(RunTool({"crs"}).status, 64);
}

// A row for each kind, and who serves those of closed kits.
TEST(Formats, ListsWhatThisBuildServes) {
    const ToolRun run = RunTool({"formats", "--json"});
    EXPECT_EQ(run.status, 0);
    std::map<std::string, json> formats;
    std::istringstream lines(run.out);
    for (std::string line; std::getline(lines, line);) {
        const json format = json::parse(line);
        formats[format["name"]] = format;
    }
    EXPECT_EQ(formats["WLD"]["type"], 4);
    EXPECT_EQ(formats["WLD"]["readExtensions"].size(), 11U);
    EXPECT_EQ(formats["WLD"]["saveExtensions"].size(), 13U);
    std::string served;
    for (const auto& [name, format] : formats)
        if (format.contains("servedBy")) served += name + " ";
    EXPECT_EQ(served, "ECW JP2 SID ");
    EXPECT_NE(RunTool({"formats"}).out.find(".tfw"), std::string::npos);
}

TEST(Ext, TellsTheWorldFileExtension) {
    EXPECT_EQ(RunTool({"ext", "a.tif", "b.JPEG", "c.png"}).out, ".tfw\n.jpgw\n.pgw\n");
    EXPECT_EQ(RunTool({"ext", "--json", "a.tif"}).Ours()["worldFileExtension"], ".tfw");
}

}  // namespace

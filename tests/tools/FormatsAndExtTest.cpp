#include <gtest/gtest.h>

#include "RunTool.h"

#include <sstream>

namespace {

using nlohmann::json;

TEST(Formats, ListsWhatThisBuildServes) {
    const ToolRun run = RunTool({"formats", "--json"});
    EXPECT_EQ(run.status, 0);
    bool found = false;
    std::istringstream lines(run.out);
    for (std::string line; std::getline(lines, line);) {
        const json format = json::parse(line);
        if (format["name"] != "WLD") continue;
        found = true;
        EXPECT_EQ(format["type"], 4);
        EXPECT_EQ(format["readExtensions"].size(), 11U);
        EXPECT_EQ(format["saveExtensions"].size(), 13U);
    }
    EXPECT_TRUE(found);
    EXPECT_NE(RunTool({"formats"}).out.find(".tfw"), std::string::npos);
}

TEST(Formats, TellsWhoServesTheKindsOfClosedKits) {
    std::istringstream lines(RunTool({"formats", "--json"}).out);
    int told = 0;
    for (std::string line; std::getline(lines, line);) {
        const json format = json::parse(line);
        const bool kit = format["name"] == "SID" || format["name"] == "ECW" || format["name"] == "JP2";
        EXPECT_EQ(format.contains("servedBy"), kit) << line;
        told += kit ? 1 : 0;
    }
    EXPECT_EQ(told, 3);
}

TEST(Ext, TellsTheWorldFileExtension) {
    EXPECT_EQ(RunTool({"ext", "a.tif", "b.JPEG", "c.png"}).out, ".tfw\n.jpgw\n.pgw\n");
    const json object = RunTool({"ext", "--json", "a.tif"}).Objects().at(0);
    EXPECT_EQ(object["mapanchor"]["worldFileExtension"], ".tfw");
}

}  // namespace

// Charts, frames, rectangles and orthophotos at the command line.

#include <gtest/gtest.h>

#include "../formats/raster/ChartFiles.h"
#include "RunTool.h"
#include "TempFolder.h"

namespace {

using namespace MapAnchor;

TEST(ChartTool, InfoNamesTheKindThatAnswered) {
    const TempFolder folder;
    const std::string chart = "KNP/GD=WGS84\nREF/1,0,0,1,1\nREF/2,9,0,1,2\nREF/3,9,9,2,2\n";
    folder.Write("TPSGI001.gen", AdrgLeader() + "ADRG" + AdrgValues().Record("TPSGI001"));
    const struct {
        const char* file;
        std::string content;
        const char* kind;
        const char* anchor;
        const char* used;
    } cases[] = {
        {"chart.kap", chart, "KAP", "corner", "chart.kap"},
        {"chart.dat", chart, "KAP", "corner", "chart.dat"},
        {"numbers.dat", "1\n0\n0\n-1\n5\n5\n", "WLD", "corner", "numbers.dat"},
        {"frame.on1", FrameFile().Bytes(), "CADRG", "centre", "frame.on1"},
        {"TPSGI001.img", AdrgLeader(true), "ADRG", "centre", "TPSGI001.gen"},
        {"quad.doq", DoqFile().Bytes(), "DOQ", "corner", "quad.doq"},
    };
    for (const auto& test : cases) {
        const ToolRun run = RunTool({"--json", folder.Write(test.file, test.content)});
        EXPECT_EQ(run.status, 0) << test.file << run.err;
        const auto ours = run.Objects().at(0)["mapanchor"];
        EXPECT_EQ(ours["referenceType"], test.kind) << test.file;
        EXPECT_EQ(ours["pixelAnchor"], test.anchor) << test.file;
        EXPECT_EQ(ours["usedFile"], folder / test.used) << test.file;
    }
}

TEST(ChartTool, RefusalsEndWithFive) {
    const TempFolder folder;
    const std::string world_file = folder.Write("map.tfw", "1\n0\n0\n-1\n5\n5\n");
    EXPECT_EQ(RunTool({"info", "--type", "doq", folder.Write("quad.doq", DoqFile().Bytes())}).status, 5);
    for (const char* kind : {"kap", "doq"}) {
        const std::string target = folder / (std::string("out.") + kind);
        EXPECT_EQ(RunTool({"convert", world_file, target}).status, 5) << kind;
        EXPECT_EQ(RunTool({"convert", "--to", kind, world_file, target}).status, 5) << kind;
    }
}

}  // namespace

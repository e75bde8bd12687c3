#include "RunTool.h"
#include "SchemaCheck.h"

#include <gtest/gtest.h>

namespace {

using nlohmann::json;

const ToolSetting kWithToy = {.environment = {{"LD_LIBRARY_PATH", MAPANCHOR_TOY_LIBRARY}}};

TEST(ToyFormat, IsKnownToTheToolFromItsRowAlone) {
    EXPECT_EQ(RunTool({"formats"}).out.find("TOY"), std::string::npos);
    const ToolRun formats = RunTool({"formats"}, kWithToy);
    EXPECT_NE(formats.out.find("TOY"), std::string::npos) << formats.err;
    EXPECT_NE(RunTool({"help", "convert"}, kWithToy).out.find(", toy"), std::string::npos);

    const TempFolder folder;
    const std::string source = folder.Write("map.tfw", "2\n0.5\n0.25\n-2\n1001\n1999\n");
    const ToolRun converted = RunTool({"convert", source, folder / "map.toy"}, kWithToy);
    ASSERT_EQ(converted.status, 0) << converted.err;
    EXPECT_EQ(TempFolder::Slurp(folder / "map.toy").rfind("TOY ", 0), 0U);
    const ToolRun info = RunTool({"info", "--json", folder / "map.toy"}, kWithToy);
    ASSERT_EQ(info.status, 0) << info.err;
    const json object = json::parse(info.out);
    EXPECT_EQ(object["mapanchor"]["referenceType"], "TOY");
    EXPECT_EQ(object["geoTransform"], json::parse(RunTool({"info", "--json", source}).out)["geoTransform"]);
    const std::string schema = RunTool({"--json-schema"}, kWithToy).out;
    EXPECT_EQ(SchemaFault(object, schema.c_str()), "");
    EXPECT_NE(SchemaFault(object), "") << "the schema of the other library knows the toy";
}

TEST(ToyFormat, IsKnownToPython) {
    if (std::string(MAPANCHOR_PYTHON_PACKAGE).empty()) GTEST_SKIP() << "built without Python";
    const TempFolder folder;
    const std::string file = folder.Write("map.toy", "TOY 2 0 1000 0 -2 2000\n");
    const std::string code = "import mapanchor; r = mapanchor.read('" + file + "'); print(r.kind, *r.affine)";
    ToolSetting setting = kWithToy;
    setting.program = MAPANCHOR_PYTHON_PROGRAM;
    setting.environment.emplace_back("PYTHONPATH", MAPANCHOR_PYTHON_PACKAGE);
    const ToolRun run = RunTool({"-c", code}, setting);
    EXPECT_EQ(run.out, "TOY 2.0 0.0 1000.0 0.0 -2.0 2000.0\n") << run.err;
}

}  // namespace

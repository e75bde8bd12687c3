#include <gtest/gtest.h>

#include "RunTool.h"
#include "SchemaCheck.h"
#include "TempFolder.h"

#include <cstdlib>
#include <filesystem>

namespace {

using nlohmann::json;

constexpr const char* kWorldFile = "0.5\n0\n0\n-0.5\n676000.25\n5241999.75\n";

TEST(Info, TellsAllOfAReferenceInJson) {
    const TempFolder folder;
    const std::string file = folder.Write("map.tfw", kWorldFile);
    folder.Write("map.prj", PrjOf("32632"));
    const ToolRun run = RunTool({"info", "--json", "--size", "200x100", file});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.err, "");
    const auto objects = run.Objects();
    ASSERT_EQ(objects.size(), 1U);
    const json& top = objects[0];
    EXPECT_EQ(top["description"], file);
    EXPECT_EQ(top["size"], json::array({200, 100}));
    EXPECT_EQ(top["geoTransform"], json::array({676000.0, 0.5, 0.0, 5242000.0, 0.0, -0.5}));
    EXPECT_EQ(top["coordinateSystem"]["wkt"].get<std::string>().rfind("PROJCS[", 0), 0U);
    const json& ours = top["mapanchor"];
    EXPECT_EQ(ours["ok"], true);
    EXPECT_EQ(ours["referenceType"], "WLD");
    EXPECT_EQ(ours["road"], "name");
    EXPECT_EQ(ours["usedFile"], file);
    EXPECT_EQ(ours["affine"]["c"], 676000.0);
    EXPECT_EQ(ours["affine"]["e"], -0.5);
    EXPECT_EQ(ours["pixelAnchor"], "corner");
    EXPECT_EQ(ours["transform"], json({{"type", 0}, {"name", "affine"}}));
    EXPECT_EQ(ours["coordSys"]["kind"], "projected");
    EXPECT_EQ(ours["coordSys"]["epsg"], "EPSG:32632");
    EXPECT_EQ(ours["coordSys"]["unitsPerMetre"], 1.0);
    EXPECT_EQ(ours["pixelIsPoint"], false);
    EXPECT_EQ(ours["diagnostics"], json::array());
    EXPECT_EQ(RunTool({file}).out, RunTool({"info", file}).out);
    EXPECT_EQ(RunTool({"--json", "info", file}).out, RunTool({"info", "--json", file}).out);
}

struct InfoCase {
    const char* name;
    const char* words;  ///< behind info --json
    int status;
    const char* error;  ///< type of the failure, empty for none
};

TEST(Info, ExitStatusSaysHowItEnded) {
    const TempFolder folder;
    folder.Write("good.tfw", kWorldFile);
    folder.Write("tiny.tfw", "1e-8\n0\n0\n-1e-8\n5\n5\n");
    folder.Write("zero.tfw", "0\n0\n0\n0\n5\n5\n");
    folder.Write("flat.tfw", "1\n1\n1\n1\n5\n5\n");
    folder.Write("map.jpg", "no image");
    folder.Write("text.xyz", "no numbers");
    folder.Write("bare", kWorldFile);
    const InfoCase cases[] = {
        {"good", "%good.tfw", 0, ""},
        {"forced_type", "--type WLD %bare", 0, ""},
        {"name_road_refuses_type_road_takes", "%tiny.tfw", 3, ""},
        {"missing", "%missing.tfw", 2, "BFileNotFoundException"},
        {"no_extension", "%bare", 2, "BFileNotFoundException"},
        {"a_folder", "--type wld %.", 2, "BFileAccessException"},
        {"no_numbers", "--type wld %text.xyz", 2, "BGeoReferenceInvalidReferenceFileException"},
        {"strict", "--type wld --strict transform,crs %flat.tfw", 2,
         "BGeoReferenceInvalidTransformException"},
        {"nothing_in_it", "--type wld %flat.tfw", 4, "BFileContentNotValidException"},
        {"refused", "%zero.tfw", 5, "BUnsupportedFileTypeException"},
        {"a_raster", "%map.jpg", 5, "BUnsupportedFileTypeException"},
    };
    for (const InfoCase& test : cases) {
        const ToolRun run = RunTool(Words(std::string("info --json ") + test.words, folder / ""));
        EXPECT_EQ(run.status, test.status) << test.name << run.err;
        const auto objects = run.Objects();
        ASSERT_EQ(objects.size(), 1U) << test.name;
        const json& ours = objects[0]["mapanchor"];
        EXPECT_EQ(ours["ok"], *test.error == '\0') << test.name;
        EXPECT_EQ(ours.contains("error") ? ours["error"].value("type", "") : "", test.error) << test.name;
    }
}

TEST(Info, WrongUsageIs64) {
    for (const char* words :
         {"", "info", "info --nonsense x", "info --size 10 x", "info --type gpx x", "info --fit magic x",
          "info --dpi 0.5 x", "info --dpi 72,5 x", "diff --max-pixels -1 x y", "check --max-rmse nan x",
          "convert one", "--size"}) {
        const ToolRun run = RunTool(Words(words));
        EXPECT_EQ(run.status, 64) << words;
        EXPECT_NE(run.err, "");
        EXPECT_EQ(run.out, "");
    }
    EXPECT_EQ(RunTool({"--help"}).status, 0);
    EXPECT_EQ(RunTool({"info", "--help"}).out.find("Examples:") != std::string::npos, true);
    EXPECT_EQ(RunTool({"--version"}).out.rfind("mapanchor ", 0), 0U);
    EXPECT_EQ(json::parse(RunTool({"--json-schema"}).out)["required"], json({"description", "mapanchor"}));
}

TEST(Info, ASecondRoadAndSidecarsAreExplained) {
    const TempFolder folder;
    const std::string tiny = folder.Write("tiny.tfw", "1e-8\n0\n0\n-1e-8\n5\n5\n");
    folder.Write("tiny.prj", PrjOf("32632"));
    const json ours = RunTool({"--json", tiny}).Ours();
    EXPECT_EQ(ours["road"], "type");
    EXPECT_EQ(ours["coordSys"]["epsg"], "EPSG:32632");
    EXPECT_NE(ours["diagnostics"].dump().find("read by type"), std::string::npos);
    // The library's log lines come along, never to stderr or stdout by themselves.
    EXPECT_NE(ours["diagnostics"].dump().find("BRefWLD::Read Failure A & E (or B & C) are zero!"),
              std::string::npos);

    folder.Write("map.jgw", kWorldFile);
    const ToolRun raster = RunTool({folder.Write("map.jpg", "")});
    EXPECT_EQ(raster.status, 5);
    EXPECT_NE(raster.err.find("map.jgw"), std::string::npos);
    EXPECT_EQ(raster.out, "");
}

TEST(Info, ManyInputsGiveOneObjectEachInTheirOrder) {
    const TempFolder folder;
    const std::string good = folder.Write("good.tfw", kWorldFile);
    const std::string odd = folder.Write("line\nend.tfw", kWorldFile);
    const std::string raw = folder.Write("raw \xFF\xFE.tfw", kWorldFile);
    const std::string umlaut = folder.Write("\303\234ber \346\261\211.tfw", kWorldFile);
    const std::string bad = folder / "missing.tfw";

    ToolRun run = RunTool({"info", "--json", good, "-", umlaut}, {.in = bad + "\r\n\n" + raw + "\n"});
    EXPECT_EQ(run.status, 3);
    auto objects = run.Objects();
    ASSERT_EQ(objects.size(), 4U);
    EXPECT_EQ(objects[0]["description"], good);
    EXPECT_EQ(objects[1]["description"], bad);
    EXPECT_EQ(objects[1]["mapanchor"]["ok"], false);
    EXPECT_EQ(objects[2]["mapanchor"]["ok"], true);  // a name that is no UTF-8 opens all the same
    EXPECT_EQ(objects[3]["description"], umlaut);

    run = RunTool({"info", "--json", "-0", "-"}, {.in = odd + std::string(1, '\0') + good});
    EXPECT_EQ(run.status, 0);
    objects = run.Objects();
    ASSERT_EQ(objects.size(), 2U);
    EXPECT_EQ(objects[0]["description"], odd);

    EXPECT_EQ(RunTool({"info", bad, bad}).status, 2);
}

TEST(Info, AFullStandardOutputIsAnError) {
    const TempFolder folder;
    const std::string file = folder.Write("map.tfw", kWorldFile);
    const ToolRun run = RunTool({"info", "--json", file}, {.out_path = "/dev/full"});
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("standard output"), std::string::npos);
}

TEST(Info, NumbersReadBackExactly) {
    const TempFolder folder;
    const std::string file =
        folder.Write("map.tfw", "0.1\n1e-17\n-1e-17\n-0.30000000000000004\n123456789.12345679\n-1e22\n");
    const json ours = RunTool({"--json", file}).Ours();
    EXPECT_EQ(ours["affine"]["a"].get<double>(), 0.1);
    EXPECT_EQ(ours["affine"]["d"].get<double>(), 1e-17);
    EXPECT_EQ(ours["affine"]["e"].get<double>(), -0.30000000000000004);
    EXPECT_EQ(ours["affine"]["c"].get<double>(), 123456789.12345679 - 0.1 * 0.5);
}

// The decimal mark is a point whatever the user's locale says.
TEST(Info, ACommaLocaleChangesNothing) {
    const TempFolder folder;
    const std::string locale = folder / "de_DE.UTF-8";
    ASSERT_EQ(std::system(("localedef -i de_DE -f UTF-8 '" + locale + "' >/dev/null 2>&1").c_str()), 0)
        << "localedef of the package locales is needed";
    const std::string file = folder.Write("map.tfw", "0.5\n0\n0\n-0.5\n1.25\n2.75\n");
    const std::string copy = folder / "copy.tfw";
    const ToolSetting german = {.environment = {{"LOCPATH", folder / "."}, {"LC_ALL", "de_DE.UTF-8"}}};
    EXPECT_EQ(RunTool({"--json", file}, german).out, RunTool({"--json", file}).out);
    EXPECT_EQ(RunTool({file}, german).out, RunTool({file}).out);
    EXPECT_EQ(RunTool({"convert", file, copy}, german).status, 0);
    EXPECT_EQ(
        TempFolder::Slurp(copy),
        "0.500000000000\n0.000000000000\n0.000000000000\n-0.500000000000\n1.250000000000\n2.750000000000\n");
}

TEST(Info, ColourOnlyWhereItIsWanted) {
    const TempFolder folder;
    const std::string file = folder.Write("map.tfw", kWorldFile);
    EXPECT_EQ(RunTool({file}).out.find('\x1b'), std::string::npos);
    EXPECT_NE(RunTool({"--color", "always", file}).out.find('\x1b'), std::string::npos);
}

}  // namespace

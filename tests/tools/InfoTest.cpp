#include <gtest/gtest.h>

#include "RunTool.h"

#include <cstdlib>

namespace {

using nlohmann::json;

constexpr const char* kWorldFile = "0.5\n0\n0\n-0.5\n676000.25\n5241999.75\n";

TEST(Info, PrintsAReferenceAsJson) {
    const ToolFolder folder;
    const std::string file = folder.Write("map.tfw", kWorldFile);
    folder.Write("map.prj", PrjOf("32632"));
    const ToolRun run = folder.ExpectRun(
        "info --json --size 200x100 %map.tfw", 0,
        R"("description":"%map.tfw","size":[200,100],"geoTransform":[676000,0.5,0,5242000,0,-0.5],"ok":true,
           "referenceType":"WLD","road":"name","usedFile":"%map.tfw","affine":{"c":676000,"e":-0.5},
           "pixelAnchor":"corner","transform":{"type":0,"name":"affine","rmsePixels":null},
           "coordSys":{"kind":"projected","epsg":"EPSG:32632","unitsPerMetre":1},"pixelIsPoint":false,
           "diagnostics":[])",
        {R"("coordinateSystem":{"wkt":"PROJCS[)"});
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.Objects().size(), 1U);
    EXPECT_EQ(RunTool({file}).out, RunTool({"info", file}).out);
    EXPECT_EQ(RunTool({"--json", "info", file}).out, RunTool({"info", "--json", file}).out);
    EXPECT_EQ(RunTool({file}).out.find('\x1b'), std::string::npos);
    folder.ExpectRun("--color always %map.tfw", 0, "", {"\x1b"});
}

struct InfoCase {
    const char* words;  ///< behind info --json
    int status;
    const char* error = "";  ///< type of the failure, empty for none
};

TEST(Info, ExitStatusSaysHowItEnded) {
    const ToolFolder folder;
    for (const char* name : {"good.tfw", "bare", "map.jgw"})
        folder.Write(name, kWorldFile);
    folder.Write("tiny.tfw", "1e-8\n0\n0\n-1e-8\n5\n5\n");
    folder.Write("tiny.prj", PrjOf("32632"));
    folder.Write("zero.tfw", "0\n0\n0\n0\n5\n5\n");
    folder.Write("flat.tfw", "1\n1\n1\n1\n5\n5\n");
    folder.Write("map.jpg", "no image");
    folder.Write("alone.jpg", "no image");
    folder.Write("text.xyz", "no numbers");
    const InfoCase cases[] = {
        {"%good.tfw", 0},
        {"--type WLD %bare", 0},
        {"%tiny.tfw", 3},
        {"%missing.tfw", 2, "BFileNotFoundException"},
        {"%bare", 2, "BFileNotFoundException"},
        {"--type wld %.", 2, "BFileAccessException"},
        {"--type wld %text.xyz", 2, "BGeoReferenceInvalidReferenceFileException"},
        {"--type wld --strict transform,crs %flat.tfw", 2, "BGeoReferenceInvalidTransformException"},
        {"--type wld %flat.tfw", 4, "BFileContentNotValidException"},
        {"%zero.tfw", 5, "BUnsupportedFileTypeException"},
        {"%map.jpg", 0},
        {"%alone.jpg", 5, "BUnsupportedFileTypeException"},
        {"--source tab %map.jpg", 4, "BFileContentNotValidException"},
    };
    for (const InfoCase& test : cases)
        folder.ExpectRun(std::string("info --json ") + test.words, test.status,
                         *test.error ? std::string(R"("ok":false,"error":{"type":")") + test.error + "\"}"
                                     : R"("ok":true,"error":null)");
    // The library's log lines come along, never to stderr or stdout by themselves.
    folder.ExpectRun("--json %tiny.tfw", 3, R"("road":"type","coordSys":{"epsg":"EPSG:32632"})",
                     {"read by type", "BRefWLD::Read Failure A & E (or B & C) are zero!"});
    folder.ExpectRun("%map.jpg", 0, "", {"read from map.jgw"});
    folder.Write("none.ers", "DatasetHeader Begin\n\tDataType\t= Raster\nDatasetHeader End\n");
    folder.ExpectRun("%none.ers", 5, "",
                     {"[gdal-driver-not-allowed]"});  // although nothing opened GDAL before
    EXPECT_EQ(folder.ExpectRun("--crs EPSG:32632 --print epsg,affine,size --size 4x2 %map.jpg", 0).out,
              "EPSG:32632\t0.5 0 676000 0 -0.5 5242000\t4 2\n");
    EXPECT_EQ(folder.ExpectRun("info --print epsg %tiny.tfw", 3).out, "EPSG:32632\n");
}

TEST(Info, WrongUsageIs64) {
    for (const char* words :
         {"", "info", "info --nonsense x", "info --size 10 x", "info --type gpx x", "info --fit magic x",
          "info --dpi 0.5 x", "info --dpi 72,5 x", "diff --max-pixels -1 x y", "check --max-rmse nan x",
          "convert one", "--size", "crs"}) {
        const ToolRun run = RunTool(Words(words));
        EXPECT_EQ(run.status, 64) << words;
        EXPECT_NE(run.err, "");
        EXPECT_EQ(run.out, "");
    }
    for (const auto& [words, answer] : {std::pair("covert a b", "did you mean convert?"),
                                        {"convert --overwrit a b", "did you mean --overwrite?"},
                                        {"info --sise=1x1 a", "did you mean --size?"},
                                        {"help convert", "Usage: mapanchor convert"},
                                        {"help", "mapanchor help COMMAND"},
                                        {"-V", "mapanchor 0"}}) {
        const ToolRun run = RunTool(Words(words));
        EXPECT_NE((run.out + run.err).find(answer), std::string::npos) << words;
    }
    EXPECT_EQ(json::parse(RunTool({"--json-schema"}).out)["required"], json({"description", "mapanchor"}));
}

TEST(Info, ManyInputsGiveOneObjectEachInTheirOrder) {
    const TempFolder folder;
    const std::string good = folder.Write("good.tfw", kWorldFile);
    const std::string odd = folder.Write("line\nend.tfw", kWorldFile);
    const std::string raw = folder.Write("raw \xFF\xFE.tfw", kWorldFile);  // not UTF-8
    const std::string umlaut = folder.Write("\303\234ber \346\261\211.tfw", kWorldFile);
    const std::string bad = folder / "missing.tfw";
    const auto inputs = [](const ToolRun& run) {
        std::string names;
        for (const json& object : run.Objects())
            names +=
                object["description"].get<std::string>() + (object["mapanchor"]["ok"] ? "|" : " failed|");
        return names;
    };
    const ToolRun lines = RunTool({"info", "--json", good, "-", umlaut}, {.in = bad + "\r\n\n" + raw + "\n"});
    EXPECT_EQ(lines.status, 3);
    EXPECT_EQ(inputs(lines),
              good + "|" + bad + " failed|" + (folder / "raw \uFFFD\uFFFD.tfw|") + umlaut + "|");
    const ToolRun nuls = RunTool({"info", "--json", "-0", "-"}, {.in = odd + std::string(1, '\0') + good});
    EXPECT_EQ(nuls.status, 0);
    EXPECT_EQ(inputs(nuls), odd + "|" + good + "|");
    EXPECT_EQ(RunTool({"info", bad, bad}).status, 2);
    const ToolRun full = RunTool({"info", "--json", good}, {.out_path = "/dev/full"});
    EXPECT_EQ(full.status, 2);
    EXPECT_NE(full.err.find("standard output"), std::string::npos);
}

// The lists of points are printed entry by entry, and look like the rest.
TEST(Info, PrintsPointsAsPartsOfOneObject) {
    const ToolFolder folder;
    const std::string file = folder.Write("map.tab",
                                          "!table\nType \"RASTER\"\n(1,2) (0,0) Label \"P\"\n"
                                          "(3,2) (2,0) Label \"\"\n(1,4) (0,2) Label \"Q\"\n");
    const std::string odd = folder.Write("\"gcpList\":[]\"points\":[].rsf", "1 1\nP 1 2 0 4 5 6 1\n");
    for (const std::string& map : {file, odd}) {
        const ToolRun run = RunTool({"info", "--json", map});
        ASSERT_EQ(run.Objects().size(), 1U);
        const auto all = nlohmann::ordered_json::parse(run.out);
        EXPECT_EQ(run.out, all.dump() + "\n");
        EXPECT_EQ(RunTool({"info", "--json", "--indent", "3", map}).out, all.dump(3) + "\n");
        EXPECT_EQ(all["gcps"]["gcpList"].size(), map == file ? 3U : 1U);
        EXPECT_EQ(all["mapanchor"]["points"].size(), map == file ? 3U : 1U);
    }
}

TEST(Info, NumbersReadBackExactly) {
    const TempFolder folder;
    const std::string file =
        folder.Write("map.tfw", "0.1\n1e-17\n-1e-17\n-0.30000000000000004\n123456789.12345679\n-1e22\n");
    const json affine = RunTool({"--json", file}).Ours()["affine"];
    EXPECT_EQ(affine["a"].get<double>(), 0.1);
    EXPECT_EQ(affine["d"].get<double>(), 1e-17);
    EXPECT_EQ(affine["e"].get<double>(), -0.30000000000000004);
    EXPECT_EQ(affine["c"].get<double>(), 123456789.12345679 - 0.1 * 0.5);
}

// The decimal mark is a point in every locale.
TEST(Info, ACommaLocaleChangesNothing) {
    const TempFolder folder;
    const std::string locale = folder / "de_DE.UTF-8";
    ASSERT_EQ(std::system(("localedef -i de_DE -f UTF-8 '" + locale + "' >/dev/null 2>&1").c_str()), 0)
        << "localedef of the package locales is needed";
    const std::string file = folder.Write("map.tfw", kWorldFile);
    const std::string copy = folder / "copy.tfw";
    const ToolSetting german = {.environment = {{"LOCPATH", folder / "."}, {"LC_ALL", "de_DE.UTF-8"}}};
    EXPECT_EQ(RunTool({"--json", file}, german).out, RunTool({"--json", file}).out);
    EXPECT_EQ(RunTool({file}, german).out, RunTool({file}).out);
    EXPECT_EQ(RunTool({"convert", file, copy}, german).status, 0);
    EXPECT_EQ(TempFolder::Slurp(copy).rfind("0.500000000000\n0.000000000000\n", 0), 0U);
}

}  // namespace

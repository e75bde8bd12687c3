// The text sidecars on the command line: conversion between them, and the residuals.

#include <gtest/gtest.h>

#include "RunTool.h"
#include "TempFolder.h"

#include <filesystem>

namespace {

using nlohmann::json;

constexpr const char* kPoints =
    "4 5\n\"NW\" 0 0 0 5242000 676000 0 1\n\"NE\" 0 199 0 5242000.4 676398 0 1\n"
    "\"SE\" 99 199 0 5241802 676398.2 0 1\n\"SW \xC3\xA9\" 99 0 0 5241802 676000 12.5 1\n"
    "\"off\" 50 50 0 5241000 676000 0 0\nNONE\nNONE\nNONE\nNONE\n0";
TEST(Sidecars, EachConvertsIntoEach) {
    const TempFolder folder;
    const std::string kinds[] = {"tfw", "rsf", "tab", "ers"};
    folder.Write("from.tfw", "0.5\n0\n0\n-0.25\n10.25\n49.875\n");
    folder.Write("from.prj", PrjOf("4326"));
    const auto convert = [&](const std::string& source, const std::string& target) {
        return RunTool(
            Words("convert --json --size 200x100 --image map.tif %" + source + " %" + target, folder / ""));
    };
    for (const std::string& first : kinds) {
        if (first != "tfw") {
            EXPECT_EQ(convert("from.tfw", "from." + first).status, 0) << first;
        }
        for (const std::string& second : kinds) {
            SCOPED_TRACE(first + " to " + second);
            const ToolRun run = convert("from." + first, first + "-to." + second);
            // Corners that became points are lost where there are no points.
            const bool loses = (first == "rsf" || first == "tab") && (second == "tfw" || second == "ers");
            EXPECT_EQ(run.status, loses ? 3 : 0) << run.out;
            const json back = RunTool({"--json", folder / (first + "-to." + second)}).Objects().at(0);
            const json expected = {10.0, 0.5, 0.0, 50.0, 0.0, -0.25};
            for (std::size_t i = 0; i < 6; ++i)
                EXPECT_NEAR(back["geoTransform"][i].get<double>(), expected[i].get<double>(), 1e-9);
            EXPECT_EQ(back["mapanchor"]["coordSys"]["epsg"], "EPSG:4326");
        }
    }
    EXPECT_NE(TempFolder::Slurp(folder / "tfw-to.tab").find("File \"map.tif\""), std::string::npos);
    EXPECT_NE(TempFolder::Slurp(folder / "tfw-to.ers").find("NrOfLines\t= 100\n"), std::string::npos);
}

struct LossCase {
    const char* name;
    const char* source;
    const char* target;
    std::string options;
    int status;
    const char* said;
};

TEST(Sidecars, WhatATargetLacksOrNeedsIsSaid) {
    const TempFolder folder;
    folder.Write("plain.tfw", "1\n0\n0\n-1\n5\n5\n");
    folder.Write("turned.tfw", "1\n0.5\n-0.5\n-1\n5\n5\n");
    folder.Write("points.rsf", kPoints);
    folder.Write("odd.tfw", "1\n0\n0\n-1\n5\n5\n");
    folder.Write("odd.prj",
                 "GEOGCS[\"odd\",DATUM[\"D_odd\",SPHEROID[\"odd\",6300000,300]],PRIMEM[\"Greenwich\",0],UNIT["
                 "\"Degree\",0.0174532925199433]]");
    for (const auto& [name, code] : {std::pair{"japan", "2444"}, {"igs", "9009"}, {"utm", "32632"}}) {
        folder.Write(std::string(name) + ".tfw", "1\n0\n0\n-1\n5\n5\n");
        folder.Write(std::string(name) + ".prj", PrjOf(code));
    }
    const std::string known = "--size 9x9 --image a.tif";
    const LossCase cases[] = {
        {"no_size_for_corners_of_rsf", "plain.tfw", "a.rsf", "", 2, "--size WxH"},
        {"no_size_for_corners_of_tab", "plain.tfw", "a.tab", "--image a.tif", 2, "--size WxH"},
        {"one_column_makes_no_corners", "plain.tfw", "a.rsf", "--size 1x9", 2, "--size WxH"},
        {"by_type_too", "plain.tfw", "a.txt", "--to rsf", 2, "--size WxH"},
        {"corners", "plain.tfw", "b.rsf", "--size 9x9", 0, "\"diagnostics\":[]"},
        {"no_system_for_tab", "plain.tfw", "b.tab", known, 3, "without a datum"},
        {"no_image_for_tab", "points.rsf", "c.tab", "", 3, "--image NAME"},
        {"disabled_point_in_tab", "points.rsf", "d.tab", "--image a.tif", 3, "no mark for them"},
        {"no_size_for_ers", "plain.tfw", "a.ers", "--image a.tif", 3, "0 by 0 pixels"},
        {"no_image_for_ers", "plain.tfw", "b.ers", "--size 9x9", 3, "--image NAME"},
        {"known_ers", "plain.tfw", "c.ers", known, 0, "\"diagnostics\":[]"},
        {"rotation_in_ers", "turned.tfw", "d.ers", known, 2, "does not support rotation"},
        {"system_without_a_name_in_ers", "odd.tfw", "e.ers", known, 3, "it has no name"},
        {"datum_without_a_name_in_ers", "japan.tfw", "f.ers", known, 3, "it is read back as Tokyo /"},
        {"datum_without_a_name_in_tab", "igs.tfw", "f.tab", known, 3, "(EPSG:9009): it is read back as"},
        {"known_tab", "utm.tfw", "g.tab", known, 0, "\"diagnostics\":[]"},
        {"known_system_in_ers", "utm.tfw", "g.ers", known, 0, "\"diagnostics\":[]"},
        {"points_in_wld", "points.rsf", "e.tfw", "", 3, "control points are not saved"},
    };
    for (const LossCase& test : cases) {
        SCOPED_TRACE(test.name);
        const ToolRun run = RunTool(
            Words(std::string("convert --json %") + test.source + " %" + test.target + " " + test.options,
                  folder / ""));
        EXPECT_EQ(run.status, test.status) << run.out;
        EXPECT_NE(run.out.find(test.said), std::string::npos) << run.out;
        EXPECT_EQ(std::filesystem::exists(folder / test.target), test.status != 2);
    }
}

TEST(Sidecars, ResidualsOfControlPoints) {
    const TempFolder folder;
    const std::string file = folder.Write("map.rsf", kPoints);
    const json ours = RunTool({"info", "--json", "--size", "200x100", file}).Ours();
    EXPECT_EQ(ours["referenceType"], "RSF");
    EXPECT_NEAR(ours["transform"]["rmsePixels"].get<double>(), 0.05585, 1e-5);
    EXPECT_NEAR(ours["transform"]["maxPixels"].get<double>(), 0.05585, 1e-5);
    ASSERT_EQ(ours["points"].size(), 5U);
    EXPECT_EQ(ours["points"][3]["name"], "SW \xC3\xA9");
    EXPECT_EQ(ours["points"][3]["z"], 12.5);
    EXPECT_NEAR(ours["points"][0]["residualPixels"].get<double>(), 0.05585, 1e-5);
    // A disabled point has a residual, and no part in the error.
    EXPECT_EQ(ours["points"][4]["enabled"], false);
    EXPECT_GT(ours["points"][4]["residualPixels"].get<double>(), 400.0);

    const std::string text = RunTool({"info", file}).out;
    EXPECT_NE(text.find("residuals    root mean square 0.0558"), std::string::npos) << text;
    EXPECT_NE(text.find("  point column row x        y         z    residual used\n"), std::string::npos);
    EXPECT_NE(text.find("  SW \xC3\xA9  0      99  676000   5241802   12.5 0.056    yes\n"),
              std::string::npos);
    EXPECT_NE(text.find("452.343  no\n"), std::string::npos);

    // Without a fit there are points and no residuals.
    const json none = RunTool({"info", "--json", "--fit", "none", file}).Ours();
    EXPECT_EQ(none["points"].size(), 5U);
    EXPECT_FALSE(none["points"][0].contains("residualPixels"));
}

}  // namespace

// The text sidecars on the command line: conversion between them, and the residuals.

#include <gtest/gtest.h>

#include "RunTool.h"

#include <filesystem>

namespace {

using nlohmann::json;

constexpr const char* kPoints =
    "4 5\n\"NW\" 0 0 0 5242000 676000 0 1\n\"NE\" 0 199 0 5242000.4 676398 0 1\n"
    "\"SE\" 99 199 0 5241802 676398.2 0 1\n\"SW \xC3\xA9\" 99 0 0 5241802 676000 12.5 1\n"
    "\"off\" 50 50 0 5241000 676000 0 0\nNONE\nNONE\nNONE\nNONE\n0";

TEST(Sidecars, EachConvertsIntoEach) {
    const ToolFolder folder;
    const std::string convert = "convert --json --size 200x100 --image map.tif ";
    folder.Write("from.tfw", "0.5\n0\n0\n-0.25\n10.25\n49.875\n");
    folder.Write("from.prj", PrjOf("4326"));
    for (const std::string first : {"tfw", "rsf", "tab", "ers"}) {
        if (first != "tfw") folder.ExpectRun(convert + "%from.tfw %from." + first, 0);
        for (const std::string second : {"tfw", "rsf", "tab", "ers"}) {
            const std::string target = " %" + first + "-to." + second;
            // Corners that became points are lost where there are no points.
            const bool loses = (first == "rsf" || first == "tab") && (second == "tfw" || second == "ers");
            folder.ExpectRun(convert + "%from." + first + target, loses ? 3 : 0);
            folder.ExpectRun("--json" + target, 0,
                             R"("geoTransform":[10,0.5,0,50,0,-0.25],"coordSys":{"epsg":"EPSG:4326"})");
        }
    }
    EXPECT_NE(TempFolder::Slurp(folder / "tfw-to.tab").find("File \"map.tif\""), std::string::npos);
    EXPECT_NE(TempFolder::Slurp(folder / "tfw-to.ers").find("NrOfLines\t= 100\n"), std::string::npos);
}

struct LossCase {
    std::string source;
    std::string target;
    std::string options;
    int status;
    const char* text;
};

TEST(Sidecars, WhatATargetLacksOrNeedsIsReported) {
    const ToolFolder folder;
    folder.Write("turned.tfw", "1\n0.5\n-0.5\n-1\n5\n5\n");
    folder.Write("points.rsf", kPoints);
    folder.Write("tiny.tfw", "1e-9\n0\n0\n-1e-9\n5\n5\n");
    for (const char* name : {"plain.tfw", "odd.tfw", "japan.tfw", "igs.tfw", "utm.tfw"})
        folder.Write(name, "1\n0\n0\n-1\n5\n5\n");
    folder.Write("odd.prj",
                 "GEOGCS[\"odd\",DATUM[\"D_odd\",SPHEROID[\"odd\",6300000,300]],PRIMEM[\"Greenwich\",0],UNIT["
                 "\"Degree\",0.0174532925199433]]");
    for (const auto& [name, code] :
         {std::pair{"japan.prj", "2444"}, {"igs.prj", "9009"}, {"utm.prj", "32632"}})
        folder.Write(name, PrjOf(code));
    const std::string known = "--size 9x9 --image a.tif";
    const LossCase cases[] = {
        // The corners need a size, of two pixels at least.
        {"plain.tfw", "a.rsf", "", 2, "--size WxH"},
        {"plain.tfw", "a.tab", "--image a.tif", 2, "--size WxH"},
        {"plain.tfw", "a.rsf", "--size 1x9", 2, "--size WxH"},
        {"plain.tfw", "a.txt", "--to rsf", 2, "--size WxH"},
        {"plain.tfw", "b.rsf", "--size 9x9", 0, "\"diagnostics\":[]"},
        {"plain.tfw", "b.tab", known, 3, "without a datum"},
        {"points.rsf", "c.tab", "", 3, "--image NAME"},
        {"points.rsf", "d.tab", "--image a.tif", 3, "no mark for them"},
        {"plain.tfw", "a.ers", "--image a.tif", 3, "0 by 0 pixels"},
        {"plain.tfw", "b.ers", "--size 9x9", 3, "--image NAME"},
        {"plain.tfw", "c.ers", known, 0, "\"diagnostics\":[]"},
        {"turned.tfw", "d.ers", known, 2, "does not support rotation"},
        {"odd.tfw", "e.ers", known, 3, "it has no name"},
        {"japan.tfw", "f.ers", known, 0, "\"diagnostics\":[]"},
        {"igs.tfw", "f.tab", known, 3, "(EPSG:9009): it is read back as"},
        {"utm.tfw", "g.tab", known, 0, "\"diagnostics\":[]"},
        {"utm.tfw", "g.ers", known, 0, "\"diagnostics\":[]"},
        {"points.rsf", "e.tfw", "", 3, "control points are not saved"},
        {"tiny.tfw", "h.tab", known, 3, "11 decimals, which moves the far corner by up to 0.005 pixels"},
    };
    for (const LossCase& test : cases) {
        folder.ExpectRun("convert --json %" + test.source + " %" + test.target + " " + test.options,
                         test.status, "", {test.text});
        EXPECT_EQ(std::filesystem::exists(folder / test.target), test.status != 2) << test.target;
    }
}

TEST(Sidecars, ResidualsOfControlPoints) {
    const ToolFolder folder;
    folder.Write("map.rsf", kPoints);
    const json ours = folder
                          .ExpectRun("info --json --size 200x100 %map.rsf", 0, R"("referenceType":"RSF",
        "points":[{},{},{},{"name":"SW é","z":12.5},{"enabled":false}])")
                          .Ours();
    for (const json& residual : {ours["transform"]["rmsePixels"], ours["transform"]["maxPixels"],
                                 ours["points"][0]["residualPixels"]})
        EXPECT_NEAR(residual.get<double>(), 0.05585, 1e-5);
    // A disabled point has a residual, but no part in the error.
    EXPECT_GT(ours["points"][4]["residualPixels"].get<double>(), 400.0);
    folder.ExpectRun("info %map.rsf", 0, "",
                     {"residuals    root mean square 0.056, largest 0.056 pixels",
                      "  point column row x        y         z    residual used\n",
                      "  SW \xC3\xA9  0      99  676000   5241802   12.5 0.056    yes\n", "452.343  no\n"});
    // Without a fit there are points and no residuals.
    folder.ExpectRun("info --json --fit none %map.rsf", 0,
                     R"("points":[{"residualPixels":null},{},{},{},{}],"transform":null)");
}

}  // namespace

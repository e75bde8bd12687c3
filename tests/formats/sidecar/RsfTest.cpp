// RSF files through the front door: the road by name and the road by type.

#include <Tellurion/BFileUtilities.h>
#include <Tellurion/BLinearUnit.h>

#include <gtest/gtest.h>

#include "LogCapture.h"
#include "References.h"
#include "Roads.h"
#include "TempFolder.h"

#include <unistd.h>

namespace MapAnchor {
namespace {

using namespace Tellurion;

constexpr EReferenceType kRsf = EReferenceType::RSF;
constexpr const char* kInvalidFile = "BGeoReferenceInvalidReferenceFileException";
constexpr const char* kInvalidSystem = "BGeoReferenceInvalidCoordSysException";
constexpr const char* kInvalidTransform = "BGeoReferenceInvalidTransformException";
constexpr const char* kUnsupported = "BUnsupportedFileTypeException";
constexpr const char* kNoReference = "BFileContentNotValidException";
constexpr const char* kCountDiffers =
    "BRefRSF::Read # of points in the header differs from the # of points listed.";
const std::string kRows = "\"NW\" 0 0 0 50 10 0 1\n\"NE\" 0 199 0 50 12 0 1\n\"SW\" 99 0 0 49 10 0 1\n";
const std::string kNone = "NONE\nNONE\nNONE\nNONE\n0";
const std::string kWgs84 =
    "GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS 84\",6378137,298.257223563]],"
    "PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]]";

struct ContentCase {
    const char* name;
    std::string content;
    std::string by_name;  ///< type of what is thrown, empty for success
    std::string by_type;
    std::string strict;   ///< by type with both flags set
    bool system = false;  ///< what a good read by name has
    int points = 3;
};

// Which contents the roads take, and how they end.
TEST(Rsf, TheRoadsTakeWhatTheyShould) {
    const std::string word = "P1 10 20 0 5.5 6.5 0 1\n";
    const std::string long_name(255, 'n');
    const std::vector<ContentCase> cases = {
        {"version_1", "1 3\n" + kRows, "", "", ""},
        {"version_2_has_no_block", "2 3\n" + kRows + kNone, "", "", ""},
        {"version_3", "3 3\n" + kRows + "NONE\nUTM-12N\nNAD27\nMETERS\n", "", "", "", true},
        {"version_3_of_unknown_names", "3 3\n" + kRows + "NONE\nNONE\nNONE\nNONE\n", "", "", kInvalidSystem},
        {"version_3_short_block", "3 3\n" + kRows + "NONE\nUTM-12N\nNAD27\n", "", kInvalidFile, kInvalidFile},
        {"version_4", "4 3\n" + kRows + kNone + "\n" + kWgs84, "", "", "", true},
        {"version_4_spread_text",
         "4 3\r\n" + kRows + kNone + "\r\n" + kWgs84.substr(0, 40) + "\r\n" + kWgs84.substr(40), "", "", "",
         true},
        {"version_4_without_system", "4 3\n" + kRows + kNone, "", "", ""},
        {"version_4_without_mode", "4 3\n" + kRows + kNone.substr(0, kNone.size() - 2), "", kInvalidFile,
         kInvalidFile},
        {"version_4_bad_text", "4 3\n" + kRows + kNone + "\nGEOGCS[", "", "", kInvalidSystem},
        {"version_5_fails_late_by_type", "5 3\n" + kRows + kNone + "\n" + kWgs84, "", kInvalidFile,
         kInvalidFile},
        {"version_0", "0 3\n" + kRows, "", kInvalidFile, kInvalidFile},
        {"version_minus_1", "-1 3\n" + kRows, "", kInvalidFile, kInvalidFile},
        {"count_0_of_a_good_version", "1 0\n", kNoReference, kInvalidFile, kInvalidFile},
        {"count_0_of_version_4", "4 0\n" + kNone + "\n" + kWgs84, "", kInvalidFile, kInvalidFile, true, 0},
        {"count_0_of_a_bad_version", "9 0\n", kUnsupported, kInvalidFile, kInvalidFile},
        {"negative_count", "1 -3\n" + kRows, kUnsupported, kInvalidFile, kInvalidFile},
        {"count_beyond_the_rows", "1 4\n" + kRows, kUnsupported, kInvalidFile, kInvalidFile},
        {"count_of_two_thousand_million", "1 2000000000\n" + kRows, kUnsupported, kInvalidFile, kInvalidFile},
        {"count_beyond_32_bits", "1 99999999999999999999\n" + kRows, kUnsupported, kInvalidFile,
         kInvalidFile},
        {"count_below_the_rows", "1 2\n" + kRows, "", "", kInvalidTransform, false, 2},
        {"comment_among_an_honest_count", "1 3\n# north\n" + kRows, kUnsupported, kInvalidFile, kInvalidFile},
        {"comment_counts_as_a_row", "1 4\n" + kRows + "# south\n", kUnsupported, kInvalidFile, kInvalidFile},
        {"bare_name", "1 3\n" + word + word + word, "", "", kInvalidTransform},
        {"indented", "1 1\n \t\"P\" 1 2 3 4 5 6 7\n", "", "", kInvalidTransform, false, 1},
        {"name_without_blank_behind", "1 1\n\"P\"1 2 3 4 5 6 7\n", "", "", kInvalidTransform, false, 1},
        {"blank_in_front_of_a_comment", "1 1\n # 1 2 0 4 5 6 1\n", "", "", kInvalidTransform, false, 1},
        {"fractional_pixel", "1 1\nP 10.5 20.9 0 5.5 6.5 0 1\n", "", kInvalidFile, kInvalidFile, false, 1},
        {"fields_missing", "1 1\nP 10 20 0 5.5 6.5 0\n", kUnsupported, kInvalidFile, kInvalidFile},
        {"quote_without_end", "1 1\n\"P 10 20 0 5.5 6.5 0 1\n", kUnsupported, kInvalidFile, kInvalidFile},
        {"quote_at_the_end_of_the_line", "1 1\n\"", kUnsupported, kInvalidFile, kInvalidFile},
        {"name_of_255_bytes", "1 1\n\"" + long_name + "\" 1 2 0 4 5 6 1\n", "", "", kInvalidTransform, false,
         1},
        {"name_of_256_bytes", "1 1\n\"" + long_name + "n\" 1 2 0 4 5 6 1\n", kUnsupported, kInvalidFile,
         kInvalidFile},
        {"bare_name_of_a_megabyte", "1 1\n" + std::string(1 << 20, 'n') + " 1 2 0 4 5 6 1\n", "", "",
         kInvalidTransform, false, 1},
        {"empty_row", "1 1\n\n", kUnsupported, kInvalidFile, kInvalidFile},
        {"header_of_one_character", "1\n", kUnsupported, kInvalidFile, kInvalidFile},
        {"header_without_count", "RSF 1\n" + kRows, kUnsupported, kInvalidFile, kInvalidFile},
        {"empty", "", kUnsupported, kInvalidFile, kInvalidFile},
        {"binary", std::string("\x89RSF\0\x1A\n\xFF", 8), kUnsupported, kInvalidFile, kInvalidFile},
    };
    const TempFolder folder;
    const LogCapture log;
    for (const ContentCase& test : cases) {
        SCOPED_TRACE(test.name);
        const std::string file = folder.Write(std::string(test.name) + ".rsf", test.content);
        BGeoReference reference;
        EXPECT_EQ(Roads::Read(file, reference).type, test.by_name);
        if (test.by_name.empty()) {
            EXPECT_EQ(reference.PointPairVector.size(), static_cast<std::size_t>(test.points));
            EXPECT_EQ(reference.HasCoordSys(), test.system);
        }
        EXPECT_EQ(Roads::Read(kRsf, file, reference).type, test.by_type);
        EXPECT_EQ(Roads::Read(kRsf, file, reference, Roads::kStrict).type, test.strict);
    }
}

TEST(Rsf, RowsComeBeforeColumnsAndYBeforeX) {
    const TempFolder folder;
    const LogCapture log;
    BGeoReference reference;
    ASSERT_EQ(Roads::Read(folder.Write("map.rsf",
                                       "1 2\n\"A \xE9\" 10 20 7 5.5 6.5 1.25 0\n"
                                       "B 1.9 -2.9 0 1e3 nan 0 -1\n"),
                          reference)
                  .type,
              "");
    const BPointPair& first = reference.PointPairVector.at(0);
    EXPECT_EQ(first.Name, BString("A \xC3\xA9"));  // Windows-1252, as it is no UTF-8
    EXPECT_EQ(first.Row, 10);
    EXPECT_EQ(first.Column, 20);
    EXPECT_EQ(first.World.y, 5.5);
    EXPECT_EQ(first.World.x, 6.5);
    EXPECT_EQ(first.World.z, 1.25);
    EXPECT_FALSE(first.Enabled);
    const BPointPair& second = reference.PointPairVector.at(1);
    EXPECT_EQ(second.Row, 1);  // cut towards zero
    EXPECT_EQ(second.Column, -2);
    EXPECT_TRUE(second.Enabled);
}

TEST(Rsf, FitsThroughThePoints) {
    const TempFolder folder;
    BGeoReference reference;
    ASSERT_EQ(Roads::Read(kRsf, folder.Write("map.rsf", "1 3\n" + kRows), reference, Roads::kStrict).type,
              "");
    ASSERT_TRUE(reference.HasMathTransform());
    BPoint world = reference.MathTransform->ConvertSourceToTarget(BPoint(199, 99, 0));
    EXPECT_NEAR(world.x, 12, 1e-12);
    EXPECT_NEAR(world.y, 49, 1e-12);
}

struct FailureCase {
    const char* name;
    std::string content;
    std::string detail;  ///< % stands for the file
    std::vector<std::string> log;
};

TEST(Rsf, ReadFailuresSayWhatAndWhere) {
    const std::vector<FailureCase> cases = {
        {"empty", "", "File <%> is empty.", {}},
        {"header", "4 x\n", "Failed while trying to read the header (4 x)", {}},
        {"count",
         "4 0\n",
         "File <%> is an invalid RSF file.  We require at least 1 point, this file only has (0).",
         {}},
        {"missing_row", "4 4\n" + kRows, "Failed while trying to read in the 3 row of GCP's.", {}},
        {"bad_row",
         "4 2\nP 1 2 0 4 5 6 1\nQ 1.5 2 0 4 5 6 1\n",
         "Failed reading in the row (1) of the GCP's.",
         {"BRefRSF::Read Failure parsing referencing points from the line : \"Q 1.5 2 0 4 5 6 1\""}},
        {"comments",
         "4 2\nP 1 2 0 4 5 6 1\n#\n",
         "Number of GCP's in the file (2) does not match the number indicated in the file header (1).",
         {kCountDiffers}},
        {"version",
         "7 3\n" + kRows,
         "File <%> is an invalid RSF file.  Version (7) has to be between 1 & 4.",
         {}},
        {"block", "3 3\n" + kRows + "NONE\n", "Could not load Version 3 coordinate system Tags", {}},
        {"mode", "4 3\n" + kRows + "NONE\nNONE\nNONE\nNONE\n", "Could not load Version 4 reference mod", {}},
        {"plain_names",
         "3 3\n" + kRows + "a\nb\nc\nd\n",
         "Could not read in RSF version 3 Coordinate System strings b : c : d\n",
         {}},
        {"wkt", "4 3\n" + kRows + kNone + "\nGEOG\nCS[", "Could not parse WKT string <GEOGCS[>", {}},
    };
    const TempFolder folder;
    for (const FailureCase& test : cases) {
        SCOPED_TRACE(test.name);
        const LogCapture log;
        const std::string file = folder.Write(std::string(test.name) + ".rsf", test.content);
        BGeoReference reference;
        const Thrown thrown = Roads::Read(kRsf, file, reference, Roads::kStrict);
        std::string detail = test.detail;
        if (const auto at = detail.find('%'); at != std::string::npos) detail.replace(at, 1, file);
        EXPECT_EQ(thrown.detail, detail);
        EXPECT_EQ(thrown.source, "BRefRSF::Read");
        EXPECT_EQ(log.lines, test.log);
    }
    BGeoReference reference;
    const Thrown thrown = Roads::Read(kRsf, folder / ".", reference);
    EXPECT_EQ(thrown.type, "BFileAccessException");
    EXPECT_EQ(thrown.detail, "Could not open the reference file <" + (folder / ".") + "> for reading.");
}

TEST(Rsf, PointsWithoutAFitAreKept) {
    const TempFolder folder;
    LogCapture log;
    const std::string file = folder.Write("map.rsf", "1 2\nP 1 2 0 4 5 6 1\nQ 3 4 0 5 6 7 1\n");
    BGeoReference reference;
    EXPECT_EQ(Roads::Read(kRsf, file, reference).type, "");
    EXPECT_EQ(reference.PointPairVector.size(), 2U);
    EXPECT_FALSE(reference.HasMathTransform());
    ASSERT_EQ(log.lines.size(), 1U);
    const std::string head = "BRefRSF::Read Failure setting the BMathTransform ERROR (";
    ASSERT_EQ(log.lines[0].rfind(head, 0), 0U) << log.lines[0];
    const Thrown thrown = Roads::Read(kRsf, file, reference, BMapAnchor::kStrictTransform);
    EXPECT_EQ(thrown.source, "BRefRSF::Read");
    EXPECT_EQ(head + thrown.detail + ")", log.lines[0]);
}

BGeoReference ThreePoints() {
    return References::WithPoints({{20, 10, 6.5, 5.5, 0.125, "A b", true},
                                   {220, 10, 8.5, 5.5, 0, "\xC3\x85, (2)", false},
                                   {20, 110, 6.5, -0.1, 0, "", true}});
}

TEST(Rsf, WritesVersionFour) {
    const TempFolder folder;
    BGeoReference reference = ThreePoints();
    const std::string rows =
        "4 3\n\"A b\" 10 20 0 5.500000000000000 6.500000000000000 0.12500 1\n"
        "\"\xC3\x85, (2)\" 10 220 0 5.500000000000000 8.500000000000000 0.00000 0\n"
        "\"\" 110 20 0 -0.100000000000000 6.500000000000000 0.00000 1\n";
    EXPECT_EQ(Roads::Save(folder / "name.rsf", reference).type, "");
    EXPECT_EQ(TempFolder::Slurp(folder / "name.rsf"), rows + kNone);
    References::SetSystem(reference, "32633");
    EXPECT_EQ(Roads::Save(folder / "name.rsf", reference).type, "");
    EXPECT_EQ(TempFolder::Slurp(folder / "name.rsf"),
              rows + kNone + "\n" + reference.CoordSys->ToWKT().StdStr());
    EXPECT_EQ(Roads::Save(kRsf, folder / "type.rsf", reference, Roads::kStrict).type, "");
    EXPECT_EQ(TempFolder::Slurp(folder / "type.rsf"), TempFolder::Slurp(folder / "name.rsf"));
}

// The word outside the quotes, which no grammar has, must not cost the system.
TEST(Rsf, HeightsOfAnUnknownDatumComeBack) {
    const TempFolder folder;
    BGeoReference reference = ThreePoints();
    References::SetSystem(reference, "32633");
    reference.SetVerticalUnit(BLinearUnit::GetLinearUnit({"EPSG", "9003"}));
    ASSERT_EQ(Roads::Save(folder / "map.rsf", reference).type, "");
    EXPECT_NE(TempFolder::Slurp(folder / "map.rsf").find("COMPD_CS[Vertical \"WGS 84"), std::string::npos);
    for (const unsigned int flags : {0U, BMapAnchor::kStrictCoordSys}) {
        BGeoReference back;
        ASSERT_EQ(Roads::Read(kRsf, folder / "map.rsf", back, flags).type, "");
        ASSERT_TRUE(back.HasCoordSys());
        EXPECT_EQ(back.CoordSys->GetKind(), BCoordSys::kKindProjected);
        EXPECT_NEAR(back.CoordSys->GetVerticalUnits()->GetUnitsPerMeter(), 3937 / 1200.0, 1e-9);
    }
}

TEST(Rsf, ATransformAloneGivesTheCornerPixels) {
    const TempFolder folder;
    const BGeoReference reference = References::WithAffine(2, 0, 100, 0, -2, 300);
    const std::string four =
        "4 4\n\"NW\" 0 0 0 300.000000000000000 100.000000000000000 0.00000 1\n"
        "\"NE\" 0 199 0 300.000000000000000 498.000000000000000 0.00000 1\n"
        "\"SE\" 99 199 0 102.000000000000000 498.000000000000000 0.00000 1\n"
        "\"SW\" 99 0 0 102.000000000000000 100.000000000000000 0.00000 1\n" +
        kNone;
    EXPECT_EQ(Roads::Save(folder / "map.rsf", reference).type, "");
    EXPECT_EQ(TempFolder::Slurp(folder / "map.rsf"), four);
    EXPECT_EQ(Roads::Save(kRsf, folder / "map.rsf", reference, Roads::kStrict).type, "");
    EXPECT_EQ(TempFolder::Slurp(folder / "map.rsf"), four);
    // Without a size the road by name makes them all the same.
    EXPECT_EQ(Roads::Save(folder / "map.rsf", reference, "", 0, 0).type, "");
    EXPECT_EQ(TempFolder::Slurp(folder / "map.rsf").rfind("4 4\n", 0), 0U);
    EXPECT_EQ(Roads::Save(kRsf, folder / "map.rsf", reference, Roads::kStrict, "", 0, 100).type, "");
    EXPECT_EQ(TempFolder::Slurp(folder / "map.rsf"), "4 0\n" + kNone);
}

TEST(Rsf, WhatCannotBeWrittenSaysSo) {
    const TempFolder folder;
    LogCapture log;
    const std::string file = folder / "map.rsf";
    EXPECT_EQ(Roads::Save(file, BGeoReference()).type, kUnsupported);
    EXPECT_EQ(log.lines,
              std::vector<std::string>{"BRefRSF::Write Reference type requires valid Ground Control Points "
                                       "or a MathTransform to generate them."});
    EXPECT_EQ(TempFolder::Slurp(file), "");

    // A transform that breaks at the third corner.
    Thrown thrown = Roads::Save(kRsf, file, References::Breaking(), BMapAnchor::kStrictTransform);
    EXPECT_EQ(thrown.type, kInvalidTransform);
    EXPECT_EQ(thrown.source, "BRefRSF::Write");
    EXPECT_EQ(thrown.detail, "Can't write RSF file <" + file +
                                 ">.  When generating GCP's an exception (message no value here (source)) "
                                 "was thrown.");
    EXPECT_EQ(Roads::Save(kRsf, file, References::Breaking()).type, "");
    EXPECT_EQ(TempFolder::Slurp(file).rfind("4 2\n\"NW\"", 0), 0U);
    EXPECT_EQ(Roads::Save(file, References::Breaking()).type, "BGeoCalcException");

    const std::string nowhere = folder / "missing/map.rsf";
    log.lines.clear();
    for (const Thrown& access :
         {Roads::Save(nowhere, ThreePoints()), Roads::Save(kRsf, nowhere, ThreePoints())}) {
        EXPECT_EQ(access.type, "BFileAccessException");
        EXPECT_EQ(access.source, "BRefRSF::Write");
        EXPECT_EQ(access.detail, "Couldn't open RSF file <" + nowhere + "> for writing.");
    }
    EXPECT_EQ(log.lines[0], "BRefRSF::Write Failed to open file <" + nowhere + ">");
}

// A name that would make the file unreadable is changed, and that is said.
TEST(Rsf, NamesThatNoRowCanHold) {
    const TempFolder folder;
    LogCapture log;
    BGeoReference reference = References::WithPoints(
        {{1, 2, 3, 4, 0, "say \"hi\"\n", true}, {5, 6, 7, 8, 0, std::string(254, 'n') + "\xC3\xA9", true}});
    const std::string file = folder / "map.rsf";
    EXPECT_EQ(Roads::Save(file, reference).type, "");
    EXPECT_EQ(log.lines.at(0), "BRefRSF::Write The name <say \"hi\"\n> is written as <say 'hi' >");
    BGeoReference back;
    EXPECT_EQ(Roads::Read(file, back).type, "");
    EXPECT_EQ(back.PointPairVector.at(0).Name, BString("say 'hi' "));
    EXPECT_EQ(back.PointPairVector.at(1).Name, BString(std::string(254, 'n')));
}

TEST(Rsf, AFullDeviceIsNeverSilent) {
    const TempFolder folder;
    const LogCapture log;
    const std::string file = folder / "full.rsf";
    ASSERT_EQ(symlink("/dev/full", file.c_str()), 0);
    for (const Thrown& thrown : {Roads::Save(file, ThreePoints()), Roads::Save(kRsf, file, ThreePoints())}) {
        EXPECT_EQ(thrown.type, "BGeoReferenceWriteException");
        EXPECT_EQ(thrown.source, "BRefRSF::Write");
        EXPECT_EQ(thrown.detail, "Failed writing RSF file <" + file + ">.");
    }
}

}  // namespace
}  // namespace MapAnchor

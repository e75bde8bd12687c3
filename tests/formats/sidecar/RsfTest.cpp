// RSF files through the front door: the road by name and the road by type.

#include <Tellurion/BLinearUnit.h>

#include "Outcomes.h"

namespace MapAnchor {
namespace {

using namespace Tellurion;

constexpr EReferenceType kRsf = EReferenceType::RSF;
const std::string kRows = "\"NW\" 0 0 0 50 10 0 1\n\"NE\" 0 199 0 50 12 0 1\n\"SW\" 99 0 0 49 10 0 1\n";
const std::string kNone = "NONE\nNONE\nNONE\nNONE\n0";
const std::string kWgs84 =
    "GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS 84\",6378137,298.257223563]],"
    "PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]]";

// Which contents the roads take, and how they end.
TEST(Rsf, TheRoadsTakeWhatTheyShould) {
    const std::string word = "P1 10 20 0 5.5 6.5 0 1\n";
    const std::string long_name(255, 'n');
    const std::string four = "4 3\n" + kRows + kNone;
    constexpr Holds kFit{3, true};
    constexpr Holds kFitAndSystem{3, true, true};
    constexpr Holds kOne{1};
    constexpr Ends kByNameAlone{"", kInvalidFile, kInvalidFile};
    ExpectRoads(
        kRsf, ".rsf",
        {{"version_1", "1 3\n" + kRows, kTaken, kFit},
         {"version_2_has_no_block", "2 3\n" + kRows + kNone, kTaken, kFit},
         {"version_3", "3 3\n" + kRows + "NONE\nUTM-12N\nNAD27\nMETERS\n", kTaken, kFitAndSystem},
         {"version_3_of_unknown_names", "3 3\n" + kRows + "NONE\nNONE\nNONE\nNONE\n", kNoSystem, kFit},
         {"version_3_short_block", "3 3\n" + kRows + "NONE\nUTM-12N\nNAD27\n", kByNameAlone, kFit},
         {"version_4", four + "\n" + kWgs84, kTaken, kFitAndSystem},
         {"version_4_spread_text", four + "\r\n" + kWgs84.substr(0, 40) + "\r\n" + kWgs84.substr(40), kTaken,
          kFitAndSystem},
         {"version_4_without_system", four, kTaken, kFit},
         {"version_4_without_mode", four.substr(0, four.size() - 2), kByNameAlone, kFit},
         {"version_4_bad_text", four + "\nGEOGCS[", kNoSystem, kFit},
         {"version_5_fails_late_by_type", "5 3\n" + kRows + kNone + "\n" + kWgs84, kByNameAlone, kFit},
         {"version_0", "0 3\n" + kRows, kByNameAlone, kFit},
         {"version_minus_1", "-1 3\n" + kRows, kByNameAlone, kFit},
         {"count_0_of_a_good_version", "1 0\n", {kNoReference, kInvalidFile, kInvalidFile}},
         {"count_0_of_version_4", "4 0\n" + kNone + "\n" + kWgs84, kByNameAlone, {0, false, true}},
         {"count_0_of_a_bad_version", "9 0\n", kRefused},
         {"negative_count", "1 -3\n" + kRows, kRefused},
         {"count_beyond_the_rows", "1 4\n" + kRows, kRefused},
         {"count_of_two_thousand_million", "1 2000000000\n" + kRows, kRefused},
         {"count_beyond_32_bits", "1 99999999999999999999\n" + kRows, kRefused},
         {"count_below_the_rows", "1 2\n" + kRows, kNoFit, {2}},
         {"comment_among_an_honest_count", "1 3\n# north\n" + kRows, kRefused},
         {"comment_counts_as_a_row", "1 4\n" + kRows + "# south\n", kRefused},
         {"bare_name", "1 3\n" + word + word + word, kNoFit, {3}},
         {"indented", "1 1\n \t\"P\" 1 2 3 4 5 6 7\n", kNoFit, kOne},
         {"name_without_blank_behind", "1 1\n\"P\"1 2 3 4 5 6 7\n", kNoFit, kOne},
         {"blank_in_front_of_a_comment", "1 1\n # 1 2 0 4 5 6 1\n", kNoFit, kOne},
         {"fractional_pixel", "1 1\nP 10.5 20.9 0 5.5 6.5 0 1\n", kByNameAlone, kOne},
         {"fields_missing", "1 1\nP 10 20 0 5.5 6.5 0\n", kRefused},
         {"quote_without_end", "1 1\n\"P 10 20 0 5.5 6.5 0 1\n", kRefused},
         {"quote_at_the_end_of_the_line", "1 1\n\"", kRefused},
         {"name_of_255_bytes", "1 1\n\"" + long_name + "\" 1 2 0 4 5 6 1\n", kNoFit, kOne},
         {"name_of_256_bytes", "1 1\n\"" + long_name + "n\" 1 2 0 4 5 6 1\n", kRefused},
         {"bare_name_of_a_megabyte", "1 1\n" + std::string(1 << 20, 'n') + " 1 2 0 4 5 6 1\n", kNoFit, kOne},
         {"empty_row", "1 1\n\n", kRefused},
         {"header_of_one_character", "1\n", kRefused},
         {"header_without_count", "RSF 1\n" + kRows, kRefused},
         {"empty", "", kRefused},
         {"binary", std::string("\x89RSF\0\x1A\n\xFF", 8), kRefused}});
}

TEST(Rsf, RowsComeBeforeColumnsAndYBeforeX) {
    const TempFolder folder;
    const LogCapture log;
    // The first name is Windows-1252, as it is no UTF-8; pixels are cut towards zero.
    const std::string rows = "\"A \xE9\" 10 20 7 5.5 6.5 1.25 0\nB 1.9 -2.9 0 1e3 nan 0 -1\n";
    EXPECT_EQ(PointsOf(Good(folder.Write("map.rsf", "1 2\n" + rows))),
              "A \xC3\xA9: 20 10 6.5 5.5 1.25 off\nB: -2 1 nan 1000 0\n");
}

TEST(Rsf, FitsThroughThePoints) {
    const TempFolder folder;
    const BGeoReference reference = Good(kRsf, folder.Write("map.rsf", "1 3\n" + kRows));
    ASSERT_TRUE(reference.HasMathTransform());
    const BPoint world = reference.MathTransform->ConvertSourceToTarget(BPoint(199, 99, 0));
    EXPECT_NEAR(world.x, 12, 1e-12);
    EXPECT_NEAR(world.y, 49, 1e-12);
}

TEST(Rsf, ReadFailuresSayWhatAndWhere) {
    const std::string invalid = "File <%> is an invalid RSF file.  ";
    const std::string row = "P 1 2 0 4 5 6 1\n";
    const auto thrown = [](const std::string& detail, const char* type = kInvalidFile) {
        return Thrown{type, "BRefRSF::Read", detail};
    };
    ExpectFailures(
        kRsf, ".rsf",
        {{"empty", "", thrown("File <%> is empty.")},
         {"header", "4 x\n", thrown("Failed while trying to read the header (4 x)")},
         {"count", "4 0\n", thrown(invalid + "We require at least 1 point, this file only has (0).")},
         {"missing_row", "4 4\n" + kRows, thrown("Failed while trying to read in the 3 row of GCP's.")},
         {"bad_row",
          "4 2\n" + row + "Q 1.5 2 0 4 5 6 1\n",
          thrown("Failed reading in the row (1) of the GCP's."),
          {"BRefRSF::Read Failure parsing referencing points from the line : \"Q 1.5 2 0 4 5 6 1\""}},
         {"comments",
          "4 2\n" + row + "#\n",
          thrown(
              "Number of GCP's in the file (2) does not match the number indicated in the file header (1)."),
          {"BRefRSF::Read # of points in the header differs from the # of points listed."}},
         {"version", "7 3\n" + kRows, thrown(invalid + "Version (7) has to be between 1 & 4.")},
         {"block", "3 3\n" + kRows + "NONE\n", thrown("Could not load Version 3 coordinate system Tags")},
         {"mode", "4 3\n" + kRows + "NONE\nNONE\nNONE\nNONE\n",
          thrown("Could not load Version 4 reference mod")},
         {"plain_names", "3 3\n" + kRows + "a\nb\nc\nd\n",
          thrown("Could not read in RSF version 3 Coordinate System strings b : c : d\n", kInvalidSystem)},
         {"wkt", "4 3\n" + kRows + kNone + "\nGEOG\nCS[",
          thrown("Could not parse WKT string <GEOGCS[>", kInvalidSystem)},
         {"points_without_a_fit",
          "1 2\n" + row + row,
          thrown("*", kInvalidTransform),
          {"BRefRSF::Read Failure setting the BMathTransform ERROR (@)"}}});
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
    EXPECT_EQ(Written(folder / "name.rsf", reference), rows + kNone);
    References::SetSystem(reference, "32633");
    const std::string with_system = rows + kNone + "\n" + reference.CoordSys->ToWKT().StdStr();
    EXPECT_EQ(Written(folder / "name.rsf", reference), with_system);
    EXPECT_EQ(Written(kRsf, folder / "type.rsf", reference), with_system);
}

// The word outside the quotes, which no grammar has, must not cost the system.
TEST(Rsf, HeightsOfAnUnknownDatumComeBack) {
    const TempFolder folder;
    BGeoReference reference = ThreePoints();
    References::SetSystem(reference, "32633");
    reference.SetVerticalUnit(BLinearUnit::GetLinearUnit({"EPSG", "9003"}));
    EXPECT_NE(Written(folder / "map.rsf", reference).find("COMPD_CS[Vertical \"WGS 84"), std::string::npos);
    for (const unsigned int flags : {0U, BMapAnchor::kStrictCoordSys}) {
        const BGeoReference back = Good(kRsf, folder / "map.rsf", flags);
        ASSERT_TRUE(back.HasCoordSys());
        EXPECT_EQ(back.CoordSys->GetKind(), BCoordSys::kKindProjected);
        EXPECT_NEAR(back.CoordSys->GetVerticalUnits()->GetUnitsPerMeter(), 3937 / 1200.0, 1e-9);
    }
}

// Without a size the road by name makes the corners all the same; by type there are none.
TEST(Rsf, ARasterWithoutASizeHasNoCorners) {
    const TempFolder folder;
    const BGeoReference reference = References::WithAffine(2, 0, 100, 0, -2, 300);
    EXPECT_EQ(Roads::Save(folder / "map.rsf", reference, "", 0, 0).type, "");
    EXPECT_TRUE(TempFolder::Slurp(folder / "map.rsf").starts_with("4 4\n"));
    EXPECT_EQ(Roads::Save(kRsf, folder / "map.rsf", reference, Roads::kStrict, "", 0, 100).type, "");
    EXPECT_EQ(TempFolder::Slurp(folder / "map.rsf"), "4 0\n" + kNone);
}

// A name that would make the file unreadable is changed, and that is said.
TEST(Rsf, NamesThatNoRowCanHold) {
    const TempFolder folder;
    LogCapture log;
    BGeoReference reference = References::WithPoints(
        {{1, 2, 3, 4, 0, "say \"hi\"\n", true}, {5, 6, 7, 8, 0, std::string(254, 'n') + "\xC3\xA9", true}});
    const std::string file = folder / "map.rsf";
    Written(file, reference);
    EXPECT_EQ(log.lines.at(0), "BRefRSF::Write The name <say \"hi\"\n> is written as <say 'hi' >");
    EXPECT_EQ(PointsOf(Good(file)), "say 'hi' : 1 2 3 4 0\n" + std::string(254, 'n') + ": 5 6 7 8 0\n");
}

}  // namespace
}  // namespace MapAnchor

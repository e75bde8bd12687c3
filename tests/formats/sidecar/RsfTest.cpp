// RSF files through the entry point, by name and by type.

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

const ReadTable kReads(kRsf, ".rsf", "BRefRSF::Read");

TEST(Rsf, IsReadByNameAndByType) {
    const std::string four = "4 3\n" + kRows + kNone, long_name(255, 'n');
    constexpr Holds kFit{3, true};
    constexpr Holds kAll{3, true, true};
    constexpr Holds kOne{1};
    kReads.Ends("version_1", "1 3\n" + kRows, kTaken, kFit);
    kReads.Ends("version_2_has_no_block", "2 3\n" + kRows + kNone, kTaken, kFit);
    kReads.Ends("version_3", "3 3\n" + kRows + "NONE\nUTM-12N\nNAD27\nMETERS\n", kTaken, kAll);
    kReads.Ends("version_3_short_block", "3 3\n" + kRows + "NONE\nUTM-12N\nNAD27\n", kByNameAlone, kFit);
    kReads.Ends("version_4_spread_text", four + "\r\n" + kWgs84.substr(0, 40) + "\r\n" + kWgs84.substr(40),
                kTaken, kAll);
    kReads.Ends("version_4_without_system", four, kTaken, kFit);
    kReads.Ends("version_4_bad_text", four + "\nGEOGCS[", kNoSystem, kFit);
    kReads.Ends("version_5_fails_late_by_type", "5 3\n" + kRows + kNone + "\n" + kWgs84, kByNameAlone, kFit);
    kReads.Ends("version_0", "0 3\n" + kRows, kByNameAlone, kFit);
    kReads.Ends("count_0_of_version_1", "1 0\n", {kNoReference, kInvalidFile, kInvalidFile});
    kReads.Ends("count_0_of_version_4", "4 0\n" + kNone + "\n" + kWgs84, kByNameAlone, {0, false, true});
    kReads.Ends("count_0_of_a_bad_version", "9 0\n", kRefused);
    kReads.Ends("negative_count", "1 -3\n" + kRows, kRefused);
    kReads.Ends("count_of_two_thousand_million", "1 2000000000\n" + kRows, kRefused);
    kReads.Ends("count_beyond_32_bits", "1 99999999999999999999\n" + kRows, kRefused);
    kReads.Ends("count_below_the_rows", "1 2\n" + kRows, kNoFit, {2});
    kReads.Ends("comment_among_an_honest_count", "1 3\n# north\n" + kRows, kRefused);
    kReads.Ends("comment_counts_as_a_row", "1 4\n" + kRows + "# south\n", kRefused);
    kReads.Ends("no_blank_behind_a_name", "1 1\n \t\"P\"1 2 3 4 5 6 7\n", kNoFit, kOne);
    kReads.Ends("blank_in_front_of_a_comment", "1 1\n # 1 2 0 4 5 6 1\n", kNoFit, kOne);
    kReads.Ends("fractional_pixel", "1 1\nP 10.5 20.9 0 5.5 6.5 0 1\n", kByNameAlone, kOne);
    kReads.Ends("fields_missing", "1 1\nP 10 20 0 5.5 6.5 0\n", kRefused);
    kReads.Ends("quote_without_end", "1 1\n\"P 10 20 0 5.5 6.5 0 1\n", kRefused);
    kReads.Ends("name_of_255_bytes", "1 1\n\"" + long_name + "\" 1 2 0 4 5 6 1\n", kNoFit, kOne);
    kReads.Ends("name_of_256_bytes", "1 1\n\"" + long_name + "n\" 1 2 0 4 5 6 1\n", kRefused);
    kReads.Ends("binary", std::string("\x89RSF\0\x1A\n\xFF", 8), kRefused);
    // A local system does not place the raster on the Earth: by type it counts as none.
    const TempFolder folder;
    EXPECT_TRUE(Good(folder.Write("map.rsf", four + "\nLOCAL_CS[]")).HasCoordSys());
    EXPECT_FALSE(Good(kRsf, folder / "map.rsf").HasCoordSys());
    // Rows come before columns and y before x; the first name is Windows-1252, and pixels
    // are cut towards zero.
    const LogCapture log;
    const std::string rows = "\"A \xE9\" 10 20 7 5.5 6.5 1.25 0\nB 1.9 -2.9 0 1e3 nan 0 -1\n";
    EXPECT_EQ(PointsOf(Good(folder.Write("map.rsf", "1 2\n" + rows))),
              "A \xC3\xA9: 20 10 6.5 5.5 1.25 off\nB: -2 1 nan 1000 0\n");
    const Six terms = References::Terms(Good(kRsf, folder.Write("map.rsf", "1 3\n" + kRows)));
    EXPECT_NEAR(terms[0], 2 / 199.0, 1e-15);
    EXPECT_NEAR(terms[4], -1 / 99.0, 1e-15);
}

TEST(Rsf, ReadFailuresStateWhatAndWhere) {
    const std::string invalid = "File <%> is an invalid RSF file.  ", row = "P 1 2 0 4 5 6 1\n";
    kReads.Fails("1\n", kInvalidFile, "File <%> is empty.");
    kReads.Fails("4 x\n", kInvalidFile, "Failed while trying to read the header (4 x)");
    kReads.Fails("4 0\n", kInvalidFile, invalid + "We require at least 1 point, this file only has (0).");
    kReads.Fails("4 4\n" + kRows, kInvalidFile, "Failed while trying to read in the 3 row of GCP's.");
    kReads.Fails("4 2\n" + row + "Q 1.5 2 0 4 5 6 1\n", kInvalidFile,
                 "Failed reading in the row (1) of the GCP's.",
                 {"BRefRSF::Read Failure parsing referencing points from the line : \"Q 1.5 2 0 4 5 6 1\""});
    kReads.Fails(
        "4 2\n" + row + "#\n", kInvalidFile,
        "Number of GCP's in the file (2) does not match the number indicated in the file header (1).",
        {"BRefRSF::Read # of points in the header differs from the # of points listed."});
    kReads.Fails("7 3\n" + kRows, kInvalidFile, invalid + "Version (7) has to be between 1 & 4.");
    kReads.Fails("3 3\n" + kRows + "NONE\n", kInvalidFile, "Could not load Version 3 coordinate system Tags");
    kReads.Fails("4 3\n" + kRows + "NONE\nNONE\nNONE\nNONE\n", kInvalidFile,
                 "Could not load Version 4 reference mod");
    kReads.Fails("3 3\n" + kRows + "a\nb\nc\nd\n", kInvalidSystem,
                 "Could not read in RSF version 3 Coordinate System strings b : c : d\n");
    kReads.Fails("4 3\n" + kRows + kNone + "\nGEOG\nCS[", kInvalidSystem,
                 "Could not parse WKT string <GEOGCS[>");
    kReads.Fails("1 2\n" + row + row, kInvalidTransform, "*",
                 {"BRefRSF::Read Failure setting the BMathTransform ERROR (@)"});
}

TEST(Rsf, WritesVersionFour) {
    const TempFolder folder;
    BGeoReference reference = References::WithPoints({{20, 10, 6.5, 5.5, 0.125, "A b", true},
                                                      {220, 10, 8.5, 5.5, 0, "\xC3\x85, (2)", false},
                                                      {20, 110, 6.5, -0.1, 0, "", true}});
    const std::string rows =
        "4 3\n\"A b\" 10 20 0 5.500000000000000 6.500000000000000 0.12500 1\n"
        "\"\xC3\x85, (2)\" 10 220 0 5.500000000000000 8.500000000000000 0.00000 0\n"
        "\"\" 110 20 0 -0.100000000000000 6.500000000000000 0.00000 1\n";
    EXPECT_EQ(Written(folder / "name.rsf", reference), rows + kNone);
    References::SetSystem(reference, "32633");
    const std::string with_system = rows + kNone + "\n" + reference.CoordSys->ToWKT().StdStr();
    EXPECT_EQ(Written(folder / "name.rsf", reference), with_system);
    EXPECT_EQ(Written(kRsf, folder / "type.rsf", reference), with_system);
    // A word outside the quotes, which no grammar has, must not cost the system.
    reference.SetVerticalUnit(BLinearUnit::GetLinearUnit({"EPSG", "9003"}));
    EXPECT_NE(Written(folder / "map.rsf", reference).find("COMPD_CS[Vertical \"WGS 84"), std::string::npos);
    const BGeoReference back = Good(kRsf, folder / "map.rsf", BMapAnchor::kStrictCoordSys);
    ASSERT_TRUE(back.HasCoordSys());
    EXPECT_EQ(back.CoordSys->GetKind(), BCoordSys::kKindProjected);
    EXPECT_NEAR(back.CoordSys->GetVerticalUnits()->GetUnitsPerMeter(), 3937 / 1200.0, 1e-9);
    // Without a size the corners are written by name all the same, and none by type.
    const BGeoReference affine = References::WithAffine(2, 0, 100, 0, -2, 300);
    EXPECT_EQ(Roads::Save(folder / "map.rsf", affine, "", 0, 0).type, "");
    EXPECT_TRUE(TempFolder::Slurp(folder / "map.rsf").starts_with("4 4\n"));
    EXPECT_EQ(Roads::Save(kRsf, folder / "map.rsf", affine, Roads::kStrict, "", 0, 100).type, "");
    EXPECT_EQ(TempFolder::Slurp(folder / "map.rsf"), "4 0\n" + kNone);
}

// A name that would make the file unreadable is changed, and the log states it.
TEST(Rsf, ChangesNamesThatNoRowCanStore) {
    const TempFolder folder;
    LogCapture log;
    const std::string file = folder / "map.rsf", name(254, 'n');
    Written(file, References::WithPoints(
                      {{1, 2, 3, 4, 0, "say \"hi\"\n", true}, {5, 6, 7, 8, 0, name + "\xC3\xA9", true}}));
    EXPECT_EQ(log.lines.at(0), "BRefRSF::Write The name <say \"hi\"\\n> is written as <say 'hi' >");
    EXPECT_EQ(PointsOf(Good(file)), "say 'hi' : 1 2 3 4 0\n" + name + ": 5 6 7 8 0\n");
}

}  // namespace
}  // namespace MapAnchor

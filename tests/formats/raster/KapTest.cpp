// BSB charts: what a header gives, by name and by type.

#include <gtest/gtest.h>

#include "LogCapture.h"
#include "Reading.h"
#include "TempFolder.h"

#include <fstream>

namespace MapAnchor {
namespace {

using namespace Tellurion;

const std::string kSize = "BSB/NA=Bay,RA=200,100,DU=254\n";
const std::string kPoints =
    "REF/1,0,0,48.5,-123.25\nREF/2,200,0,48.5,-121.25\nREF/3,200,100,47.5,-121.25\nREF/"
    "4,0,100,47.5,-123.25\n";
const std::string kCtrlZ = "\x1A";

Thrown ByType(const std::string& file, BGeoReference& reference, unsigned int flags = kStrict) {
    return ReadByType(EReferenceType::KAP, file, reference, flags);
}

TEST(Kap, GivesPointsAnAffineThroughThemAndTheDatum) {
    const TempFolder folder;
    const LogCapture log;
    const std::string file =
        folder.Write("chart.kap", "!Comment\nVER/2.0\n" + kSize + "KNP/SC=25000,GD=WGS84,PR=MERCATOR\n" +
                                      kPoints + kCtrlZ);
    const NamedRead read = ReadByName(file);
    ASSERT_EQ(read.thrown.type, "");
    EXPECT_EQ(read.kind, "KAP");
    EXPECT_EQ(EpsgOf(read.reference), "EPSG:4326");
    const Terms expected = {0.01, 0, -123.25, 0, -0.01, 48.5};
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(TermsOf(read.reference)[i], expected[i], 1e-12) << i;
    ASSERT_EQ(read.reference.PointPairVector.size(), 4U);
    const BPointPair& second = read.reference.PointPairVector[1];
    EXPECT_EQ(second.Name, BString("Point 2"));
    EXPECT_EQ(second.Column, 200);
    EXPECT_EQ(second.Row, 0);
    EXPECT_EQ(second.World.x, -121.25);
    EXPECT_EQ(second.World.y, 48.5);
    EXPECT_EQ(second.World.z, 0.0);
    EXPECT_TRUE(second.Enabled);

    BGeoReference typed;
    EXPECT_EQ(ByType(file, typed).type, "");
    EXPECT_EQ(EpsgOf(typed), "EPSG:4326");
    EXPECT_EQ(TermsOf(typed), TermsOf(read.reference));
    EXPECT_TRUE(log.lines.empty());
}

struct HeaderCase {
    const char* name;
    std::string content;
    std::string epsg;        ///< of the system by name, and by type as well when `typed`
    std::size_t points;      ///< likewise
    bool typed = true;       ///< by type there is the same; otherwise nothing
    std::string error = {};  ///< type of what is thrown by name
};

TEST(Kap, HeadersInAllTheirForms) {
    const std::string datum = "KNP/GD=WGS84\n";
    const std::string none = "BFileContentNotValidException";
    const std::vector<HeaderCase> cases = {
        {"continued_record", "KNP/SC=1\n    PP=3,GD=WGS84\n     UN=M\n" + kPoints, "EPSG:4326", 4},
        {"comment_between_keeps_the_record", "KNP/SC=1\n!x\n    GD=WGS84\n", "EPSG:4326", 0},
        {"another_record_between_ends_it", "KNP/SC=1\nOST/1\n    GD=WGS84\n" + kPoints, "none", 4, false},
        {"four_blanks_first", "    GD=WGS84\n" + kPoints, "none", 4, false},
        {"datum_of_north_america", "KNP/GD=NORTH AMERICAN 1927\n", "EPSG:4267", 0},
        {"datum_with_blanks_around", "KNP/GD= NAD83 ,SC=1\n", "EPSG:4269", 0},
        {"datum_nobody_knows_is_nad83", "KNP/GD=UNKNOWN\n", "EPSG:4269", 0},
        {"second_datum_wins", "KNP/GD=NAD27,GD=WGS84\n", "EPSG:4326", 0},
        {"empty_datum_does_not", "KNP/GD=WGS84,GD=\n", "EPSG:4326", 0},
        {"keys_in_lower_case", "knp/gd=WGS84\nref/1,1,1,1,1\n", "EPSG:4326", 1},
        {"no_datum", kSize + kPoints, "none", 4},
        {"key_that_gives_only_data", "KNP/DX=2.5\n" + kPoints, "none", 4},
        {"size_key_in_lower_case_gives_nothing", "BSB/ra=9,9\n" + kPoints, "none", 4, false},
        {"record_without_keys", "KNP/\n" + kPoints, "none", 4, false},
        {"points_alone", kPoints, "none", 4, false},
        {"windows_line_ends", "KNP/GD=WGS84\r\nREF/1,1,2,3,4\r\n\x1A\r\n", "EPSG:4326", 1},
        {"points_behind_ctrl_z_are_pixels", datum + kCtrlZ + "\n" + kPoints, "EPSG:4326", 0},
        {"points_behind_a_megabyte_of_header", datum + std::string(1 << 20, '!') + "\n" + kPoints,
         "EPSG:4326", 0},
        {"header_over_several_reads", std::string(20000, '!') + "\n" + datum + kPoints, "EPSG:4326", 4},
        {"size_without_a_height", "BSB/RA=9\n" + datum, "EPSG:4326", 0},
        {"size_beyond_any_number", "BSB/RA=99999999999999999999,-1\n" + datum + kPoints, "EPSG:4326", 4},
        {"line_longer_than_128", "KNP/" + std::string(130, 'x') + ",GD=NAD27\n" + datum, "EPSG:4326", 0},
        {"empty", "", "none", 0, false, "BUnsupportedFileTypeException"},
        {"no_header", "GIF89a\n", "none", 0, false, "BUnsupportedFileTypeException"},
        {"size_alone", kSize, "none", 0, false, none},
    };
    const TempFolder folder;
    const LogCapture log;
    for (const HeaderCase& test : cases) {
        const std::string file = folder.Write("chart.kap", test.content);
        const NamedRead read = ReadByName(file);
        EXPECT_EQ(read.thrown.type, test.error) << test.name;
        EXPECT_EQ(EpsgOf(read.reference), test.epsg) << test.name;
        EXPECT_EQ(read.reference.PointPairVector.size(), test.points) << test.name;
        BGeoReference typed;
        EXPECT_EQ(ByType(file, typed, 0).type, "") << test.name;
        EXPECT_EQ(EpsgOf(typed), test.typed ? test.epsg : "none") << test.name;
        EXPECT_EQ(typed.PointPairVector.size(), test.typed ? test.points : 0) << test.name;
    }
}

struct PointCase {
    const char* name;
    const char* line;
    bool complete;
    long column = 0;
    long row = 0;
    const char* label = "Point 7";
};

TEST(Kap, PointsAreTruncatedToPixelsAndIncompleteOnesSkipped) {
    const std::string long_name(120, 'n');
    const std::string cut = "REF/" + long_name + ",1,2,3,4";
    const PointCase cases[] = {
        {"fractions_go_toward_zero", "REF/7,10.9,-3.7,1,2", true, 10, -3},
        {"more_fields", "REF/7,1,2,3,4,5,6", true, 1, 2},
        {"text_counts_as_zero", "REF/7,x,2,3,4", true, 0, 2},
        {"no_name", "REF/,1,2,3,4", true, 1, 2, "Point "},
        {"name_in_windows_1252", "REF/\xE9,1,2,3,4", true, 1, 2, "Point \xC3\xA9"},
        {"beyond_32_bits", "REF/7,99999999999,2,3,4", true, 2147483647, 2},
        {"three_numbers", "REF/7,1,2,3", false},
        {"last_number_empty", "REF/7,1,2,3, ", false},
        {"name_alone", "REF/7", false},
        {"nothing", "REF/", false},
        {"no_pixel", "REF/7,nan,2,3,4", false},
        {"pixel_beyond_all", "REF/7,1e300,2,3,4", false},
        {"cut_at_128", cut.c_str(), false},
    };
    const TempFolder folder;
    for (const PointCase& test : cases) {
        LogCapture log;
        const std::string file = folder.Write("chart.kap", "KNP/GD=WGS84\n" + std::string(test.line) + "\n");
        const NamedRead read = ReadByName(file);
        ASSERT_EQ(read.reference.PointPairVector.size(), test.complete ? 1U : 0U) << test.name;
        ASSERT_EQ(log.lines.size(), 1U) << test.name;  // one point carries no fit
        if (!test.complete) {
            EXPECT_EQ(log.lines[0],
                      "BRefKAP::Read Skipped the incomplete control point in line 2 of <" + file + ">");
            continue;
        }
        const BPointPair& point = read.reference.PointPairVector[0];
        EXPECT_EQ(point.Column, test.column) << test.name;
        EXPECT_EQ(point.Row, test.row) << test.name;
        EXPECT_EQ(point.Name, BString(test.label)) << test.name;
    }
}

TEST(Kap, PointsWithoutAFitAreKeptOrEndTheRead) {
    const TempFolder folder;
    LogCapture log;
    const std::string file =
        folder.Write("chart.kap", "KNP/GD=WGS84\nREF/1,0,0,1,1\nREF/2,5,5,2,2\nREF/3,9,9,3,3\n");
    const NamedRead read = ReadByName(file);
    EXPECT_EQ(read.thrown.type, "");
    EXPECT_FALSE(read.reference.HasMathTransform());
    EXPECT_EQ(read.reference.PointPairVector.size(), 3U);
    EXPECT_EQ(EpsgOf(read.reference), "EPSG:4326");
    ASSERT_EQ(log.lines.size(), 1U);
    EXPECT_EQ(log.lines[0].rfind("BRefKAP::Read Failure setting the BMathTransform ERROR (", 0), 0U);

    BGeoReference typed;
    EXPECT_EQ(ByType(file, typed, BMapAnchor::kStrictCoordSys).type, "");
    EXPECT_EQ(typed.PointPairVector.size(), 3U);
    const Thrown thrown = ByType(file, typed, BMapAnchor::kStrictTransform);
    EXPECT_EQ(thrown.type, "BGeoReferenceInvalidTransformException");
    EXPECT_EQ(thrown.source, "BRefTAB::Read");
    EXPECT_NE(thrown.detail, "");
}

TEST(Kap, AFileThatDoesNotOpen) {
    const TempFolder folder;
    BGeoReference reference;
    const Thrown thrown = ByType(folder / ".", reference);
    EXPECT_EQ(thrown.type, "BFileAccessException");
    EXPECT_EQ(thrown.source, "BRefKAP::Read");
    EXPECT_EQ(thrown.detail, "Could not open the reference file <" + (folder / ".") + "> for reading.");
}

}  // namespace
}  // namespace MapAnchor

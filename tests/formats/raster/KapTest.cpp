// BSB charts: what a header gives, by name and by type.

#include "Reading.h"

namespace MapAnchor {
namespace {

using namespace Tellurion;

const std::string kSize = "BSB/NA=Bay,RA=200,100,DU=254\n";
const std::string kPoints =
    "REF/1,0,0,48.5,-123.25\nREF/2,200,0,48.5,-121.25\nREF/3,200,100,47.5,-121.25\nREF/"
    "4,0,100,47.5,-123.25\n";
const std::string kCtrlZ = "\x1A";

Thrown ByType(const std::string& file, BGeoReference& reference, unsigned int flags = Roads::kStrict) {
    return Roads::Read(EReferenceType::KAP, file, reference, flags);
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
    EXPECT_EQ(CodeOf(read.reference), "EPSG:4326");
    const Six expected = {0.01, 0, -123.25, 0, -0.01, 48.5};
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(References::Terms(read.reference)[i], expected[i], 1e-12) << i;
    EXPECT_EQ(PointsOf(read.reference),
              "Point 1: 0 0 -123.25 48.5 0\nPoint 2: 200 0 -121.25 48.5 0\n"
              "Point 3: 200 100 -121.25 47.5 0\nPoint 4: 0 100 -123.25 47.5 0\n");
    const BGeoReference typed = Good(EReferenceType::KAP, file);
    EXPECT_EQ(CodeOf(typed), "EPSG:4326");
    EXPECT_EQ(References::Terms(typed), References::Terms(read.reference));
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
        {"empty", "", "none", 0, false, kUnsupported},
        {"no_header", "GIF89a\n", "none", 0, false, kUnsupported},
        {"size_alone", kSize, "none", 0, false, kNoReference},
    };
    const TempFolder folder;
    const LogCapture log;
    for (const HeaderCase& test : cases) {
        const std::string file = folder.Write("chart.kap", test.content);
        const NamedRead read = ReadByName(file);
        EXPECT_EQ(read.thrown.type, test.error) << test.name;
        EXPECT_EQ(CodeOf(read.reference), test.epsg) << test.name;
        EXPECT_EQ(read.reference.PointPairVector.size(), test.points) << test.name;
        BGeoReference typed;
        EXPECT_EQ(ByType(file, typed, 0).type, "") << test.name;
        EXPECT_EQ(CodeOf(typed), test.typed ? test.epsg : "none") << test.name;
        EXPECT_EQ(typed.PointPairVector.size(), test.typed ? test.points : 0) << test.name;
    }
}

TEST(Kap, PointsAreTruncatedToPixelsAndIncompleteOnesSkipped) {
    const struct {
        const char* name;
        std::string line;
        const char* point;  ///< empty where the line is skipped
    } cases[] = {
        {"fractions_go_toward_zero", "REF/7,10.9,-3.7,1,2", "Point 7: 10 -3 2 1 0\n"},
        {"more_fields", "REF/7,1,2,3,4,5,6", "Point 7: 1 2 4 3 0\n"},
        {"text_counts_as_zero", "REF/7,x,2,3,4", "Point 7: 0 2 4 3 0\n"},
        {"no_name", "REF/,1,2,3,4", "Point : 1 2 4 3 0\n"},
        {"name_in_windows_1252", "REF/\xE9,1,2,3,4", "Point \xC3\xA9: 1 2 4 3 0\n"},
        {"beyond_32_bits", "REF/7,99999999999,2,3,4", "Point 7: 2147483647 2 4 3 0\n"},
        {"three_numbers", "REF/7,1,2,3", ""},
        {"last_number_empty", "REF/7,1,2,3, ", ""},
        {"name_alone", "REF/7", ""},
        {"nothing", "REF/", ""},
        {"no_pixel", "REF/7,nan,2,3,4", ""},
        {"pixel_beyond_all", "REF/7,1e300,2,3,4", ""},
        {"cut_at_128", "REF/" + std::string(120, 'n') + ",1,2,3,4", ""},
    };
    const TempFolder folder;
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        LogCapture log;
        const std::string file = folder.Write("chart.kap", "KNP/GD=WGS84\n" + test.line + "\n");
        EXPECT_EQ(PointsOf(Good(file)), test.point);
        ASSERT_EQ(log.lines.size(), 1U);  // one point carries no fit
        if (!*test.point) {
            EXPECT_EQ(log.lines[0],
                      "BRefKAP::Read Skipped the incomplete control point in line 2 of <" + file + ">");
        }
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
    EXPECT_EQ(CodeOf(read.reference), "EPSG:4326");
    ASSERT_EQ(log.lines.size(), 1U);

    BGeoReference typed;
    EXPECT_EQ(ByType(file, typed, BMapAnchor::kStrictCoordSys).type, "");
    EXPECT_EQ(typed.PointPairVector.size(), 3U);
    // Under the source that hosts know.
    const Thrown thrown = ByType(file, typed, BMapAnchor::kStrictTransform);
    ExpectThrown(thrown, {kInvalidTransform, "BRefTAB::Read", thrown.detail});
    EXPECT_EQ(log.lines[0], "BRefKAP::Read Failure setting the BMathTransform ERROR (" + thrown.detail + ")");
}

TEST(Kap, AFileThatDoesNotOpen) {
    const TempFolder folder;
    BGeoReference reference;
    ExpectThrown(ByType(folder / ".", reference),
                 {kNoAccess, "BRefKAP::Read",
                  "Could not open the reference file <" + (folder / ".") + "> for reading."});
}

}  // namespace
}  // namespace MapAnchor

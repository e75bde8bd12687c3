// TAB files through the entry point, by name and by type.

#include <Tellurion/BCoordSysRepository.h>

#include "Outcomes.h"

namespace MapAnchor {
namespace {

using namespace Tellurion;

constexpr EReferenceType kTab = EReferenceType::TAB;
const std::string kHead = "!table\n!version 300\nDefinition Table\n  File \"x.tif\"\n  Type \"RASTER\"\n";
const std::string kPoints =
    "  (10,50) (0,0) Label \"Pt 1\",\n  (12,50) (199,0) Label \"Pt 2\",\n  (10,49) (0,99) Label \"Pt 3\"\n";
const std::string kTwoPoints = kPoints.substr(0, kPoints.rfind("  ("));
const std::string kClause = "CoordSys Earth Projection 8, 104, \"m\", 15, 0, 0.9996, 500000, 0";
const std::string kDefaultClause = "CoordSys Earth Projection 1, 0\nUnits \"Degree\"";
const std::string kBadClause = "CoordSys Earth Projection 99, 104";

const ReadTable kReads(kTab, ".tab", "BRefTAB::Read");

TEST(Tab, IsReadByNameAndByType) {
    std::string many = kHead;
    for (int i = 0; i < 40000; ++i)
        many += "  (10.00000000000,50.00000000000) (0,0) Label \"Pt 1\",\n";
    constexpr Holds kAll{3, true, true};
    constexpr Holds kSystem{0, false, true};
    constexpr Holds kOne{1, false, true};
    kReads.Ends("default_clause", kHead + kPoints + kDefaultClause, kTaken, kAll);
    kReads.Ends("bad_clause", kHead + kPoints + kBadClause, kNoSystem, {3, true});
    // A local system is no system on the Earth: by type it counts as none.
    kReads.Ends("local_system", kHead + kPoints + "CoordSys NonEarth Units \"m\"", kNoSystem, kAll);
    kReads.Ends("marks_alone", kHead, {kUnsupported, "", kInvalidSystem});
    kReads.Ends("table_inside_a_line", "x !Table x\nType \"RASTER\"\n" + kClause, kTaken, kSystem);
    kReads.Ends("raster_in_mixed_case", "!table\nType \"Raster\"\n" + kClause, kRefused);
    kReads.Ends("no_table", "!tab\nType \"RASTER\"\n" + kClause, kRefused);
    kReads.Ends("two_points", kHead + kTwoPoints + kClause, kNoFit, {2, false, true});
    kReads.Ends("four_tokens", kHead + "(1,2) (3,4)\n" + kClause, kTaken, kSystem);
    kReads.Ends("fifth_token_is_not_a_label", kHead + "(1,2) (3,4) Labels \"P\"\n" + kClause, kTaken,
                kSystem);
    kReads.Ends("point_in_front_of_the_marks", "1 2 3 4 LABEL x\n" + kHead + kClause, kNoFit, kOne);
    kReads.Ends("point_on_the_last_line", kHead + kClause + "\n(1,2) (3,4) label", kNoFit, kOne);
    kReads.Ends("clause_behind_two_megabytes", many + kClause, kNoFit, {40000, false, true});
    kReads.Ends("sixty_tokens", kHead + "(1,2)(3,4) Label" + std::string(120, ' ') + "x\n" + kClause, kNoFit,
                kOne);
    kReads.Ends("empty", "", kRefused);
    const TempFolder folder;
    const LogCapture log;
    const std::string points =
        "  (1.5,2.5) (3,4) Label P\r\n(-1e3, .5) (3.9, -4.9) Label \"a, (b) \xC3\xA9\",\n"
        "(x,y) (99999999999,z) label\n( 0 , 0 ) ( 1 , 2 ) Label \"\xE9\x80\",\n";
    // The last is Windows-1252: e acute, euro.
    EXPECT_EQ(PointsOf(Good(folder.Write("map.tab", kHead + points))),
              "P: 3 4 1.5 2.5 0\na, (b) \xC3\xA9: 3 -4 -1000 0.5 0\n: 2147483647 0 0 0 0\n"
              "\xC3\xA9\xE2\x82\xAC: 1 2 0 0 0\n");
}

TEST(Tab, ReadFailuresStateWhatAndWhere) {
    kReads.Fails(kPoints, kInvalidFile,
                 "File <%> is an invalid TAB file.  It must have a \"!table\" and be Type \"RASTER\".");
    kReads.Fails(kHead + kPoints, kInvalidSystem, "Could not parse TAB MIF clause in File <%>");
    // A clause that fails has another source, and its text is the log's.
    kReads.Fails(kHead + kPoints + kBadClause, kInvalidSystem, "*",
                 {"BRefTAB::Read could not read Coordinate System from file <%> ERROR (@)."},
                 "BRefTab::Read");
    kReads.Fails(kHead + kTwoPoints + kClause, kInvalidTransform, "*",
                 {"BRefTAB::Read Failure setting the BMathTransform ERROR (@)"});
}

// GDAL reads the false origin of this clause as metres and its code as stated.
TEST(Tab, ReadsClausesInFeet) {
    const TempFolder folder;
    const std::string start = kHead + kPoints + "CoordSys Earth Projection 3, 74, \"";
    const std::string end =
        "\", -100.333333333333, 29.6666666666667, 30.1166666666667, 31.8833333333333, 2296583.333, 9842500\n";
    const BGeoReference us_feet = Good(folder.Write("map.tab", start + "survey ft" + end));
    EXPECT_EQ(CodeOf(us_feet), "EPSG:2277");
    const BPoint origin = us_feet.CoordSys->ConvertToGeodetic(BPoint(2296583.333, 9842500, 0));
    EXPECT_NEAR(origin.x, -100 - 1 / 3.0, 1e-9);
    EXPECT_NEAR(origin.y, 29 + 2 / 3.0, 1e-9);
    for (const char* unit : {"ft", "m"})
        EXPECT_EQ(CodeOf(Good(folder.Write("map.tab", start + unit + end))), "") << unit;
}

TEST(Tab, WritesPointsAndClause) {
    const TempFolder folder;
    const LogCapture log;
    BGeoReference reference = References::WithPoints(
        {{20, 10, 6.5, 5.25, 7, "A b", true}, {220, 11, -8.5, 1e6, 0, "b, (2)", false}});
    const std::string head =
        "!table\n!version 300\n!charset WindowsLatin1\n\nDefinition Table\n  File \"my map.tif\"\n  Type "
        "\"RASTER\"\n";
    const std::string two = head +
                            "  (6.50000000000, 5.25000000000) (20, 10) Label \"A b\",\n"
                            "  (-8.50000000000, 1000000.00000000000) (220, 11) Label \"b, (2)\"\n";
    const std::string file = folder / "map.tab";
    EXPECT_EQ(Written(file, reference, "/some/where/my map.tif"), two + kDefaultClause);
    References::SetSystem(reference, "32633");
    EXPECT_EQ(Roads::Save(kTab, file, reference, Roads::kStrict, "/some/where/my map.tif").type, "");
    EXPECT_EQ(TempFolder::Slurp(file),
              two + BCoordSysRepository::Instance()->WriteCoordSysToMIFString(*reference.CoordSys).StdStr());
    EXPECT_TRUE(log.lines.empty());
    // The class that is named without points is another: kept for compatibility.
    ExpectThrown(Roads::Save(kTab, file, References::WithAffine(1, 0, 0, 0, 1, 0), 0, "", 0, 9), kInvalidFile,
                 "BRefRSF::Write",
                 "Can't generate a valid TAB file <" + file +
                     ">.  We require at least 1 point, this reference only has (0).");
}

TEST(Tab, WritesTheCharsetThatTheHeaderStates) {
    const TempFolder folder;
    LogCapture log;
    const std::string label = "\xC3\x85ngstr\xC3\xB6m \xE2\x82\xAC";  // all of it in Windows-1252
    const BGeoReference reference = References::WithPoints(
        {{1, 2, 3, 4, 0, label, true}, {1, 2, 3, 4, 0, "\xE5\x8C\x97 \xF0\x9F\x97\xBA!", true}});
    const std::string file = folder / "map.tab";
    EXPECT_NE(Written(file, reference, "\xC3\xA9.tif").find("Label \"\xC5ngstr\xF6m \x80\",\n"),
              std::string::npos);
    EXPECT_EQ(log.lines,
              std::vector<std::string>{"BRefTAB::Write The text <\xE5\x8C\x97 \xF0\x9F\x97\xBA!> has "
                                       "characters that WindowsLatin1 does not hold"});
    EXPECT_EQ(PointsOf(Good(file)), label + ": 1 2 3 4 0\n? ?!: 1 2 3 4 0\n");
}

TEST(Tab, WritesTheDefaultForASystemWithoutAClause) {
    const TempFolder folder;
    LogCapture log;
    const std::string file = folder / "map.tab";
    BGeoReference reference = References::WithPoints({{1, 2, 3, 4, 0, "P", true}});
    reference.SetCoordSys(BSharedPtr<BCoordSys>(BCoordSys::FromWKT(
        "PROJCS[\"odd\",GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS 84\",6378137,298.257223563]],"
        "PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],PROJECTION[\"Bonne\"],PARAMETER["
        "\"standard_parallel_1\",45],UNIT[\"metre\",1]]")));
    const std::string with_default = Written(file, reference);
    EXPECT_TRUE(with_default.ends_with("\"P\"\n" + kDefaultClause)) << with_default;
    EXPECT_EQ(Written(kTab, file, reference, 0), with_default);
    EXPECT_EQ(log.lines, std::vector<std::string>{
                             "BRefTAB::Write Failed to generate valid MIF CoordSys clause, using Default"});
    ExpectThrown(Roads::Save(kTab, file, reference, BMapAnchor::kStrictCoordSys), kInvalidSystem,
                 "BRefTAB::Write", "Couldn't generate a MIF clause for CoordSys odd.");
}

}  // namespace
}  // namespace MapAnchor

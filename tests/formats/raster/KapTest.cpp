// BSB charts: what a header gives, by name and by type.

#include "Reading.h"

namespace MapAnchor {
namespace {

using namespace Tellurion;

const std::string kPoints =
    "REF/1,0,0,48.5,-123.25\nREF/2,200,0,48.5,-121.25\nREF/3,200,100,47.5,-121.25\nREF/"
    "4,0,100,47.5,-123.25\n";

Thrown ByType(const std::string& file, BGeoReference& reference, unsigned int flags = Roads::kStrict) {
    return Roads::Read(EReferenceType::KAP, file, reference, flags);
}

TEST(Kap, ReadsPointsTheirAffineAndTheDatum) {
    const TempFolder folder;
    const LogCapture log;
    const std::string file = folder.Write(
        "chart.kap",
        "!Comment\nVER/2.0\nBSB/NA=Bay,RA=200,100\nKNP/SC=25000,GD=WGS84,PR=MERCATOR\n" + kPoints + "\x1A");
    EXPECT_EQ(ReadByName(file).kind, "KAP");
    for (const BGeoReference& reference : {Good(file), Good(EReferenceType::KAP, file)}) {
        EXPECT_EQ(CodeOf(reference), "EPSG:4326");
        const Six expected = {0.01, 0, -123.25, 0, -0.01, 48.5};
        for (std::size_t i = 0; i < expected.size(); ++i)
            EXPECT_NEAR(References::Terms(reference)[i], expected[i], 1e-12) << i;
        EXPECT_EQ(PointsOf(reference),
                  "Point 1: 0 0 -123.25 48.5 0\nPoint 2: 200 0 -121.25 48.5 0\n"
                  "Point 3: 200 100 -121.25 47.5 0\nPoint 4: 0 100 -123.25 47.5 0\n");
    }
    EXPECT_TRUE(log.lines.empty());
    BGeoReference unused;
    ExpectThrown(ByType("/tmp", unused), kNoAccess, "BRefKAP::Read",
                 "Could not open the reference file </tmp> for reading.");
}

/// The system and the number of points by name; by type there is the same, or nothing.
void ExpectHeader(const std::string& content, const char* epsg, std::size_t points, bool typed = true,
                  const char* thrown = "") {
    SCOPED_TRACE(content.substr(0, 60));
    const TempFolder folder;
    const LogCapture quiet;
    const std::string file = folder.Write("chart.kap", content);
    BGeoReference by_name, by_type;
    EXPECT_EQ(Roads::Read(file, by_name).type, thrown);
    EXPECT_EQ(CodeOf(by_name), epsg);
    EXPECT_EQ(by_name.PointPairVector.size(), points);
    EXPECT_EQ(ByType(file, by_type, 0).type, "");
    EXPECT_EQ(CodeOf(by_type), typed ? epsg : "none");
    EXPECT_EQ(by_type.PointPairVector.size(), typed ? points : 0);
}

TEST(Kap, ReadsHeadersInAllTheirForms) {
    const std::string datum = "KNP/GD=WGS84\n";
    ExpectHeader("KNP/SC=1\n    PP=3,GD=WGS84\n     UN=M\n" + kPoints, "EPSG:4326", 4);
    // A comment does not end a continued record, another record does.
    ExpectHeader("KNP/SC=1\n!x\n    GD=WGS84\n", "EPSG:4326", 0);
    ExpectHeader("KNP/SC=1\nOST/1\n    GD=WGS84\n" + kPoints, "none", 4, false);
    ExpectHeader("    GD=WGS84\n" + kPoints, "none", 4, false);
    // An unknown datum counts as NAD83; the last one that is not empty counts.
    ExpectHeader("KNP/GD= NORTH AMERICAN 1927 ,SC=1\n", "EPSG:4267", 0);
    ExpectHeader("KNP/GD=UNKNOWN\n", "EPSG:4269", 0);
    ExpectHeader("KNP/GD=NAD27,GD=WGS84,GD=\n", "EPSG:4326", 0);
    ExpectHeader("knp/gd=WGS84\nref/1,1,1,1,1\n", "EPSG:4326", 1);
    // What counts as data by type: a size in capitals, and some keys.
    ExpectHeader("BSB/NA=Bay,RA=200,100\n" + kPoints, "none", 4);
    ExpectHeader("KNP/DX=2.5\n" + kPoints, "none", 4);
    ExpectHeader("BSB/ra=9,9\nKNP/\n" + kPoints, "none", 4, false);
    ExpectHeader("KNP/GD=WGS84\r\nREF/1,1,2,3,4\r\n\x1A\r\n", "EPSG:4326", 1);
    // Behind Ctrl-Z, and behind a megabyte, there are pixels.
    ExpectHeader(datum + "\x1A\n" + kPoints, "EPSG:4326", 0);
    ExpectHeader(datum + std::string(1 << 20, '!') + "\n" + kPoints, "EPSG:4326", 0);
    ExpectHeader(std::string(20000, '!') + "\n" + datum + kPoints, "EPSG:4326", 4);
    ExpectHeader("BSB/RA=99999999999999999999,-1\n" + datum + kPoints, "EPSG:4326", 4);
    ExpectHeader("KNP/" + std::string(130, 'x') + ",GD=NAD27\n" + datum, "EPSG:4326", 0);
    ExpectHeader("", "none", 0, false, kUnsupported);
    ExpectHeader("BSB/NA=Bay,RA=200,100\n", "none", 0, false, kNoReference);
    const TempFolder folder;
    LogCapture log;
    const std::string file = folder.Write("long.kap", kPoints + std::string(1 << 20, '!') + kPoints);
    Good(file);
    ASSERT_EQ(log.lines.size(), 1U);
    EXPECT_EQ(log.lines[0], "BRefKAP::Read The header of <" + file +
                                "> does not end within 1048576 bytes, the rest of it is not read");
}

TEST(Kap, CutsPointsToPixelsAndSkipsIncompleteOnes) {
    // The last is cut at 128.
    const std::pair<std::string, const char*> cases[] = {
        {"7,10.9,-3.7,1,2", "Point 7: 10 -3 2 1 0\n"},
        {"7,x,2,3,4,5,6", "Point 7: 0 2 4 3 0\n"},
        {",1,2,3,4", "Point : 1 2 4 3 0\n"},
        {"\xE9,1,2,3,4", "Point \xC3\xA9: 1 2 4 3 0\n"},
        {"7,99999999999,2,3,4", "Point 7: 2147483647 2 4 3 0\n"},
        {"7,1,2,3", ""},
        {"7,1,2,3, ", ""},
        {"", ""},
        {"7,nan,2,3,4", ""},
        {"7,1e300,2,3,4", ""},
        {std::string(120, 'n') + ",1,2,3,4", ""}};
    const TempFolder folder;
    for (const auto& [line, point] : cases) {
        SCOPED_TRACE(line);
        LogCapture log;
        const std::string file = folder.Write("chart.kap", "KNP/GD=WGS84\nREF/" + line + "\n");
        EXPECT_EQ(PointsOf(Good(file)), point);
        ASSERT_EQ(log.lines.size(), 1U);  // one point makes no fit
        EXPECT_EQ(
            log.lines[0] == "BRefKAP::Read Skipped the incomplete control point in line 2 of <" + file + ">",
            !*point);
    }
    // The thrown source is another format's: kept for compatibility.
    LogCapture log;
    BGeoReference typed;
    const std::string file =
        folder.Write("chart.kap", "KNP/GD=WGS84\nREF/1,0,0,1,1\nREF/2,5,5,2,2\nREF/3,9,9,3,3\n");
    const Thrown thrown = ByType(file, typed, BMapAnchor::kStrictTransform);
    ExpectThrown(thrown, kInvalidTransform, "BRefTAB::Read", thrown.detail);
    EXPECT_EQ(log.lines.at(0),
              "BRefKAP::Read Failure setting the BMathTransform ERROR (" + thrown.detail + ")");
    EXPECT_EQ(ByType(file, typed, BMapAnchor::kStrictCoordSys).type, "");
    for (const BGeoReference& reference : {typed, Good(file)}) {
        EXPECT_FALSE(reference.HasMathTransform());
        EXPECT_EQ(reference.PointPairVector.size(), 3U);
        EXPECT_EQ(CodeOf(reference), "EPSG:4326");
    }
}

}  // namespace
}  // namespace MapAnchor

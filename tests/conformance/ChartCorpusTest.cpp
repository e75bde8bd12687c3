// Every chart, frame, rectangle and orthophoto of the corpus against its own header
// and against GDAL's drivers. GDAL anchors at the outer corner, frames and rectangles
// are anchored at the centre here: that half pixel is all that may lie between.

#include "ChartFiles.h"
#include "Corpus.h"
#include "GdalFiles.h"
#include "Reading.h"

namespace MapAnchor {
namespace {

using namespace Tellurion;

NamedRead ReadAs(const char* kind, const std::filesystem::path& file) {
    NamedRead read = ReadByName(file.string());
    EXPECT_EQ(read.kind, kind);
    return read;
}

TEST(ChartCorpus, Frames) {
    // The intervals of this frame do not divide its corners: GDAL goes by the corners,
    // here the header's intervals count, and rows are counted up from the south edge.
    constexpr double kV = 0.0013469827586206897;
    constexpr double kW = 0.0017845812182741116;
    const Six by_intervals = {kW, 0, 1.9999416 + kW / 2, 0, -kV, 33.9323825 - kV / 2 + kV * 1536};
    int frames = 0;
    ForEachAnswer("cadrg", [&](const std::filesystem::path& file, const Json& answer) {
        const NamedRead read = ReadAs("CADRG", file);
        const bool odd = file.filename() == "RPFTOC01.ON2";
        ExpectTerms(read.reference, odd ? by_intervals : Centred(TermsOfGdal(answer["geoTransform"])), 2e-15);
        EXPECT_EQ(CodeOf(read.reference), "EPSG:" + std::to_string(answer["epsg"].get<int>()));
        ++frames;
    });
    EXPECT_EQ(frames, 2);
}

TEST(ChartCorpus, Rectangles) {
    // The four values of every record in these files, read by eye.
    const double step = 360.0 / 46067;
    const Six by_header = {step, 0, -0.5 / 3600 + step / 2, 0, -step, 48 + 0.5 / 3600 - step / 2};
    int read_files = 0;
    ForEachAnswer("adrg", [&](const std::filesystem::path& file, const Json& answer) {
        const bool names_files = file.extension() == ".THF";  // and places none
        const NamedRead read = ReadAs(names_files ? "" : "ADRG", file);
        if (names_files) return;
        ++read_files;
        EXPECT_EQ(std::filesystem::path(read.used).extension(), ".GEN");
        ExpectTerms(read.reference, by_header, 2e-15);
        if (answer.contains("geoTransform"))
            ExpectTerms(read.reference, Centred(TermsOfGdal(answer["geoTransform"])), 2e-15);
        EXPECT_EQ(CodeOf(read.reference), "EPSG:4326");
    });
    EXPECT_EQ(read_files, 5);
}

TEST(ChartCorpus, ChartsWithoutPoints) {
    ForEachAnswer("kap", [](const std::filesystem::path& file, const Json& answer) {
        const NamedRead read = ReadAs("KAP", file);
        EXPECT_EQ(CodeOf(read.reference), "EPSG:4326");
        EXPECT_TRUE(read.reference.PointPairVector.empty());
        EXPECT_FALSE(answer.contains("geoTransform") || read.reference.HasMathTransform());
    });
}

TEST(ChartCorpus, AnOrthophotoWithABlankOrigin) {
    // The file fills the first of the header's corners, which GDAL takes; the one that
    // is read here it leaves blank.
    ForEachAnswer("doq", [](const std::filesystem::path& file, const Json& answer) {
        if (file.filename() != "fakedoq1.doq") return;
        const NamedRead read = ReadAs("DOQ", file);
        const Six g = TermsOfGdal(answer["geoTransform"]);
        EXPECT_EQ(References::Terms(read.reference), (Six{g[0], 0, 0, 0, g[4], 0}));
        // Zone 31 as stated; NAD27 whatever the file states.
        EXPECT_NE(read.reference.CoordSys->ToWKT().StdStr().find("NAD27 / UTM zone 31N"), std::string::npos);
    });
}

TEST(ChartPeer, AnOrthophotoWhoseCornersAgree) {
    const TempFolder folder;
    DoqFile doq;
    doq.line = 600;
    std::string bytes = doq.Bytes();
    Put(bytes, 144, "   500   600  1");
    Put(bytes, 162, "  0");
    Put(bytes, 2 * 600 + 288, doq.x + doq.y);
    bytes.resize(600 * 504, ' ');
    const std::string file = folder.Write("quad.doq", bytes);
    const auto peer = GdalFiles::Open(file);
    ASSERT_TRUE(peer);
    double g[6];
    ASSERT_EQ(peer->GetGeoTransform(g), CE_None);
    EXPECT_EQ(References::Terms(ReadByName(file).reference), (Six{g[1], g[2], g[0], g[4], g[5], g[3]}));
}

TEST(ChartPeer, ControlPointsOfAChart) {
    const TempFolder folder;
    std::string bytes = TempFolder::Slurp((kCorpus / "kap/rgbsmall.kap").string());
    // Of a projected chart GDAL gives the points in metres.
    const std::string projection = "PR=Mercator";
    bytes.replace(bytes.find(projection), projection.size(), "PR=UNKNOWN");
    const std::size_t end = bytes.find('\x1A');
    ASSERT_NE(end, std::string::npos);
    bytes.insert(end,
                 "REF/1,0,0,48.5,-123.25\r\nREF/2,50,3,48.25,-122.5\r\n"
                 "REF/3,47,50,47.5,-122.125\r\nREF/4,2,44,47.75,-123.0\r\n");
    const std::string file = folder.Write("chart.kap", bytes);
    const auto peer = GdalFiles::Open(file);
    ASSERT_TRUE(peer);
    const NamedRead read = ReadByName(file);
    ASSERT_EQ(peer->GetGCPCount(), 4);
    ASSERT_EQ(read.reference.PointPairVector.size(), 4U);
    for (std::size_t i = 0; i < 4; ++i) {
        const GDAL_GCP& theirs = peer->GetGCPs()[i];
        const BPointPair& ours = read.reference.PointPairVector[i];
        EXPECT_EQ(ours.Column, theirs.dfGCPPixel);
        EXPECT_EQ(ours.Row, theirs.dfGCPLine);
        EXPECT_EQ(ours.World.x, theirs.dfGCPX);
        EXPECT_EQ(ours.World.y, theirs.dfGCPY);
    }
}

}  // namespace
}  // namespace MapAnchor

// Every chart, frame, rectangle and orthophoto of the corpus against its own header
// and against GDAL's drivers. GDAL anchors at the outer corner, frames and rectangles
// are anchored at the centre here: that half pixel is all that may lie between.

#include <MapAnchor/BReferenceFormats.h>

#include <gdal_priv.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "ChartFiles.h"
#include "Reading.h"
#include "TempFolder.h"

#include <filesystem>
#include <fstream>
#include <memory>

namespace MapAnchor {
namespace {

using namespace Tellurion;
using nlohmann::json;

const std::filesystem::path kCorpus = MAPANCHOR_CORPUS;

json Expected(const char* folder) {
    return json::parse(std::ifstream(kCorpus / folder / "expected.json"));
}

NamedRead ReadCorpus(const std::string& name) {
    return ReadByName((kCorpus / name).string());
}

void ExpectNear(const Terms& got, const Terms& wanted, double tolerance) {
    for (std::size_t i = 0; i < got.size(); ++i)
        EXPECT_NEAR(got[i], wanted[i], tolerance) << "term " << i;
}

/// GDAL's terms, moved to the centre of the top left pixel.
Terms Centred(const json& g) {
    const auto n = [&g](std::size_t i) { return g[i].get<double>(); };
    return {n(1), n(2), n(0) + 0.5 * (n(1) + n(2)), n(4), n(5), n(3) + 0.5 * (n(4) + n(5))};
}

TEST(ChartCorpus, Frames) {
    // The intervals of this frame do not divide its corners: GDAL goes by the corners,
    // here the header's intervals count, and rows are counted up from the south edge.
    constexpr double kV = 0.0013469827586206897;
    constexpr double kW = 0.0017845812182741116;
    const Terms by_intervals = {kW, 0, 1.9999416 + kW / 2, 0, -kV, 33.9323825 - kV / 2 + kV * 1536};
    const json expected = Expected("cadrg");
    ASSERT_EQ(expected.size(), 2U);
    for (const auto& [name, answer] : expected.items()) {
        SCOPED_TRACE(name);
        const NamedRead read = ReadCorpus("cadrg/" + name);
        ASSERT_EQ(read.kind, "CADRG");
        const bool odd = name == "RPFTOC01.ON2";
        ExpectNear(TermsOf(read.reference), odd ? by_intervals : Centred(answer["geoTransform"]), 1e-13);
        EXPECT_EQ(EpsgOf(read.reference), "EPSG:" + std::to_string(answer["epsg"].get<int>()));
    }
}

TEST(ChartCorpus, Rectangles) {
    // The four values of every record in these files, read by eye.
    const double step = 360.0 / 46067;
    const Terms by_header = {step, 0, -0.5 / 3600 + step / 2, 0, -step, 48 + 0.5 / 3600 - step / 2};
    int read_files = 0;
    const json expected = Expected("adrg");
    for (const auto& [name, answer] : expected.items()) {
        SCOPED_TRACE(name);
        const NamedRead read = ReadCorpus("adrg/" + name);
        if (std::filesystem::path(name).extension() == ".THF") {  // names files, places none
            EXPECT_EQ(read.kind, "");
            continue;
        }
        ++read_files;
        ASSERT_EQ(read.kind, "ADRG");
        EXPECT_EQ(std::filesystem::path(read.used).extension(), ".GEN");
        ExpectNear(TermsOf(read.reference), by_header, 1e-13);
        if (answer.contains("geoTransform"))
            ExpectNear(TermsOf(read.reference), Centred(answer["geoTransform"]), 1e-13);
        EXPECT_EQ(EpsgOf(read.reference), "EPSG:4326");
    }
    EXPECT_EQ(read_files, 5);
}

TEST(ChartCorpus, ChartsWithoutPoints) {
    const json expected = Expected("kap");
    ASSERT_EQ(expected.size(), 5U);
    for (const auto& [name, answer] : expected.items()) {
        SCOPED_TRACE(name);
        const NamedRead read = ReadCorpus("kap/" + name);
        EXPECT_EQ(read.kind, "KAP");
        EXPECT_EQ(EpsgOf(read.reference), "EPSG:4326");
        EXPECT_TRUE(read.reference.PointPairVector.empty());
        EXPECT_FALSE(answer.contains("geoTransform") || read.reference.HasMathTransform());
    }
}

TEST(ChartCorpus, AnOrthophotoWithABlankOrigin) {
    // The file fills the first of the header's corners, which GDAL takes; the one that
    // is read here it leaves blank.
    const json answer = Expected("doq")["fakedoq1.doq"];
    const NamedRead read = ReadCorpus("doq/fakedoq1.doq");
    EXPECT_EQ(read.kind, "DOQ");
    EXPECT_EQ(TermsOf(read.reference), (Terms{answer["geoTransform"][1].get<double>(), 0, 0, 0,
                                              answer["geoTransform"][5].get<double>(), 0}));
    // Zone 31 as stated; NAD27 whatever the file states.
    EXPECT_NE(read.reference.CoordSys->ToWKT().StdStr().find("NAD27 / UTM zone 31N"), std::string::npos);
}

std::unique_ptr<GDALDataset> OpenByGdal(const std::string& file) {
    GDALAllRegister();
    return std::unique_ptr<GDALDataset>(GDALDataset::Open(file.c_str(), GDAL_OF_RASTER));
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
    const auto peer = OpenByGdal(file);
    ASSERT_TRUE(peer);
    double g[6];
    ASSERT_EQ(peer->GetGeoTransform(g), CE_None);
    EXPECT_EQ(TermsOf(ReadByName(file).reference), (Terms{g[1], g[2], g[0], g[4], g[5], g[3]}));
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
    const auto peer = OpenByGdal(file);
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

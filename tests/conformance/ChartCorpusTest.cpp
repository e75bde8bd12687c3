// Every chart, frame, rectangle and orthophoto of the corpus against its own header and
// against GDAL's drivers. GDAL anchors at the outer corner, frames and rectangles are
// anchored at the centre here: they may differ by that half pixel alone.

#include "Corpus.h"
#include "Reading.h"

namespace MapAnchor {
namespace {

NamedRead ReadAs(const char* kind, const Path& file) {
    NamedRead read = ReadByName(file.string());
    EXPECT_EQ(read.kind, kind);
    return read;
}

TEST(ChartCorpus, FramesAndRectangles) {
    // The intervals of this frame do not divide its corners: GDAL goes by the corners,
    // here the header's intervals count, and rows are counted up from the south edge.
    constexpr double kV = 0.0013469827586206897, kW = 0.0017845812182741116;
    const Six by_intervals = {kW, 0, 1.9999416 + kW / 2, 0, -kV, 33.9323825 - kV / 2 + kV * 1536};
    int files = 0;
    ForEachAnswer("cadrg", [&](const Path& file, const Json& answer) {
        const NamedRead read = ReadAs("CADRG", file);
        const bool odd = file.filename() == "RPFTOC01.ON2";
        ExpectTerms(read.reference, odd ? by_intervals : Centred(TermsOfGdal(answer["geoTransform"])), 2e-15);
        EXPECT_EQ(CodeOf(read.reference), "EPSG:" + std::to_string(answer["epsg"].get<int>()));
        ++files;
    });
    EXPECT_EQ(files, 2);
    // The four values of every record in these files, as a person reads them.
    const double step = 360.0 / 46067;
    const Six by_header = {step, 0, -0.5 / 3600 + step / 2, 0, -step, 48 + 0.5 / 3600 - step / 2};
    ForEachAnswer("adrg", [&](const Path& file, const Json& answer) {
        const bool names_files = file.extension() == ".THF";  // and places none
        const NamedRead read = ReadAs(names_files ? "" : "ADRG", file);
        if (names_files) return;
        ++files;
        EXPECT_EQ(Path(read.used).extension(), ".GEN");
        ExpectTerms(read.reference, by_header, 2e-15);
        if (answer.contains("geoTransform"))
            ExpectTerms(read.reference, Centred(TermsOfGdal(answer["geoTransform"])), 2e-15);
        EXPECT_EQ(CodeOf(read.reference), "EPSG:4326");
    });
    EXPECT_EQ(files, 7);
}

TEST(ChartCorpus, ChartsAndOrthophotos) {
    ForEachAnswer("kap", [](const Path& file, const Json& answer) {
        const NamedRead read = ReadAs("KAP", file);
        EXPECT_EQ(CodeOf(read.reference), "EPSG:4326");
        EXPECT_TRUE(read.reference.PointPairVector.empty());
        EXPECT_FALSE(answer.contains("geoTransform") || read.reference.HasMathTransform());
    });
    // The file fills the first of the header's corners, which GDAL reads; the one that is
    // read here it leaves blank.
    ForEachAnswer("doq", [](const Path& file, const Json& answer) {
        if (file.filename() != "fakedoq1.doq") return;
        const NamedRead read = ReadAs("DOQ", file);
        const Six g = TermsOfGdal(answer["geoTransform"]);
        EXPECT_EQ(References::Terms(read.reference), (Six{g[0], 0, 0, 0, g[4], 0}));
        // Zone 31 as stated; NAD27 whatever the file states.
        EXPECT_NE(read.reference.CoordSys->ToWKT().StdStr().find("NAD27 / UTM zone 31N"), std::string::npos);
    });
}

}  // namespace
}  // namespace MapAnchor

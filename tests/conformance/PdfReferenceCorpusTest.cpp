// The geospatial PDFs of the corpus by type: where the page comes to lie against the
// peer's answer, or with what words the file is refused.

#include <MapAnchor/BGeoPDFPage.h>

#include <gdal.h>
#include <podofo/podofo.h>

#include "Corpus.h"

#include <set>

namespace MapAnchor {
namespace {

using namespace Tellurion;
/// How far apart two positions may be, in page points: what a matrix holds. The raster of
/// the reads has a thousand pixels a point, so that rounded control points hold it too.
constexpr double kMatrix = 1e-3;
/// The peer places the page by two opposite corners and leaves out a rotation of some
/// millionths: on the diagonal it is where we are, in the other corners 0.0057 points off.
constexpr double kPeerWithoutRotation = 6e-3;
constexpr long kPixelsPerPoint = 1000;

struct Read {
    double tolerance;  ///< 0 for a system alone
    const char* epsg;
};
const std::map<std::string, Read> kRead = {
    {"adobe_style_geospatial.pdf", {kPeerWithoutRotation, "EPSG:32620"}},
    {"nad27utm11.ogcbp.array.pdf", {kMatrix, "EPSG:26711"}},
    {"utm33n.ogcbp.array.pdf", {kMatrix, "EPSG:32633"}},
    // Degrees in a file whose matrix lost its decimals: the terms give no transform. The
    // peer reports the same terms, which place the whole page on one spot.
    {"nad83.ogcbp.array.pdf", {0, "EPSG:4269"}},
    {"wgs84.ogcbp.array.pdf", {0, "EPSG:4326"}},
};

/// Refused by the reading rules, though the peer takes most of them: a direct "Measure", one
/// LGIDict in place of an array, values that are no strings. All others hold no map for these
/// rules, mostly since their viewports stand behind a reference.
const std::vector<std::pair<const char*, std::set<std::string>>> kRefused = {
    {"The PDF file is encrypted.", {"byte_enc.pdf"}},
    {"The PDF was partially corrupt and could not be read", {"invalid_srs.pdf"}},
    {"The key Datum is not of type String.", {"lambert93.ogcbp.array.pdf", "nztm.ogcbp.array.pdf"}},
    {"The key LGIDict is not of type Array.",
     {"lambert93.ogcbp.pdf", "nad27utm11.ogcbp.pdf", "nad83.ogcbp.pdf", "nztm.ogcbp.pdf", "texftus.ogcbp.pdf",
      "utm33n.ogcbp.pdf", "webmerc.ogcbp.pdf", "wgs84.ogcbp.pdf"}},
    {"", {"missing_stream.pdf"}},  // by PoDoFo, in words of the file itself
    {"The key Measure is not of type Reference.", {"recursive_resources_and_oc_name_and_empty_ocg_name.pdf"}},
    {"is not of type String.", {"texftus.ogcbp.array.pdf", "webmerc.ogcbp.array.pdf"}},
};

/// The page's size in points, and a read of it in a raster of that many pixels a point.
struct PageRead {
    double width;
    double height;
    BGeoReference reference;
};

PageRead ReadPage(const std::string& file) {
    const BGeoPDFBox box = BGeoPDFPage::Describe(BString(file)).MediaBox;
    PageRead page{box.Right - box.Left, box.Top - box.Bottom, {}};
    BMapAnchor::Read(EReferenceType::GeoPDF, BString(file), page.reference,
                     std::lround(page.width * kPixelsPerPoint), std::lround(page.height * kPixelsPerPoint),
                     EMathTransformType::Affine, 0, nullptr);
    return page;
}

/// How far our position of a page point lies from it by the peer's terms, in points.
double Deviation(const PageRead& page, const Json& answer, double x, double y) {
    Six terms = answer["geoTransform"];
    Six inverse;
    if (!GDALInvGeoTransform(terms.data(), inverse.data())) return INFINITY;
    const BPoint world =
        page.reference.MathTransform->ConvertSourceToTarget({x * kPixelsPerPoint, y * kPixelsPerPoint, 0.0});
    double column;
    double row;
    GDALApplyGeoTransform(inverse.data(), world.x, world.y, &column, &row);
    return std::hypot(column * page.width / answer["size"][0].get<double>() - x,
                      row * page.height / answer["size"][1].get<double>() - y);
}

void ExpectPlacedAsByPeer(const PageRead& page, double tolerance, const Json& answer) {
    const double w = page.width;
    const double h = page.height;
    for (const auto& [x, y] : {std::pair{0.0, 0.0}, {w, 0.0}, {w, h}, {0.0, h}, {w / 2, h / 2}})
        EXPECT_LE(Deviation(page, answer, x, y), tolerance) << x << ", " << y;
}

void ExpectRefused(const std::filesystem::path& file) {
    EXPECT_ANY_THROW(ReadPage(file));
    const std::string fault = BGeoPDFPage::Describe(BString(file.string())).Fault.StdStr();
    EXPECT_FALSE(fault.empty());
    const char* expected = "No Geospatial data found within PDF Document";
    for (const auto& [words, names] : kRefused)
        if (names.count(file.filename())) expected = words;
    EXPECT_NE(fault.find(expected), std::string::npos) << fault;
}

TEST(PdfReferenceCorpus, EveryFileIsReadAsByThePeerOrRefusedInItsWords) {
    const LogCapture quiet;
    std::size_t refused = 0;
    ForEachAnswer("pdf", [&](const std::filesystem::path& file, const Json& answer) {
        const auto read = kRead.find(file.filename());
        if (read == kRead.end()) {
            ++refused;
            ExpectRefused(file);
            return;
        }
        const PageRead page = ReadPage(file);
        EXPECT_EQ(CodeOf(page.reference), read->second.epsg);
        ASSERT_EQ(page.reference.HasMathTransform(), read->second.tolerance > 0);
        if (page.reference.HasMathTransform()) ExpectPlacedAsByPeer(page, read->second.tolerance, answer);
    });
    EXPECT_EQ(refused, 40U);
}

}  // namespace
}  // namespace MapAnchor

// The geospatial PDFs of the corpus by type: where the page comes to lie against the
// peer's answer, or with what words the file is refused.

#include <MapAnchor/BGeoPDFPage.h>
#include <MapAnchor/BMapAnchor.h>
#include <Tellurion/BException.h>
#include <Tellurion/BLogger.h>

#include <gdal.h>
#include <gtest/gtest.h>
#include <podofo/podofo.h>
#include <nlohmann/json.hpp>

#include <array>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>

namespace MapAnchor {
namespace {

using namespace Tellurion;
using Json = nlohmann::json;

const std::filesystem::path kFolder = std::filesystem::path(MAPANCHOR_CORPUS) / "pdf";

/// How far apart two positions may be, in page points: what a matrix holds. The raster of
/// the reads has a thousand pixels a point, so that rounded control points hold it too.
constexpr double kMatrix = 1e-3;
/// The peer places the page by two opposite corners and leaves out a rotation of some
/// millionths: on the diagonal it is where we are, in the other corners 0.0057 points off.
constexpr double kPeerWithoutRotation = 6e-3;
constexpr long kPixelsPerPoint = 1000;

const char* const kNoMap = "No Geospatial data found within PDF Document";
const char* const kSingle = "The key LGIDict is not of type Array.";

struct Read {
    double tolerance;
    const char* epsg;
};
const std::map<std::string, Read> kRead = {
    {"adobe_style_geospatial.pdf", {kPeerWithoutRotation, "EPSG:32620"}},
    {"nad27utm11.ogcbp.array.pdf", {kMatrix, "EPSG:26711"}},
    {"utm33n.ogcbp.array.pdf", {kMatrix, "EPSG:32633"}},
};

/// Degrees in a file whose matrix lost its decimals: the terms give no transform. The
/// peer reports the same terms, which place the whole page on one spot.
const std::map<std::string, const char*> kSystemAlone = {
    {"nad83.ogcbp.array.pdf", "EPSG:4269"},
    {"wgs84.ogcbp.array.pdf", "EPSG:4326"},
};

/// Refused by the reading rules, though the peer takes most of them: viewports behind a
/// reference, a direct "Measure", one LGIDict in place of an array, values that are no strings.
const std::map<std::string, const char*> kRefused = {
    {"bezier_curve_and_polygon_holes.pdf", kNoMap},
    {"byte_and_rgbsmall_2pages.pdf", kNoMap},
    {"byte_enc.pdf", "The PDF file is encrypted."},
    {"esri_102422_as_epsg_code.pdf", kNoMap},
    {"invalid_srs.pdf", "The PDF was partially corrupt and could not be read"},
    {"lambert93.iso.pdf", kNoMap},
    {"lambert93.ogcbp.array.pdf", "The key Datum is not of type String."},
    {"lambert93.ogcbp.pdf", kSingle},
    {"layer_with_ocmd.pdf", kNoMap},
    {"missing_resources.pdf", kNoMap},
    {"missing_stream.pdf", ""},  // by PoDoFo, in words of the file itself
    {"nad27utm11.iso.pdf", kNoMap},
    {"nad27utm11.ogcbp.pdf", kSingle},
    {"nad83.iso.pdf", kNoMap},
    {"nad83.ogcbp.pdf", kSingle},
    {"nztm.iso.pdf", kNoMap},
    {"nztm.ogcbp.array.pdf", "The key Datum is not of type String."},
    {"nztm.ogcbp.pdf", kSingle},
    {"poly.pdf", kNoMap},
    {"recursive_resources_and_oc_name_and_empty_ocg_name.pdf", "The key Measure is not of type Reference."},
    {"test_iso32000.pdf", kNoMap},
    {"test_iso32000_libpng_1_6_40.pdf", kNoMap},
    {"test_pdf_composition_libpng_1_6_40.pdf", kNoMap},
    {"test_pdf_composition_outline.pdf", kNoMap},
    {"test_pdf_composition_pdf_content.pdf", kNoMap},
    {"test_pdf_composition_pdf_content_pdfium.pdf", kNoMap},
    {"test_pdf_composition_raster_georeferenced.pdf", kNoMap},
    {"test_pdf_composition_raster_georeferenced_libpng_1_6_40.pdf", kNoMap},
    {"test_pdf_composition_raster_tiled_blending_libpng_1_6_40.pdf", kNoMap},
    {"test_pdf_composition_vector_georeferenced.pdf", kNoMap},
    {"texftus.iso.pdf", kNoMap},
    {"texftus.ogcbp.array.pdf", "is not of type String."},
    {"texftus.ogcbp.pdf", kSingle},
    {"utm33n.iso.pdf", kNoMap},
    {"utm33n.ogcbp.pdf", kSingle},
    {"webmerc.iso.pdf", kNoMap},
    {"webmerc.ogcbp.array.pdf", "is not of type String."},
    {"webmerc.ogcbp.pdf", kSingle},
    {"wgs84.iso.pdf", kNoMap},
    {"wgs84.ogcbp.pdf", kSingle},
};

BString PathOf(const std::string& name) {
    return BString((kFolder / name).string());
}

/// The page's size in points, and a read of it in a raster of that many pixels a point.
struct PageRead {
    double width;
    double height;
    BGeoReference reference;
};

PageRead ReadPage(const std::string& name) {
    const BGeoPDFBox box = BGeoPDFPage::Describe(PathOf(name)).MediaBox;
    PageRead page{box.Right - box.Left, box.Top - box.Bottom, {}};
    BMapAnchor::Read(EReferenceType::GeoPDF, PathOf(name), page.reference,
                     std::lround(page.width * kPixelsPerPoint), std::lround(page.height * kPixelsPerPoint),
                     EMathTransformType::Affine, 0, nullptr);
    return page;
}

/// How far our position of a page point lies from it by the peer's terms, in points.
double Deviation(const PageRead& page, const Json& answer, double x, double y) {
    std::array<double, 6> terms;
    std::array<double, 6> inverse;
    for (std::size_t i = 0; i < terms.size(); ++i)
        terms[i] = answer["geoTransform"][i].get<double>();
    if (!GDALInvGeoTransform(terms.data(), inverse.data())) return INFINITY;
    const BPoint world =
        page.reference.MathTransform->ConvertSourceToTarget({x * kPixelsPerPoint, y * kPixelsPerPoint, 0.0});
    double column;
    double row;
    GDALApplyGeoTransform(inverse.data(), world.x, world.y, &column, &row);
    return std::hypot(column * page.width / answer["size"][0].get<double>() - x,
                      row * page.height / answer["size"][1].get<double>() - y);
}

void ExpectPlacedAsByPeer(const std::string& name, const Read& read, const Json& answer) {
    const PageRead page = ReadPage(name);
    ASSERT_TRUE(page.reference.HasMathTransform());
    EXPECT_EQ(page.reference.CoordSys->ToEPSGCode(), BString(read.epsg));
    const double w = page.width;
    const double h = page.height;
    for (const auto& [x, y] : {std::pair{0.0, 0.0}, {w, 0.0}, {w, h}, {0.0, h}, {w / 2, h / 2}})
        EXPECT_LE(Deviation(page, answer, x, y), read.tolerance) << x << ", " << y;
}

void ExpectRefused(const std::string& name, const std::string& words) {
    EXPECT_ANY_THROW(ReadPage(name));
    const std::string fault = BGeoPDFPage::Describe(PathOf(name)).Fault.StdStr();
    EXPECT_FALSE(fault.empty());
    EXPECT_NE(fault.find(words), std::string::npos) << fault;
}

TEST(PdfReferenceCorpus, EveryFileIsReadAsByThePeerOrRefusedInItsWords) {
    BLogger::Instance()->SetSink([](ELogSeverity, const BString&) {});
    const Json expected = Json::parse(std::ifstream(kFolder / "expected.json"));
    EXPECT_EQ(expected.size(), kRead.size() + kSystemAlone.size() + kRefused.size());
    for (const auto& [name, answer] : expected.items()) {
        SCOPED_TRACE(name);
        if (const auto read = kRead.find(name); read != kRead.end()) {
            ExpectPlacedAsByPeer(name, read->second, answer);
        } else if (const auto alone = kSystemAlone.find(name); alone != kSystemAlone.end()) {
            const PageRead page = ReadPage(name);
            EXPECT_FALSE(page.reference.HasMathTransform());
            EXPECT_EQ(page.reference.CoordSys->ToEPSGCode(), BString(alone->second));
        } else {
            const auto refused = kRefused.find(name);
            ASSERT_NE(refused, kRefused.end()) << "a file that these tables do not know";
            ExpectRefused(name, refused->second);
        }
    }
    BLogger::Instance()->SetSink({});
}

}  // namespace
}  // namespace MapAnchor

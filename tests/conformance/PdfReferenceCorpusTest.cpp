// The geospatial PDFs of the corpus by type: where the page is by comparison with the
// peer's answer, or with what words the file is refused.

#include <MapAnchor/BGeoPDFPages.h>

#include <gdal.h>
#include <podofo/podofo.h>

#include "Corpus.h"

namespace MapAnchor {
namespace {

using namespace Tellurion;
/// How far apart two positions may be, in page points: what a matrix can store. The raster of
/// the reads has a thousand pixels per point, so that rounded control points can store it too.
constexpr double kMatrix = 1e-3;
constexpr long kPixelsPerPoint = 1000;

/// The system, and how far a position may be off; 0 for a system alone.
const std::map<std::string, std::pair<const char*, double>> kRead = {
    // The peer places the page by two opposite corners and leaves out a rotation of some
    // millionths: on the diagonal it is where we are, in the other corners 0.0057 points off.
    {"adobe_style_geospatial.pdf", {"EPSG:32620", 6e-3}},
    {"nad27utm11.ogcbp.array.pdf", {"EPSG:26711", kMatrix}},
    {"utm33n.ogcbp.array.pdf", {"EPSG:32633", kMatrix}},
    // Degrees in a file whose matrix lost its decimals: the terms give no transform. The
    // peer reports the same terms, which place the whole page on one spot.
    {"nad83.ogcbp.array.pdf", {"EPSG:4269", 0}},
    {"wgs84.ogcbp.array.pdf", {"EPSG:4326", 0}}};

/// Refused by the reading rules, though the peer takes most of them: a direct "Measure", one
/// LGIDict in place of an array, values that are not strings. All others hold no map for these
/// rules, mostly since their viewports are behind a reference.
std::string RefusalOf(const std::string& name) {
    const Texts refusals = {{"byte_enc.pdf", "The PDF file is encrypted."},
                            {"invalid_srs.pdf", "The PDF was partially corrupt and could not be read"},
                            {"lambert93.ogcbp.array.pdf", "The key Datum is not of type String."},
                            {"nztm.ogcbp.array.pdf", "The key Datum is not of type String."},
                            {"missing_stream.pdf", ""},  // by PoDoFo, in words of the file itself
                            {"recursive_resources_and_oc_name_and_empty_ocg_name.pdf",
                             "The key Measure is not of type Reference."},
                            {"texftus.ogcbp.array.pdf", "is not of type String."},
                            {"webmerc.ogcbp.array.pdf", "is not of type String."}};
    if (const auto found = refusals.find(name); found != refusals.end()) return found->second;
    return name.ends_with(".ogcbp.pdf") ? "The key LGIDict is not of type Array."
                                        : "No Geospatial data found within PDF Document";
}

void ExpectRefused(const Path& file) {
    BGeoReference reference;
    EXPECT_ANY_THROW(BMapAnchor::Read(EReferenceType::GeoPDF, BString(file.string()), reference, 100, 100,
                                      EMathTransformType::Affine, 0, nullptr));
    const std::string fault = BGeoPDFPage::Describe(BString(file.string())).Fault.StdStr();
    EXPECT_FALSE(fault.empty());
    EXPECT_NE(fault.find(RefusalOf(file.filename())), std::string::npos) << fault;
}

/// In the raster of the page, of `w` by `h` points, corners and centre are where the peer's terms put them.
void ExpectPlacedAsByPeer(const BGeoReference& reference, double w, double h, double tolerance,
                          const Json& answer) {
    Six terms = answer["geoTransform"], inverse;
    ASSERT_TRUE(GDALInvGeoTransform(terms.data(), inverse.data()));
    for (const auto& [x, y] : {std::pair{0.0, 0.0}, {w, 0.0}, {w, h}, {0.0, h}, {w / 2, h / 2}}) {
        const BPoint world =
            reference.MathTransform->ConvertSourceToTarget({x * kPixelsPerPoint, y * kPixelsPerPoint, 0.0});
        double column, row;
        GDALApplyGeoTransform(inverse.data(), world.x, world.y, &column, &row);
        EXPECT_LE(std::hypot(column * w / answer["size"][0].get<double>() - x,
                             row * h / answer["size"][1].get<double>() - y),
                  tolerance);
    }
}

TEST(PdfReferenceCorpus, EveryFileIsReadAsByThePeerOrRefused) {
    const LogCapture quiet;
    int refused = 0;
    ForEachAnswer("pdf", [&](const Path& file, const Json& answer) {
        const auto read = kRead.find(file.filename());
        refused += read == kRead.end() ? 1 : 0;
        if (read == kRead.end()) return ExpectRefused(file);
        const auto& [system, tolerance] = read->second;
        const BGeoPDFBox box = BGeoPDFPage::Describe(BString(file.string())).MediaBox;
        const double w = box.Right - box.Left, h = box.Top - box.Bottom;
        BGeoReference reference;
        BMapAnchor::Read(EReferenceType::GeoPDF, BString(file.string()), reference,
                         std::lround(w * kPixelsPerPoint), std::lround(h * kPixelsPerPoint),
                         EMathTransformType::Affine, 0, nullptr);
        EXPECT_EQ(CodeOf(reference), system);
        ASSERT_EQ(reference.HasMathTransform(), tolerance > 0);
        if (tolerance > 0) ExpectPlacedAsByPeer(reference, w, h, tolerance, answer);
    });
    EXPECT_EQ(refused, 40);
}

TEST(PdfReferenceCorpus, WhatThePeerPlacesIsReadBeyondTheRulesAtTheSamePlace) {
    const LogCapture quiet;
    constexpr double kPoints = 0.01;
    int compared = 0;
    BParamList params;
    params.SetInteger(BMapAnchor::kValPDFWide, 1);
    ForEachAnswer("pdf", [&](const Path& file, const Json& answer) {
        if (!answer.contains("geoTransform")) return;
        Six terms = answer["geoTransform"], inverse;
        if (!GDALInvGeoTransform(terms.data(), inverse.data()))
            return;  // all of the page on one spot or line
        const long width = answer["size"][0], height = answer["size"][1];
        const BGeoPDFBox box =
            BGeoPDFPages::Describe(BString(file.string()), nullptr).Pages.at(0).Page.MediaBox;
        BGeoReference reference;
        BMapAnchor::Read(EReferenceType::GeoPDF, BString(file.string()), reference, width, height,
                         EMathTransformType::Affine, 0, &params);
        ASSERT_TRUE(reference.HasCoordSys() && reference.HasMathTransform());
        for (const auto& [x, y] : {std::pair{0L, 0L}, {width, 0L}, {width, height}, {0L, height}}) {
            const BPoint world = reference.MathTransform->ConvertSourceToTarget(
                {static_cast<double>(x), static_cast<double>(y), 0.0});
            double column, row;
            GDALApplyGeoTransform(inverse.data(), world.x, world.y, &column, &row);
            EXPECT_LE(std::hypot(column - static_cast<double>(x), row - static_cast<double>(y)),
                      kPoints * static_cast<double>(width) / (box.Right - box.Left));
        }
        ++compared;
    });
    EXPECT_EQ(compared, 35);
}

}  // namespace
}  // namespace MapAnchor

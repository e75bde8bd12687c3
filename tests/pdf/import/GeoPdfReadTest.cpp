// Geospatial PDF by way of the front door.

#include "GeoPdfFiles.h"
#include "LogCapture.h"
#include "TempFolder.h"

#include <MapAnchor/BMapAnchor.h>
#include <Tellurion/BException.h>

#include <gtest/gtest.h>
#include <podofo/podofo.h>

#include <optional>

namespace MapAnchor {
namespace {

using namespace Tellurion;

constexpr unsigned int kStrict = BMapAnchor::kStrictTransform | BMapAnchor::kStrictCoordSys;

/// What a read came to, whoever failed.
struct Outcome {
    BGeoReference reference;
    std::string type;  ///< of the failure; empty when there was none
    std::string text;
    std::vector<std::string> log;
};

struct Call {
    long width = 612;
    long height = 792;
    std::optional<int> crop = std::nullopt;
    unsigned int flags = 0;
    EMathTransformType fit = EMathTransformType::Affine;
};

Outcome ReadText(const std::string& pdf, const Call& call = {}) {
    const TempFolder folder;
    const BString file(folder.Write("map.pdf", pdf));
    BParamList params;
    if (call.crop) params.SetInteger(BMapAnchor::kValPDFCropType, *call.crop);
    Outcome outcome;
    LogCapture log;
    try {
        BMapAnchor::Read(EReferenceType::GeoPDF, file, outcome.reference, call.width, call.height, call.fit,
                         call.flags, call.crop ? &params : nullptr);
    } catch (const BException& error) {
        outcome.type = error.GetTypeName();
        outcome.text = error.GetDetailedMessage().StdStr();
    } catch (const PoDoFo::PdfError& error) {
        outcome.type = "PdfError";
        if (!error.GetCallstack().empty()) outcome.text = error.GetCallstack().back().GetInformation();
    } catch (const std::exception& error) {
        outcome.type = "std::exception";
        outcome.text = error.what();
    }
    outcome.log = log.lines;
    return outcome;
}

std::vector<std::pair<int, int>> PixelsOf(const Outcome& outcome) {
    std::vector<std::pair<int, int>> pixels;
    for (const BPointPair& pair : outcome.reference.PointPairVector)
        pixels.emplace_back(pair.Column, pair.Row);
    return pixels;
}

using PixelList = std::vector<std::pair<int, int>>;
const PixelList kPageCorners = {{0, 792}, {0, 0}, {612, 0}, {612, 792}};

TEST(GeoPdfViewport, PointsSystemAndTransform) {
    const Outcome outcome = ReadText(GeoPdf::Viewport().Text());
    ASSERT_EQ(outcome.type, "") << outcome.text;
    EXPECT_EQ(PixelsOf(outcome), kPageCorners);
    ASSERT_TRUE(outcome.reference.HasCoordSys());
    EXPECT_EQ(outcome.reference.CoordSys->ToEPSGCode(), BString("EPSG:4326"));
    ASSERT_TRUE(outcome.reference.HasMathTransform());
    const BPoint middle = outcome.reference.MathTransform->ConvertSourceToTarget({306, 396, 0});
    EXPECT_NEAR(middle.x, 15.5, 1e-12);
    EXPECT_NEAR(middle.y, 47.5, 1e-12);
}

TEST(GeoPdfViewport, LatitudeAndLongitudeBecomeCoordinatesOfTheSystem) {
    GeoPdf::Viewport map;
    map.system = "/Type /PROJCS /WKT (" + GeoPdf::kUtm33 + ") /EPSG 4326";
    const Outcome outcome = ReadText(map.Text());
    ASSERT_EQ(outcome.type, "") << outcome.text;
    const BPointPair& south_west = outcome.reference.PointPairVector.at(0);
    EXPECT_NEAR(south_west.World.x, 500000.0, 1e-6);     // on the central meridian
    EXPECT_NEAR(south_west.World.y, 5205164.110, 1e-3);  // the arc of the meridian, by quadrature
    EXPECT_EQ(outcome.reference.CoordSys->GetName(), BString("UTM 33N"));
}

struct CropCase {
    const char* name;
    const char* boxes;
    int crop;
    long width;
    long height;
    PixelList pixels;  ///< empty: no box is found
};

const PixelList kCropCorners = {{-10, 782}, {-10, -10}, {602, -10}, {602, 782}};
const char* const kMediaAndCrop = "/MediaBox [0 0 612 792] /CropBox [10 10 602 782]";

const CropCase kCrops[] = {
    {"crop_box_shifts_and_does_not_clip", kMediaAndCrop, 4, 592, 772, kCropCorners},
    {"media_box_ignores_the_crop_box", kMediaAndCrop, 5, 612, 792, kPageCorners},
    {"bleed_falls_back_to_crop", kMediaAndCrop, 3, 592, 772, kCropCorners},
    {"bleed_box_itself", "/MediaBox [0 0 612 792] /BleedBox [10 10 602 782]", 3, 592, 772, kCropCorners},
    {"art_box_beside_a_media_box", "/MediaBox [0 0 612 792] /ArtBox [10 10 602 782]", 0, 592, 772,
     kCropCorners},
    {"art_falls_back_to_media", "/MediaBox [0 0 612 792]", 0, 612, 792, kPageCorners},
    {"trim_counts_as_media", "/MediaBox [0 0 612 792] /TrimBox [10 10 602 782]", 2, 612, 792, kPageCorners},
    {"unknown_number_counts_as_media", kMediaAndCrop, 9, 612, 792, kPageCorners},
    {"art_without_a_media_box", "/ArtBox [10 10 602 782]", 0, 592, 772, {}},
    {"media_box_is_missing", "/CropBox [10 10 602 782]", 5, 592, 772, {}},
    {"crop_box_is_enough", "/CropBox [10 10 602 782]", 4, 592, 772, kCropCorners},
    {"media_box_of_three_numbers", "/MediaBox [0 0 612]", 5, 612, 792, {}},
    {"media_box_without_width", "/MediaBox [612 0 612 792]", 5, 612, 792, {}},
};

class GeoPdfCrop : public testing::TestWithParam<CropCase> {};

TEST_P(GeoPdfCrop, PicksTheBox) {
    const CropCase& c = GetParam();
    GeoPdf::Viewport map;
    map.page = c.boxes;
    const Outcome outcome = ReadText(map.Text(), {.width = c.width, .height = c.height, .crop = c.crop});
    EXPECT_EQ(PixelsOf(outcome), c.pixels);
    EXPECT_EQ(outcome.type, c.pixels.empty() ? "BException" : "");
    if (!c.pixels.empty()) return;
    EXPECT_EQ(outcome.text, "BREFGeoPDF::Read (No crop boxes could be found on this PDF Page, Invalid PDF.)");
}

INSTANTIATE_TEST_SUITE_P(Rows, GeoPdfCrop, testing::ValuesIn(kCrops),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(GeoPdfCropType, MediaWithoutParameters) {
    GeoPdf::Viewport map;
    map.page = kMediaAndCrop;
    EXPECT_EQ(PixelsOf(ReadText(map.Text())), kPageCorners);
}

TEST(GeoPdfCropType, BoundingBoxIsRefused) {
    const Outcome outcome = ReadText(GeoPdf::Viewport().Text(), {.crop = 1});
    EXPECT_EQ(outcome.type, "BReadParametersException");
    EXPECT_EQ(outcome.text, "Bounding box cropping is not supported, please choose a different crop type");
    EXPECT_EQ(outcome.log, (std::vector<std::string>{"BRefGeoPDF::Bounding box crop type is not supported"}));
}

TEST(GeoPdfLGIDict, MatrixBecomesAnAffineFromTheTopLeft) {
    const Outcome outcome = ReadText(GeoPdf::LGIDict().Text(), {.width = 1200, .height = 1600});
    ASSERT_EQ(outcome.type, "") << outcome.text;
    EXPECT_TRUE(outcome.reference.PointPairVector.empty());
    EXPECT_EQ(outcome.reference.CoordSys->ToEPSGCode(), BString("EPSG:32633"));
    double t[6];
    outcome.reference.MathTransform->GetAffineParameters(t[0], t[1], t[2], t[3], t[4], t[5]);
    EXPECT_EQ(std::vector<double>(t, t + 6), (std::vector<double>{1, 0, 400000, 0, -1, 5201600}));
}

TEST(GeoPdfLGIDict, RegistrationBecomesPoints) {
    GeoPdf::LGIDict map;
    map.ctm = "";
    map.registration =
        "/Registration [[(0) (0) (400000) (5200000)] [(600) (0) (401200) (5200000)] [(0) (800) (400000) "
        "(5201600)]]";
    const Outcome outcome = ReadText(map.Text(), {.width = 600, .height = 800});
    ASSERT_EQ(outcome.type, "") << outcome.text;
    EXPECT_EQ(PixelsOf(outcome), (PixelList{{0, 800}, {600, 800}, {0, 0}}));
    const BPoint corner = outcome.reference.MathTransform->ConvertSourceToTarget({600, 0, 0});
    EXPECT_NEAR(corner.x, 401200, 1e-6);
    EXPECT_NEAR(corner.y, 5201600, 1e-6);
}

TEST(GeoPdfLGIDict, LargestNeatlineIsRead) {
    GeoPdf::LGIDict inset;
    inset.neatline = "/Neatline [(0) (0) (0) (10) (10) (10) (10) (0)]";
    inset.ctm = "/CTM [(1) (0) (0) (1) (0) (0)]";
    GeoPdf::LGIDict map;
    std::swap(map, inset);  // the inset comes second
    map.more_dicts = inset.Entry();
    const auto x_of = [](const Outcome& outcome) {
        return outcome.reference.MathTransform->ConvertSourceToTarget({0, 0, 0}).x;
    };
    const Call call{.width = 600, .height = 800};
    EXPECT_EQ(x_of(ReadText(map.Text(), call)), 400000);
    std::swap(map.ctm, inset.ctm);
    std::swap(map.neatline, inset.neatline);
    map.more_dicts = inset.Entry();
    EXPECT_EQ(x_of(ReadText(map.Text(), call)), 400000);
    inset.neatline = map.neatline;  // a tie
    map.more_dicts = inset.Entry();
    EXPECT_EQ(x_of(ReadText(map.Text(), call)), 400000);
}

TEST(GeoPdfKind, ViewportWinsOverLGIDict) {
    GeoPdf::Viewport map;
    map.page += " /LGIDict [ " + GeoPdf::LGIDict().Entry() + " ]";
    EXPECT_EQ(ReadText(map.Text()).reference.PointPairVector.size(), 4U);
    map.gpts = "[47 15 48 15 48 16]";  // too few for the kind: the other dialect is read
    const Outcome outcome = ReadText(map.Text());
    EXPECT_TRUE(outcome.reference.PointPairVector.empty());
    EXPECT_TRUE(outcome.reference.HasMathTransform());
}

struct QuietCase {
    const char* name;
    std::string pdf;
    Call call;
    bool system;
    bool transform;
    std::size_t points;
    std::vector<std::string> log = {};
};

std::string With(void (*change)(GeoPdf::Viewport&)) {
    GeoPdf::Viewport map;
    change(map);
    return map.Text();
}
std::string WithLGI(void (*change)(GeoPdf::LGIDict&)) {
    GeoPdf::LGIDict map;
    change(map);
    return map.Text();
}

const QuietCase kQuiet[] = {
    {"counts_of_points_differ", With([](auto& m) { m.lpts = "[0 0 0 1 1 1]"; }), {}, false, false, 0},
    {"degrees_without_a_system",
     With([](auto& m) { m.system = "/Type /GEOGCS /WKT (nonsense)"; }),
     {},
     false,
     false,
     0},
    {"matrix_without_a_system",
     WithLGI([](auto& m) { m.projection = "<< /Type /P /ProjectionType (GEODETIC) >>"; }),
     {},
     false,
     true,
     0},
    {"fit_that_needs_more_points",
     GeoPdf::Viewport().Text(),
     {.fit = EMathTransformType::Polynomial2},
     true,
     false,
     4},
    {"raster_without_width", GeoPdf::LGIDict().Text(), {.width = 0}, true, false, 0},
};

class GeoPdfQuiet : public testing::TestWithParam<QuietCase> {};

TEST_P(GeoPdfQuiet, KeepsWhatThereIs) {
    const QuietCase& c = GetParam();
    const Outcome outcome = ReadText(c.pdf, c.call);
    EXPECT_EQ(outcome.type, "") << outcome.text;
    EXPECT_EQ(outcome.reference.HasCoordSys(), c.system);
    EXPECT_EQ(outcome.reference.HasMathTransform(), c.transform);
    EXPECT_EQ(outcome.reference.PointPairVector.size(), c.points);
}

INSTANTIATE_TEST_SUITE_P(Rows, GeoPdfQuiet, testing::ValuesIn(kQuiet),
                         [](const auto& row) { return std::string(row.param.name); });

struct FaultCase {
    const char* name;
    std::string pdf;
    unsigned int flags;
    const char* type;
    const char* text;  ///< a part of it
};

constexpr const char* kNoMap = "No Geospatial data found within PDF Document";
constexpr const char* kNoSystem = "Invalid Coordinate system in the geospatial PDF (BRefGeoPDF::Read)";
constexpr const char* kBadTransform = "BGeoReferenceInvalidTransformException";

const FaultCase kFaults[] = {
    {"page_without_maps", PagePdf("/MediaBox [0 0 9 9]").Text(), 0, "std::exception", kNoMap},
    {"viewport_behind_a_reference", PagePdf("/MediaBox [0 0 9 9] /VP [4 0 R]").Add("<< >>").Text(), 0,
     "std::exception", kNoMap},
    {"first_viewport_without_measure",
     PagePdf("/MediaBox [0 0 9 9] /VP [ << /BBox [0 0 9 9] >> " + GeoPdf::Viewport().Entry() + " ]")
         .Add(GeoPdf::Viewport().Measure())
         .Add("<< /Type /GEOGCS /EPSG 4326 >>")
         .Text(),
     0, "std::exception", kNoMap},
    {"six_numbers", With([](auto& m) { m.gpts = "[47 15 48 15 48 16]"; }), 0, "std::exception", kNoMap},
    {"system_without_a_name_for_itself", With([](auto& m) { m.system = "/Type /GEOGCS"; }), 0,
     "std::exception", kNoMap},
    {"viewports_are_no_array", PagePdf("/MediaBox [0 0 9 9] /VP 7").Text(), 0, "PdfError",
     "The key VP is not of type Array."},
    {"direct_measure", With([](auto& m) { m.measure_value = m.Measure(); }), 0, "PdfError",
     "The key Measure is not of type Reference."},
    {"direct_system", With([](auto& m) { m.gcs_value = "<< /Type /GEOGCS /EPSG 4326 >>"; }), 0, "PdfError",
     "The key GCS is not of type Reference."},
    {"later_viewport_without_measure", With([](auto& m) { m.more_viewports = " << /BBox [0 0 1 1] >>"; }), 0,
     "PdfError", "The key Measure could not be found within the current dictionary."},
    {"no_bounds", With([](auto& m) { m.bounds = ""; }), 0, "PdfError",
     "The key Bounds could not be found within the current dictionary."},
    {"odd_count_of_numbers", With([](auto& m) { m.gpts = "[47 15 48 15 48 16 47 16 5]"; }), 0, "PdfError",
     "ends before its values do"},
    {"viewport_box_of_three_numbers", With([](auto& m) { m.box = "[0 0 612]"; }), 0, "BException",
     "no complete box"},
    {"column_beyond_32_bits", With([](auto& m) { m.lpts = "[0 0 0 1 99999999 1 1 0]"; }), 0, kBadTransform,
     "GCP point 3"},
    {"strict_about_a_system_that_is_none", With([](auto& m) { m.system = "/Type /GEOGCS /WKT (nonsense)"; }),
     kStrict, "BGeoReferenceInvalidCoordSysException", kNoSystem},
    {"strict_about_points_on_a_line", With([](auto& m) { m.lpts = "[0 0 0 1 0 0.5 0 0.7]"; }), kStrict,
     kBadTransform, "BRefGeoPDF::Read"},
    {"neither_matrix_nor_points", WithLGI([](auto& m) { m.ctm = ""; }), 0, kBadTransform,
     "No GCP points found in the PDF file"},
    {"matrix_of_five_terms", WithLGI([](auto& m) { m.ctm = "/CTM [(1) (0) (0) (1) (5)]"; }), 0, kBadTransform,
     "5 of 6 terms"},
    {"strict_about_a_matrix_of_zeros", WithLGI([](auto& m) { m.ctm = "/CTM [(x) (0) (0) (nan) (5) (5)]"; }),
     kStrict, kBadTransform, "Failed creating Affine"},
    {"neatline_without_width", WithLGI([](auto& m) {
         m.ctm = "";
         m.neatline = "/Neatline [(5) (0) (5) (9)]";
         m.registration = "/Registration [[(1) (1) (2) (2)]]";
     }),
     0, kBadTransform, "GCP point 1"},
    {"empty_lgidict", PagePdf("/MediaBox [0 0 9 9] /LGIDict []").Text(), 0, "PdfError", ""},
    {"one_lgidict_in_place_of_an_array",
     PagePdf("/MediaBox [0 0 9 9] /LGIDict " + GeoPdf::LGIDict().Entry()).Text(), 0, "PdfError",
     "The key LGIDict is not of type Array."},
    {"lgidict_that_is_a_number", PagePdf("/MediaBox [0 0 9 9] /LGIDict [7]").Text(), 0, "PdfError",
     "The key Projection could not be found"},
    {"plain_numbers_in_the_matrix", WithLGI([](auto& m) { m.ctm = "/CTM [1 0 0 1 5 5]"; }), 0, "PdfError",
     ""},
    {"projection_behind_a_reference", WithLGI([](auto& m) { m.projection = "3 0 R"; }), 0, "PdfError",
     "The key Projection is not of type Dictionary."},
    {"zone_as_a_string",
     WithLGI([](auto& m) { m.projection = "<< /Type /P /ProjectionType (UT) /Zone (33) >>"; }), 0, "PdfError",
     "The key Zone is not of type Number."},
    {"registration_of_three_numbers",
     WithLGI([](auto& m) { m.registration = "/Registration [[(1) (1) (2)]]"; }), 0, "PdfError",
     "ends before its values do"},
};

class GeoPdfFault : public testing::TestWithParam<FaultCase> {};

TEST_P(GeoPdfFault, EndsInItsOwnWords) {
    const FaultCase& c = GetParam();
    const Outcome outcome = ReadText(c.pdf, {.flags = c.flags});
    EXPECT_EQ(outcome.type, c.type);
    EXPECT_NE(outcome.text.find(c.text), std::string::npos) << outcome.text;
    EXPECT_FALSE(outcome.reference.HasCoordSys());  // the caller's record stays as it was
}

INSTANTIATE_TEST_SUITE_P(Rows, GeoPdfFault, testing::ValuesIn(kFaults),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(GeoPdfLog, LinesAsTheyStand) {
    using Lines = std::vector<std::string>;
    const std::string no_system = "BRefGeoPDF::Read could not generate a Coordinate system";
    const std::string nonsense = With([](auto& m) { m.system = "/Type /GEOGCS /WKT (nonsense)"; });
    EXPECT_EQ(ReadText(nonsense).log, Lines{});
    EXPECT_EQ(ReadText(nonsense, {.flags = kStrict}).log, (Lines{no_system, no_system}));
    EXPECT_EQ(ReadText(WithLGI([](auto& m) { m.ctm = ""; })).log,
              (Lines{"BRefGeoPDF::Read no control points found in GeospatialPDF."}));
    const Outcome unfit = ReadText(GeoPdf::Viewport().Text(), {.fit = EMathTransformType::Polynomial3});
    ASSERT_EQ(unfit.log.size(), 1U);
    EXPECT_TRUE(unfit.log[0].starts_with("BRefRSF::Read Failure setting the BMathTransform ERROR ("));
}

}  // namespace
}  // namespace MapAnchor

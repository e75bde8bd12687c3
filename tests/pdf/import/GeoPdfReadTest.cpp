// Geospatial PDF by way of the front door, and what a page says of itself.

#include "GeoPdfFiles.h"
#include "LogCapture.h"
#include "TempFolder.h"

#include <MapAnchor/BGeoPDFPage.h>
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

Outcome ReadText(const std::string& pdf, const Call& call = {}, const std::string& name = "map.pdf") {
    const TempFolder folder;
    const BString file(folder.Write(name, pdf));
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

BGeoPDFPage Describe(const std::string& pdf) {
    const TempFolder folder;
    return BGeoPDFPage::Describe(BString(folder.Write("map.pdf", pdf)));
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

TEST(GeoPdfViewport, IsFoundUnderANameThatIsNotUtf8) {
    const Outcome outcome = ReadText(GeoPdf::Viewport().Text(), {}, "caf\xE9.pdf");
    EXPECT_EQ(outcome.type, "") << outcome.text;
    EXPECT_TRUE(outcome.reference.HasMathTransform());
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
    std::optional<int> crop;
    long width;
    long height;
    PixelList pixels;  ///< empty: no box is found
};

const PixelList kCropCorners = {{-10, 782}, {-10, -10}, {602, -10}, {602, 782}};
const char* const kMediaAndCrop = "/MediaBox [0 0 612 792] /CropBox [10 10 602 782]";

const CropCase kCrops[] = {
    {"crop_box_shifts_and_does_not_clip", kMediaAndCrop, 4, 592, 772, kCropCorners},
    {"media_box_without_parameters", kMediaAndCrop, {}, 612, 792, kPageCorners},
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

TEST(GeoPdfCrop, PicksTheBox) {
    for (const CropCase& c : kCrops) {
        SCOPED_TRACE(c.name);
        GeoPdf::Viewport map;
        map.page = c.boxes;
        const Outcome outcome = ReadText(map.Text(), {.width = c.width, .height = c.height, .crop = c.crop});
        EXPECT_EQ(PixelsOf(outcome), c.pixels);
        EXPECT_EQ(outcome.type, c.pixels.empty() ? "BException" : "");
        EXPECT_EQ(outcome.text,
                  c.pixels.empty()
                      ? "BREFGeoPDF::Read (No crop boxes could be found on this PDF Page, Invalid PDF.)"
                      : "");
    }
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
    const char* kept;
    std::string pdf;
    Call call = {};
};

const QuietCase kQuiet[] = {
    {"counts_of_points_differ", "0 points", With([](auto& m) { m.lpts = "[0 0 0 1 1 1]"; })},
    {"degrees_without_a_system", "0 points",
     With([](auto& m) { m.system = "/Type /GEOGCS /WKT (nonsense)"; })},
    {"matrix_without_a_system", "0 points, transform",
     WithLGI([](auto& m) { m.projection = "<< /Type /P /ProjectionType (GEODETIC) >>"; })},
    {"fit_that_needs_more_points", "4 points, system", With([](auto&) {}),
     Call{.fit = EMathTransformType::Polynomial2}},
    {"raster_without_width", "0 points, system", WithLGI([](auto&) {}), Call{.width = 0}},
};

TEST(GeoPdfQuiet, KeepsWhatThereIs) {
    for (const QuietCase& c : kQuiet) {
        SCOPED_TRACE(c.name);
        const Outcome outcome = ReadText(c.pdf, c.call);
        EXPECT_EQ(outcome.type, "") << outcome.text;
        std::string kept = std::to_string(outcome.reference.PointPairVector.size()) + " points";
        if (outcome.reference.HasCoordSys()) kept += ", system";
        if (outcome.reference.HasMathTransform()) kept += ", transform";
        EXPECT_EQ(kept, c.kept);
    }
}

struct FaultCase {
    const char* name;
    std::string pdf;
    unsigned int flags;
    const char* type;
    const char* text;                   ///< a part of it
    const char* explanation = nullptr;  ///< a part of what the page says
};

constexpr const char* kNoMap = "No Geospatial data found within PDF Document";
constexpr const char* kNoSystem = "Invalid Coordinate system in the geospatial PDF (BRefGeoPDF::Read)";
constexpr const char* kBadTransform = "BGeoReferenceInvalidTransformException";

const FaultCase kFaults[] = {
    {"page_without_maps", PagePdf("/MediaBox [0 0 9 9]").Text(), 0, "std::exception", kNoMap},
    {"viewport_behind_a_reference", PagePdf("/MediaBox [0 0 9 9] /VP [4 0 R]").Add("<< >>").Text(), 0,
     "std::exception", kNoMap, "An entry of \"VP\" is expected to be a dictionary in place"},
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
     "The key Measure is not of type Reference.", "\"Measure\" is expected to be a reference"},
    {"direct_system", With([](auto& m) { m.gcs_value = "<< /Type /GEOGCS /EPSG 4326 >>"; }), 0, "PdfError",
     "The key GCS is not of type Reference.", "\"GCS\" is expected to be a reference"},
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
    {"empty_lgidict", PagePdf("/MediaBox [0 0 9 9] /LGIDict []").Text(), 0, "PdfError", "",
     "the array is empty"},
    {"one_lgidict_in_place_of_an_array",
     PagePdf("/MediaBox [0 0 9 9] /LGIDict " + GeoPdf::LGIDict().Entry()).Text(), 0, "PdfError",
     "The key LGIDict is not of type Array.", "one dictionary stands in its place"},
    {"lgidict_that_is_a_number", PagePdf("/MediaBox [0 0 9 9] /LGIDict [7]").Text(), 0, "PdfError",
     "The key Projection could not be found"},
    {"plain_numbers_in_the_matrix", WithLGI([](auto& m) { m.ctm = "/CTM [1 0 0 1 5 5]"; }), 0, "PdfError", "",
     "plain numbers"},
    {"projection_behind_a_reference", WithLGI([](auto& m) { m.projection = "3 0 R"; }), 0, "PdfError",
     "The key Projection is not of type Dictionary."},
    {"zone_as_a_string",
     WithLGI([](auto& m) { m.projection = "<< /Type /P /ProjectionType (UT) /Zone (33) >>"; }), 0, "PdfError",
     "The key Zone is not of type Number.", "\"Zone\" is expected to be a whole number"},
    {"registration_of_three_numbers",
     WithLGI([](auto& m) { m.registration = "/Registration [[(1) (1) (2)]]"; }), 0, "PdfError",
     "ends before its values do"},
    {"reference_to_one_lgidict", PagePdf("/MediaBox [0 0 9 9] /LGIDict 4 0 R").Add("<< >>").Text(), 0,
     "PdfError", "The key LGIDict is not of type Array.",
     "a reference to one dictionary stands in its place"},
    {"easting_as_a_number",
     WithLGI([](auto& m) { m.projection = "<< /Type /P /ProjectionType (TC) /FalseEasting 5 >>"; }), 0,
     "PdfError", "The key FalseEasting is not of type String.",
     "\"FalseEasting\" of the projection is expected to be a string"},
    {"inherited_media_box",
     PagePdf("/LGIDict [ " + GeoPdf::LGIDict().Entry() + " ]").Inherit("/MediaBox [0 0 9 9]").Text(), 0,
     "BException", "", "\"MediaBox\" of its own"},
    {"no_pdf_at_all", "just text", 0, "PdfError", "", ""},
};

TEST(GeoPdfFault, EndsInItsOwnWords) {
    for (const FaultCase& c : kFaults) {
        SCOPED_TRACE(c.name);
        const Outcome outcome = ReadText(c.pdf, {.flags = c.flags});
        EXPECT_EQ(outcome.type, c.type);
        EXPECT_NE(outcome.text.find(c.text), std::string::npos) << outcome.text;
        EXPECT_FALSE(outcome.reference.HasCoordSys());  // the caller's record stays as it was
        if (!c.explanation) continue;
        const BGeoPDFPage page = Describe(c.pdf);
        EXPECT_NE(page.Fault.StdStr().find(c.text), std::string::npos) << page.Fault;
        EXPECT_NE(page.Explanation.StdStr().find(c.explanation), std::string::npos) << page.Explanation;
        EXPECT_FALSE(page.Fault.IsEmpty() && page.Explanation.IsEmpty());
    }
}

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

TEST(GeoPdfPage, ListsViewportsAndMarksTheFirst) {
    GeoPdf::Viewport map;
    map.page = "/MediaBox [0 0 612 792] /TrimBox [9 9 600 700] /Rotate -90 /UserUnit 2.5";
    map.more_viewports = " << /Name (Inset) /BBox [10 20 30 60] /Measure 4 0 R >>";
    const BGeoPDFPage page = Describe(map.Text());
    EXPECT_TRUE(page.Loaded);
    EXPECT_EQ(page.Dialect, BGeoPDFPage::EDialect::Measure);
    EXPECT_EQ(page.Fault, BString());
    EXPECT_EQ(page.Rotate, 270);
    EXPECT_EQ(page.UserUnit, 2.5);
    EXPECT_EQ(page.TrimBox.Right, 600);
    EXPECT_EQ(page.CropBox.Top, 792);  // by the fall-back that a read follows
    ASSERT_EQ(page.Maps.size(), 2U);
    EXPECT_TRUE(page.Maps[0].InUse);
    EXPECT_EQ(page.Maps[0].CoordSys, BString("WGS 84, EPSG:4326"));
    EXPECT_FALSE(page.Maps[1].InUse);
    EXPECT_EQ(page.Maps[1].Name, BString("Inset"));
    EXPECT_EQ(page.Maps[1].Area, 800.0);
}

TEST(GeoPdfPage, IsTurnedAsAViewerShowsIt) {
    struct Row {
        const char* page;
        const char* above;
        int degrees;
    };
    const Row rows[] = {{"/Rotate 450.0", "", 90},
                        {"/Rotate 6 0 R", "", 180},
                        {"", "/Rotate 270", 270},
                        {"", "/Rotate 6 0 R", 180},
                        {"/Rotate 0", "/Rotate 270", 0},
                        {"/Rotate /Ninety", "", 0},
                        {"/Rotate 100000000000000000000.0", "", 280},
                        {"", "/Parent 3 0 R", 0}};
    for (const Row& row : rows) {
        GeoPdf::Viewport map;
        map.page += row.page;
        const BGeoPDFPage page = Describe(map.Pdf().Add("180").Inherit(row.above).Text());
        EXPECT_EQ(page.Rotate, row.degrees) << row.page << " below " << row.above;
        EXPECT_EQ(page.Maps.size(), 1U) << row.page << " below " << row.above;
    }
}

// Texts that maps share are read for each of them, within a limit.
TEST(GeoPdfPage, ManyMapsOfALongTextEndInAFault) {
    GeoPdf::Viewport map;
    map.system = "/Type /GEOGCS /WKT (" + std::string(1'000'000, 'x') + ")";
    for (int i = 0; i < 100; ++i)
        map.more_viewports += " << /BBox [10 20 30 60] /Measure 4 0 R >>";
    EXPECT_NE(ReadText(map.Text()).type, "");
    const BGeoPDFPage page = Describe(map.Text());
    EXPECT_EQ(page.Maps.front().Fault, BString());
    EXPECT_NE(page.Maps.back().Fault, BString());
}

TEST(GeoPdfPage, ListsLGIDictsAndMarksTheLargest) {
    GeoPdf::LGIDict map;
    map.neatline = "/Neatline [(0) (0) (0) (10) (10) (10) (10) (0)]";
    map.description = "/Description (Inset)";
    map.more_dicts = GeoPdf::LGIDict().Entry();
    const BGeoPDFPage page = Describe(map.Text());
    EXPECT_EQ(page.Dialect, BGeoPDFPage::EDialect::LGIDict);
    ASSERT_EQ(page.Maps.size(), 2U);
    EXPECT_EQ(page.Maps[0].Name, BString("Inset"));
    EXPECT_EQ(page.Maps[0].Area, 100.0);
    EXPECT_FALSE(page.Maps[0].InUse);
    EXPECT_TRUE(page.Maps[1].InUse);
    EXPECT_EQ(page.Maps[1].Box.Right, 600.0);
}

TEST(GeoPdfPage, BoxOfACropType) {
    GeoPdf::Viewport map;
    map.page = "/MediaBox [0 0 612 792] /CropBox [10 10 602 782] /TrimBox [20 20 30 30]";
    const BGeoPDFPage page = Describe(map.Text());
    EXPECT_EQ(page.BoxForCropType(4).Left, 10);
    EXPECT_EQ(page.BoxForCropType(2).Left, 0);  // the media box, as in a read
    EXPECT_EQ(page.BoxForCropType(5).Left, 0);
    EXPECT_EQ(page.BoxForCropType(0).Left, 10);
}

}  // namespace
}  // namespace MapAnchor

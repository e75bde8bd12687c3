// Geospatial PDF by type, and the description of a page.

#include "GeoPdfFiles.h"
#include "LogCapture.h"
#include "References.h"

#include <MapAnchor/BGeoPDFPage.h>
#include <MapAnchor/BMapAnchor.h>
#include <Tellurion/BException.h>

#include <gtest/gtest.h>
#include <podofo/podofo.h>

#include <optional>

#include "TempFolder.h"

namespace MapAnchor {
namespace {

using namespace Tellurion;
using GeoPdf::LGIDict;
using GeoPdf::Viewport;

constexpr unsigned int kStrict = BMapAnchor::kStrictTransform | BMapAnchor::kStrictCoordSys;

/// How a read ended.
struct Outcome {
    BGeoReference reference;
    std::string type;  ///< of the failure; empty when there was none
    std::string text;
    std::vector<std::string> log;

    BPoint WorldAt(double column, double row) const {
        return reference.MathTransform->ConvertSourceToTarget({column, row, 0});
    }
    /// Column and row of each control point.
    std::vector<std::pair<int, int>> Pixels() const {
        std::vector<std::pair<int, int>> pixels;
        for (const BPointPair& pair : reference.PointPairVector)
            pixels.emplace_back(pair.Column, pair.Row);
        return pixels;
    }
};
using PixelList = std::vector<std::pair<int, int>>;

struct Call {
    long width = 612;
    long height = 792;
    std::optional<int> crop = std::nullopt;
    unsigned int flags = 0;
    EMathTransformType fit = EMathTransformType::Affine;
};
constexpr Call kLGICall{.width = 600, .height = 800};

Outcome ReadText(const std::string& pdf, const Call& call = {}, const std::string& name = "map.pdf") {
    const TempFolder folder;
    const BString file(folder.Write(name, pdf));
    BParamList params;
    if (call.crop) params.SetInteger(BMapAnchor::kValPDFCropType, *call.crop);
    Outcome outcome;
    const LogCapture log;
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

BGeoPDFPage Describe(const std::string& pdf) {
    const TempFolder folder;
    return BGeoPDFPage::Describe(BString(folder.Write("map.pdf", pdf)));
}

const PixelList kPageCorners = {{0, 792}, {0, 0}, {612, 0}, {612, 792}};

TEST(GeoPdfViewport, PointsSystemAndTransform) {
    const Outcome outcome = ReadText(Viewport().Text(), {}, "caf\xE9.pdf");  // a name that is not UTF-8
    ASSERT_EQ(outcome.type, "") << outcome.text;
    EXPECT_EQ(outcome.Pixels(), kPageCorners);
    ASSERT_TRUE(outcome.reference.HasCoordSys() && outcome.reference.HasMathTransform());
    EXPECT_EQ(outcome.reference.CoordSys->ToEPSGCode(), BString("EPSG:4326"));
    EXPECT_NEAR(outcome.WorldAt(306, 396).x, 15.5, 1e-12);
    EXPECT_NEAR(outcome.WorldAt(306, 396).y, 47.5, 1e-12);
}

TEST(GeoPdfViewport, LatitudeAndLongitudeBecomeCoordinatesOfTheSystem) {
    const Outcome outcome =
        ReadText(Viewport{.system = "/Type /PROJCS /WKT (" + GeoPdf::kUtm33 + ") /EPSG 4326"}.Text());
    ASSERT_EQ(outcome.type, "") << outcome.text;
    const BPointPair& south_west = outcome.reference.PointPairVector.at(0);
    EXPECT_NEAR(south_west.World.x, 500000.0, 1e-6);     // on the central meridian
    EXPECT_NEAR(south_west.World.y, 5205164.110, 1e-3);  // the arc of the meridian, by quadrature
    EXPECT_EQ(outcome.reference.CoordSys->GetName(), BString("UTM 33N"));
}

struct CropCase {
    const char* boxes;
    std::optional<int> crop;
    PixelList pixels;  ///< empty: no box is found
};

const PixelList kCropCorners = {{-10, 782}, {-10, -10}, {602, -10}, {602, 782}};
const char* const kMediaAndCrop = "/MediaBox [0 0 612 792] /CropBox [10 10 602 782]";

// Art is 0, trim 2, bleed 3, crop 4 and media 5.
const CropCase kCrops[] = {
    {kMediaAndCrop, 4, kCropCorners},
    {kMediaAndCrop, {}, kPageCorners},
    {kMediaAndCrop, 5, kPageCorners},
    {kMediaAndCrop, 3, kCropCorners},
    {"/MediaBox [0 0 612 792] /BleedBox [10 10 602 782]", 3, kCropCorners},
    {"/MediaBox [0 0 612 792] /ArtBox [10 10 602 782]", 0, kCropCorners},
    {"/MediaBox [0 0 612 792]", 0, kPageCorners},
    {"/MediaBox [0 0 612 792] /TrimBox [10 10 602 782]", 2, kPageCorners},
    {kMediaAndCrop, 9, kPageCorners},
    {"/ArtBox [10 10 602 782]", 0, {}},
    {"/CropBox [10 10 602 782]", 5, {}},
    {"/CropBox [10 10 602 782]", 4, kCropCorners},
    {"/MediaBox [0 0 612]", 5, {}},
    {"/MediaBox [612 0 612 792]", 5, {}},
};

TEST(GeoPdfCrop, SelectsTheBox) {
    for (const CropCase& c : kCrops) {
        SCOPED_TRACE(c.boxes + std::string(" by ") + std::to_string(c.crop.value_or(-1)));
        const bool crops = c.pixels == kCropCorners;
        const Outcome outcome =
            ReadText(Viewport{.page = c.boxes}.Text(),
                     {.width = crops ? 592 : 612, .height = crops ? 772 : 792, .crop = c.crop});
        EXPECT_EQ(outcome.Pixels(), c.pixels);
        EXPECT_EQ(outcome.type, c.pixels.empty() ? "BException" : "");
        EXPECT_EQ(outcome.text,
                  c.pixels.empty()
                      ? "BREFGeoPDF::Read (No crop boxes could be found on this PDF Page, Invalid PDF.)"
                      : "");
    }
    const Outcome bounding = ReadText(Viewport().Text(), {.crop = 1});
    EXPECT_EQ(bounding.type, "BReadParametersException");
    EXPECT_EQ(bounding.text, "Bounding box cropping is not supported, please choose a different crop type");
    EXPECT_EQ(bounding.log,
              (std::vector<std::string>{"BRefGeoPDF::Bounding box crop type is not supported"}));
}

TEST(GeoPdfLGIDict, MatrixBecomesAnAffineFromTheTopLeft) {
    const Outcome outcome = ReadText(LGIDict().Text(), {.width = 1200, .height = 1600});
    ASSERT_EQ(outcome.type, "") << outcome.text;
    EXPECT_TRUE(outcome.reference.PointPairVector.empty());
    EXPECT_EQ(outcome.reference.CoordSys->ToEPSGCode(), BString("EPSG:32633"));
    EXPECT_EQ(References::Terms(outcome.reference), (std::array<double, 6>{1, 0, 400000, 0, -1, 5201600}));
}

TEST(GeoPdfLGIDict, RegistrationBecomesPoints) {
    const LGIDict map{.ctm = "",
                      .registration =
                          "/Registration [[(0) (0) (400000) (5200000)] [(600) (0) (401200) "
                          "(5200000)] [(0) (800) (400000) (5201600)]]"};
    const Outcome outcome = ReadText(map.Text(), kLGICall);
    ASSERT_EQ(outcome.type, "") << outcome.text;
    EXPECT_EQ(outcome.Pixels(), (PixelList{{0, 800}, {600, 800}, {0, 0}}));
    EXPECT_NEAR(outcome.WorldAt(600, 0).x, 401200, 1e-6);
    EXPECT_NEAR(outcome.WorldAt(600, 0).y, 5201600, 1e-6);
}

TEST(GeoPdfLGIDict, LargestNeatlineIsRead) {
    const std::string small = "/Neatline [(0) (0) (0) (10) (10) (10) (10) (0)]";
    const std::string elsewhere = "/CTM [(1) (0) (0) (1) (0) (0)]";
    const LGIDict map;
    const LGIDict inset{.ctm = elsewhere, .neatline = small};
    const LGIDict twin{.ctm = elsewhere};
    for (LGIDict first : {map, inset}) {
        first.more_dicts = first.neatline == small ? map.Entry() : inset.Entry();
        EXPECT_EQ(ReadText(first.Text(), kLGICall).WorldAt(0, 0).x, 400000);
    }
    EXPECT_EQ(ReadText(LGIDict{.more_dicts = twin.Entry()}.Text(), kLGICall).WorldAt(0, 0).x, 400000);
}

TEST(GeoPdfKind, ViewportWinsOverLGIDict) {
    Viewport map{.page = Viewport().page + " /LGIDict [ " + LGIDict().Entry() + " ]"};
    EXPECT_EQ(ReadText(map.Text()).reference.PointPairVector.size(), 4U);
    map.gpts = "[47 15 48 15 48 16]";  // too few for the kind: the other dialect is read
    const Outcome outcome = ReadText(map.Text());
    EXPECT_TRUE(outcome.reference.PointPairVector.empty());
    EXPECT_TRUE(outcome.reference.HasMathTransform());
}

const std::string kNonsense = Viewport{.system = "/Type /GEOGCS /WKT (nonsense)"}.Text();
const std::string kNoSystem = LGIDict{.projection = "<< /Type /P /ProjectionType (GEODETIC) >>"}.Text();

struct QuietCase {
    const char* kept;
    std::string pdf;
    Call call = {};
};

TEST(GeoPdfQuiet, KeepsWhatThereIs) {
    const QuietCase cases[] = {
        {"0 points", Viewport{.lpts = "[0 0 0 1 1 1]"}.Text()},
        {"0 points", kNonsense},
        {"0 points, transform", kNoSystem},
        {"4 points, system", Viewport().Text(), {.fit = EMathTransformType::Polynomial2}},
        {"0 points, system", LGIDict().Text(), {.width = 0}},
    };
    for (const QuietCase& c : cases) {
        const Outcome outcome = ReadText(c.pdf, c.call);
        EXPECT_EQ(outcome.type, "") << outcome.text;
        std::string kept = std::to_string(outcome.reference.PointPairVector.size()) + " points";
        if (outcome.reference.HasCoordSys()) kept += ", system";
        if (outcome.reference.HasMathTransform()) kept += ", transform";
        EXPECT_EQ(kept, c.kept);
    }
}

struct FaultCase {
    const char* type;
    const char* text;  ///< a part of it
    std::string pdf;
    const char* explanation = nullptr;  ///< a part of the page's description
    unsigned int flags = 0;
};

constexpr const char* kStd = "std::exception";
constexpr const char* kPdf = "PdfError";
constexpr const char* kBad = "BGeoReferenceInvalidTransformException";
constexpr const char* kNoMap = "No Geospatial data found within PDF Document";

std::string Page(const std::string& keys) {
    return PagePdf("/MediaBox [0 0 9 9] " + keys).Add("<< >>").Text();
}
std::string Projection(const std::string& keys) {
    return LGIDict{.projection = "<< /Type /P /ProjectionType (TC) " + keys + " >>"}.Text();
}

const FaultCase kFaults[] = {
    {kStd, kNoMap, Page("")},
    {kStd, kNoMap, Page("/VP [4 0 R]"), "An entry of \"VP\" is expected to be a dictionary in place"},
    {kStd, kNoMap, Viewport{.box = "[0 0 9 9] >> << /BBox [0 0 9 9]"}.Text()},
    {kStd, kNoMap, Viewport{.gpts = "[47 15 48 15 48 16]"}.Text()},
    {kStd, kNoMap, Viewport{.system = "/Type /GEOGCS"}.Text()},
    {kPdf, "The key VP is not of type Array.", Page("/VP 7")},
    {kPdf, "The key Measure is not of type Reference.",
     Viewport{.measure_value = Viewport().Measure()}.Text(), "\"Measure\" is expected to be a reference"},
    {kPdf, "The key GCS is not of type Reference.",
     Viewport{.gcs_value = "<< /Type /GEOGCS /EPSG 4326 >>"}.Text(), "\"GCS\" is expected to be a reference"},
    {kPdf, "The key Measure could not be found within the current dictionary.",
     Viewport{.more_viewports = " << /BBox [0 0 1 1] >>"}.Text()},
    {kPdf, "The key Bounds could not be found within the current dictionary.", Viewport{.bounds = ""}.Text()},
    {kPdf, "ends before its values do", Viewport{.gpts = "[47 15 48 15 48 16 47 16 5]"}.Text()},
    {"BException", "no complete box", Viewport{.box = "[0 0 612]"}.Text()},
    {kBad, "GCP point 3", Viewport{.lpts = "[0 0 0 1 99999999 1 1 0]"}.Text()},
    {"BGeoReferenceInvalidCoordSysException",
     "Invalid Coordinate system in the geospatial PDF (BRefGeoPDF::Read)", kNonsense, nullptr, kStrict},
    {kBad, "BRefGeoPDF::Read", Viewport{.lpts = "[0 0 0 1 0 0.5 0 0.7]"}.Text(), nullptr, kStrict},
    {kBad, "No GCP points found in the PDF file", LGIDict{.ctm = ""}.Text()},
    {kBad, "5 of 6 terms", LGIDict{.ctm = "/CTM [(1) (0) (0) (1) (5)]"}.Text()},
    {kBad, "Failed creating Affine", LGIDict{.ctm = "/CTM [(x) (0) (0) (nan) (5) (5)]"}.Text(), nullptr,
     kStrict},
    {kBad, "GCP point 1",
     LGIDict{.ctm = "",
             .registration = "/Registration [[(1) (1) (2) (2)]]",
             .neatline = "/Neatline [(5) (0) (5) (9)]"}
         .Text()},
    {kPdf, "", Page("/LGIDict []"), "the array is empty"},
    {kPdf, "The key LGIDict is not of type Array.", Page("/LGIDict " + LGIDict().Entry()),
     "one dictionary stands in its place"},
    {kPdf, "The key LGIDict is not of type Array.", Page("/LGIDict 4 0 R"),
     "a reference to one dictionary stands in its place"},
    {kPdf, "The key Projection could not be found", Page("/LGIDict [7]")},
    {kPdf, "", LGIDict{.ctm = "/CTM [1 0 0 1 5 5]"}.Text(), "plain numbers"},
    {kPdf, "The key Projection is not of type Dictionary.", LGIDict{.projection = "3 0 R"}.Text()},
    {kPdf, "The key Zone is not of type Number.", Projection("/Zone (33)"),
     "\"Zone\" is expected to be a whole number"},
    {kPdf, "The key FalseEasting is not of type String.", Projection("/FalseEasting 5"),
     "\"FalseEasting\" of the projection is expected to be a string"},
    {kPdf, "ends before its values do", LGIDict{.registration = "/Registration [[(1) (1) (2)]]"}.Text()},
    {"BException", "",
     PagePdf("/LGIDict [ " + LGIDict().Entry() + " ]").Inherit("/MediaBox [0 0 9 9]").Text(),
     "\"MediaBox\" of its own"},
    {kPdf, "", "just text", ""},
};

TEST(GeoPdfFault, EndsWithItsOwnText) {
    for (const FaultCase& c : kFaults) {
        SCOPED_TRACE(c.pdf);
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

TEST(GeoPdfLog, LinesAreExact) {
    using Lines = std::vector<std::string>;
    const std::string no_system = "BRefGeoPDF::Read could not generate a Coordinate system";
    EXPECT_EQ(ReadText(kNonsense).log, Lines{});
    EXPECT_EQ(ReadText(kNonsense, {.flags = kStrict}).log, (Lines{no_system, no_system}));
    EXPECT_EQ(ReadText(LGIDict{.ctm = ""}.Text()).log,
              (Lines{"BRefGeoPDF::Read no control points found in GeospatialPDF."}));
    const Lines unfit = ReadText(Viewport().Text(), {.fit = EMathTransformType::Polynomial3}).log;
    ASSERT_EQ(unfit.size(), 1U);
    EXPECT_TRUE(unfit[0].starts_with("BRefRSF::Read Failure setting the BMathTransform ERROR ("));
}

TEST(GeoPdfPage, RotationIsTheOneThatAViewerShows) {
    const std::tuple<std::string, const char*, int> rows[] = {
        {"/Rotate -90", "", 270},   {"/Rotate 450.0", "", 90},
        {"/Rotate 6 0 R", "", 180}, {"", "/Rotate 270", 270},
        {"", "/Rotate 6 0 R", 180}, {"/Rotate 0", "/Rotate 270", 0},
        {"/Rotate /Ninety", "", 0}, {"/Rotate 100000000000000000000.0", "", 280},
        {"", "/Parent 3 0 R", 0}};
    for (const auto& [page, above, degrees] : rows) {
        const Viewport map{.page = Viewport().page + page};
        const BGeoPDFPage described = Describe(map.Pdf().Add("180").Inherit(above).Text());
        EXPECT_EQ(described.Rotate, degrees) << page << " below " << above;
        EXPECT_EQ(described.Maps.size(), 1U) << page << " below " << above;
    }
}

// Texts that maps share are read for each of them, within a limit.
TEST(GeoPdfPage, ManyMapsOfALongTextEndInAFault) {
    Viewport map{.system = "/Type /GEOGCS /WKT (" + std::string(1'000'000, 'x') + ")"};
    for (int i = 0; i < 100; ++i)
        map.more_viewports += " << /BBox [10 20 30 60] /Measure 4 0 R >>";
    EXPECT_NE(ReadText(map.Text()).type, "");
    const BGeoPDFPage page = Describe(map.Text());
    EXPECT_TRUE(page.Maps.front().Fault.IsEmpty() && page.Maps.front().InUse);
    EXPECT_FALSE(page.Maps.back().Fault.IsEmpty() || page.Maps.back().InUse);
}

TEST(GeoPdfPage, BoxOfACropType) {
    const BGeoPDFPage page =
        Describe(Viewport{.page = kMediaAndCrop + std::string(" /TrimBox [20 20 30 30]")}.Text());
    for (const auto& [type, left] : {std::pair{4, 10}, {2, 0}, {5, 0}, {0, 10}})
        EXPECT_EQ(page.BoxForCropType(type).Left, left) << type;
}

}  // namespace
}  // namespace MapAnchor

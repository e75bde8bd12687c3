// Georeferencing a PDF in place, through the front door, and what becomes of the
// user's file where that fails.

#include "LogCapture.h"
#include "PlainPdf.h"
#include "TempFolder.h"
#include "Thrown.h"

#include <MapAnchor/BMapAnchor.h>
#include <MapAnchor/BWarningBox.h>

#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace MapAnchor {
namespace {

using namespace Tellurion;

struct AffineTerms6 {
    double a, b, c, d, e, f;
};

BGeoReference ReferenceOf(const char* epsg, const AffineTerms6& t) {
    BGeoReference reference;
    const std::unique_ptr<BMathTransform> transform(
        BMathTransform::CreateAffine(t.a, t.b, t.c, t.d, t.e, t.f, true));
    reference.SetMathTransform(*transform);
    reference.SetCoordSys(BSharedPtr<BCoordSys>(BCoordSys::FromEPSGCode(epsg)));
    return reference;
}

/// Control points of the affine at these pixels.
std::vector<BPointPair> PointsOf(const AffineTerms6& t, const std::vector<std::pair<long, long>>& pixels) {
    std::vector<BPointPair> pairs;
    for (const auto& [column, row] : pixels) {
        const double x = t.a * static_cast<double>(column) + t.b * static_cast<double>(row) + t.c;
        const double y = t.d * static_cast<double>(column) + t.e * static_cast<double>(row) + t.f;
        pairs.emplace_back(column, row, x, y, 0.0, BString(), true);
    }
    return pairs;
}

void SavePdf(const std::string& file, const BGeoReference& reference, long width, long height,
             double dpi = 72.0) {
    BParamList params;
    params.SetDouble(BMapAnchor::kValPDFResolution, dpi);
    BMapAnchor::Save(EReferenceType::GeoPDF, BString(file), reference, width, height, BString(), 0, &params);
}

/// What the warning boxes said while this lives.
class Warnings {
public:
    Warnings() {
        BWarningBox::Replace([this](void*, const BString& title, const BString& text) {
            titles.push_back(title.StdStr());
            texts.push_back(text.StdStr());
        });
    }
    ~Warnings() { BWarningBox::Replace({}); }
    Warnings(const Warnings&) = delete;
    Warnings& operator=(const Warnings&) = delete;
    std::vector<std::string> titles;
    std::vector<std::string> texts;
};

struct RoundTrip {
    const char* name;
    const char* epsg;
    AffineTerms6 terms;
    long width;
    long height;
    double dpi;
    std::vector<std::pair<long, long>> points;  ///< none: the transform alone
};

class WriteGeoPdf : public ::testing::TestWithParam<RoundTrip> {};

// What was saved is read back within half a pixel, which is what control points
// rounded to whole pixels can hold.
TEST_P(WriteGeoPdf, ReadsBackAndGdalAgrees) {
    const RoundTrip& test = GetParam();
    const TempFolder folder;
    const int page_width = static_cast<int>(std::lround(static_cast<double>(test.width) * 72.0 / test.dpi));
    const int page_height = static_cast<int>(std::lround(static_cast<double>(test.height) * 72.0 / test.dpi));
    const std::string file = folder.Write("map.pdf", RichPdf(page_width, page_height));
    BGeoReference reference = ReferenceOf(test.epsg, test.terms);
    if (!test.points.empty())
        reference.SetPointPairVectorAndMathTransform(PointsOf(test.terms, test.points),
                                                     *reference.MathTransform);
    SavePdf(file, reference, test.width, test.height, test.dpi);

    BGeoReference again;
    BMapAnchor::Read(EReferenceType::GeoPDF, BString(file), again, test.width, test.height,
                     EMathTransformType::Affine, 3, nullptr);
    ASSERT_TRUE(again.HasMathTransform());
    ASSERT_TRUE(again.HasCoordSys());
    for (const auto& [column, row] : {std::pair{0L, 0L},
                                      {test.width, 0L},
                                      {test.width, test.height},
                                      {0L, test.height},
                                      {test.width / 2, test.height / 2}}) {
        const auto at = PointsOf(test.terms, {{column, row}})[0].World;
        const BPoint pixel = again.MathTransform->ConvertTargetToSource(at);
        // Four points span a fifth of the raster, so a pixel's rounding grows fivefold at its edge.
        const double tolerance = test.points.empty() ? 2.5 : 0.5;
        EXPECT_NEAR(pixel.x, static_cast<double>(column), tolerance);
        EXPECT_NEAR(pixel.y, static_cast<double>(row), tolerance);
    }

    GDALAllRegister();
    const std::unique_ptr<GDALDataset> peer(GDALDataset::Open(file.c_str(), GDAL_OF_RASTER));
    if (!peer) GTEST_SKIP() << "this GDAL has no PDF driver";
    double gt[6];
    ASSERT_EQ(peer->GetGeoTransform(gt), CE_None);
    const double peer_scale = static_cast<double>(test.width) / peer->GetRasterXSize();
    const double tenth = 0.1 * std::hypot(test.terms.a, test.terms.d);
    EXPECT_NEAR(gt[0], test.terms.c, tenth);
    EXPECT_NEAR(gt[3], test.terms.f, tenth);
    const double far = peer->GetRasterXSize();
    EXPECT_NEAR(gt[0] + gt[1] * far, test.terms.a * far * peer_scale + test.terms.c, tenth);
}

INSTANTIATE_TEST_SUITE_P(
    Systems, WriteGeoPdf,
    ::testing::Values(RoundTrip{"utm_north", "32632", {0.5, 0, 676000, 0, -0.5, 5242000}, 2000, 1000, 72, {}},
                      RoundTrip{"utm_south_points",
                                "32755",
                                {30, 0, 500000, 0, -30, 6000000},
                                300,
                                200,
                                72,
                                {{0, 0}, {300, 0}, {300, 200}, {0, 200}, {150, 100}}},
                      RoundTrip{"three_points_and_a_transform",
                                "32632",
                                {2, 0, 676000, 0, -2, 5242000},
                                600,
                                400,
                                150,
                                {{0, 0}, {600, 0}, {0, 400}}},
                      RoundTrip{"state_plane_feet",
                                "2277",
                                {2, 0, 3100000, 0, -2, 10100000},
                                3000,
                                1500,
                                300,
                                {{0, 0}, {3000, 0}, {3000, 1500}, {0, 1500}}},
                      RoundTrip{"lambert", "2154", {5, 0, 650000, 0, -5, 6860000}, 1200, 900, 96, {}},
                      RoundTrip{"polar", "3031", {100, 0, -300000, 0, -100, 1300000}, 6000, 6000, 600, {}},
                      RoundTrip{"web_mercator", "3857", {10, 0, 1260000, 0, -10, 5990000}, 1000, 800, 72, {}},
                      RoundTrip{"geographic", "4326", {0.001, 0, 11, 0, -0.001, 47.5}, 1000, 500, 72, {}},
                      RoundTrip{"tiny",
                                "32632",
                                {10, 0, 676000, 0, -10, 5242000},
                                10,
                                10,
                                72,
                                {{0, 0}, {10, 0}, {10, 10}, {0, 10}}}),
    [](const auto& row) { return row.param.name; });

TEST(WriteGeoPdfFile, TheWholeShapeOfTheMeasure) {
    const TempFolder folder;
    const std::string file = folder.Write("map.pdf", RichPdf(720, 360));
    const AffineTerms6 terms{0.5, 0, 676000, 0, -0.5, 5242000};
    BGeoReference reference = ReferenceOf("32632", terms);
    reference.SetPointPairVector(PointsOf(terms, {{0, 0}, {3000, 0}, {3000, 1500}, {0, 1500}}),
                                 EMathTransformType::None);
    SavePdf(file, reference, 3000, 1500, 300.0);
    const std::string pdf = TempFolder::Slurp(file);
    const auto holds = [&](const std::string& text) { return pdf.find(text) != std::string::npos; };
    EXPECT_TRUE(holds("/Subtype/GEO") || holds("/Subtype /GEO"));
    EXPECT_TRUE(holds("RastrelSpatialPDF"));
    EXPECT_TRUE(holds("(3.2)"));
    EXPECT_TRUE(holds("/EPSG 32632"));
    EXPECT_TRUE(holds("720.0 360.0"));
    EXPECT_TRUE(holds("AllLayers"));
    EXPECT_TRUE(holds("PROJCS[\"WGS_1984_UTM_Zone_32N\""));
    EXPECT_TRUE(holds("1 0 0 rg 10 10 50 30 re f")) << "the page's own content";
    EXPECT_TRUE(holds("A bookmark"));
    EXPECT_TRUE(holds("A note"));
    EXPECT_TRUE(holds("xmpmeta"));
    EXPECT_FALSE(holds("/Neatline"));
    // A degree of latitude with fifteen digits, where six decimals would cut it.
    const std::size_t gpts = pdf.find("GPTS");
    ASSERT_NE(gpts, std::string::npos);
    const std::size_t point = pdf.find('.', gpts);
    EXPECT_GE(pdf.find_first_not_of("0123456789", point + 1) - point, 11U);
}

TEST(WriteGeoPdfFile, ALargePageIsCutToTheLimit) {
    const TempFolder folder;
    const std::string file = folder.Write("map.pdf", RichPdf(30000, 15000));
    const AffineTerms6 terms{1, 0, 676000, 0, -1, 5242000};
    BGeoReference reference = ReferenceOf("32632", terms);
    SavePdf(file, reference, 30000, 15000);
    const std::string pdf = TempFolder::Slurp(file);
    EXPECT_NE(pdf.find("14400.0 7200.0"), std::string::npos);
}

/// How the user's PDF fared.
enum class Stands { Original, Georeferenced, UnderTemporaryName, Gone };

struct FailureCase {
    const char* name;
    std::string content;
    bool with_system;
    int enabled_points;  ///< of four; -1: no points
    bool with_transform;
    const char* type;
    const char* message;
    Stands stands;
};

TEST(WriteGeoPdfFile, TheUsersPdfIsNeverLost) {
    const std::string good = RichPdf(200, 100);
    const FailureCase cases[] = {
        {"no_system", good, false, -1, true, "BException", "Coordinate system is required", Stands::Original},
        {"no_transform", good, true, -1, false, "BException", "Could not generate Tie points",
         Stands::Original},
        {"two_points_disabled", good, true, 2, false, "", "", Stands::UnderTemporaryName},
        {"no_pdf", "this is no PDF", true, 4, false, "BException", "", Stands::UnderTemporaryName},
        {"empty", "", true, 4, false, "BException", "", Stands::UnderTemporaryName},
    };
    const AffineTerms6 terms{0.5, 0, 676000, 0, -0.5, 5242000};
    for (const FailureCase& test : cases) {
        SCOPED_TRACE(test.name);
        const TempFolder folder;
        const LogCapture log;
        const Warnings warnings;
        const std::string file = folder.Write("map.pdf", test.content);
        BGeoReference reference;
        if (test.with_transform) reference = ReferenceOf("32632", terms);
        reference.SetCoordSys(test.with_system ? BSharedPtr<BCoordSys>(BCoordSys::FromEPSGCode("32632"))
                                               : BSharedPtr<BCoordSys>());
        if (test.enabled_points >= 0) {
            auto pairs = PointsOf(terms, {{0, 0}, {200, 0}, {200, 100}, {0, 100}});
            for (std::size_t i = static_cast<std::size_t>(test.enabled_points); i < pairs.size(); ++i)
                pairs[i].Enabled = false;
            reference.SetPointPairVector(pairs, EMathTransformType::None);
        }
        const Thrown thrown = WhatIsThrown([&] { SavePdf(file, reference, 200, 100); });
        EXPECT_EQ(thrown.type, test.type);
        if (test.stands == Stands::Original) {
            EXPECT_EQ(TempFolder::Slurp(file), test.content);
            continue;
        }
        EXPECT_FALSE(std::filesystem::exists(file));
        // The log says under which name it stands.
        std::string name;
        for (const std::string& line : log.lines) {
            const std::size_t at = line.find("stands under the name <");
            if (at != std::string::npos) name = line.substr(at + 23, line.rfind('>') - at - 23);
        }
        ASSERT_NE(name, "");
        EXPECT_EQ(TempFolder::Slurp(name), test.content);
        std::filesystem::remove(name);
    }
}

TEST(WriteGeoPdfFile, ATargetThatDoesNotExistIsAWarning) {
    const TempFolder folder;
    Warnings warnings;
    const AffineTerms6 terms{0.5, 0, 676000, 0, -0.5, 5242000};
    EXPECT_NO_THROW(SavePdf(folder / "none.pdf", ReferenceOf("32632", terms), 200, 100));
    ASSERT_EQ(warnings.texts.size(), 1U);
    EXPECT_EQ(warnings.titles[0], "Northfold Systems");
    EXPECT_EQ(warnings.texts[0], "Could not open temporary file, the PDF file was not exported");
}

TEST(WriteGeoPdfFile, ARotatedTransformComesBack) {
    const TempFolder folder;
    const std::string file = folder.Write("map.pdf", RichPdf(600, 400));
    const AffineTerms6 terms{3, 4, 676000, 4, -3, 5242000};
    SavePdf(file, ReferenceOf("32632", terms), 600, 400);
    BGeoReference again;
    BMapAnchor::Read(EReferenceType::GeoPDF, BString(file), again, 600, 400, EMathTransformType::Affine, 3,
                     nullptr);
    double t[6];
    again.MathTransform->GetAffineParameters(t[0], t[1], t[2], t[3], t[4], t[5]);
    const double expected[6] = {3, 4, 676000, 4, -3, 5242000};
    for (int i : {0, 1, 3, 4})
        EXPECT_NEAR(t[i], expected[i], 0.02) << i;
}

}  // namespace
}  // namespace MapAnchor

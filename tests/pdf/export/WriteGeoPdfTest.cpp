// Georeferencing a PDF in place, through the front door, and what becomes of the
// user's file where that fails.

#include "LogCapture.h"
#include "PlainPdf.h"
#include "References.h"
#include "TempFolder.h"
#include "Thrown.h"

#include <MapAnchor/BMapAnchor.h>
#include <MapAnchor/BWarningBox.h>

#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace MapAnchor {
namespace {

using namespace Tellurion;
namespace fs = std::filesystem;

using AffineTerms6 = std::array<double, 6>;

/// Control points of the affine at these pixels.
std::vector<BPointPair> PointsOf(const AffineTerms6& t, const std::vector<std::pair<long, long>>& pixels) {
    std::vector<BPointPair> pairs;
    for (const auto& [column, row] : pixels) {
        const auto u = static_cast<double>(column), v = static_cast<double>(row);
        pairs.emplace_back(column, row, t[0] * u + t[1] * v + t[2], t[3] * u + t[4] * v + t[5], 0.0, "",
                           true);
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
    std::size_t points;  ///< none: the transform alone

    /// The first of corners and middle.
    std::vector<std::pair<long, long>> Pixels(std::size_t count) const {
        const std::pair<long, long> all[] = {
            {0, 0}, {width, 0}, {0, height}, {width, height}, {width / 2, height / 2}};
        return {all, all + count};
    }
};

const RoundTrip kRoundTrips[] = {
    {"utm_north", "32632", {0.5, 0, 676000, 0, -0.5, 5242000}, 2000, 1000, 72, 0},
    {"utm_south_points", "32755", {30, 0, 500000, 0, -30, 6000000}, 300, 200, 72, 5},
    {"three_points_and_a_transform", "32632", {2, 0, 676000, 0, -2, 5242000}, 600, 400, 150, 3},
    {"state_plane_feet", "2277", {2, 0, 3100000, 0, -2, 10100000}, 3000, 1500, 300, 4},
    {"lambert", "2154", {5, 0, 650000, 0, -5, 6860000}, 1200, 900, 96, 0},
    {"polar", "3031", {100, 0, -300000, 0, -100, 1300000}, 6000, 6000, 600, 0},
    {"web_mercator", "3857", {10, 0, 1260000, 0, -10, 5990000}, 1000, 800, 72, 0},
    {"geographic", "4326", {0.001, 0, 11, 0, -0.001, 47.5}, 1000, 500, 72, 0},
    {"rotated", "32632", {3, 4, 676000, 4, -3, 5242000}, 600, 400, 72, 0},
    {"rotated_points", "32632", {3, 4, 676000, 4, -3, 5242000}, 600, 400, 72, 4},
    {"lambert_points", "2154", {5, 0, 650000, 0, -5, 6860000}, 1200, 900, 96, 4},
    {"polar_points", "3031", {100, 0, -300000, 0, -100, 1300000}, 6000, 6000, 600, 4},
    {"geographic_points", "4326", {0.001, 0, 11, 0, -0.001, 47.5}, 1000, 500, 72, 4},
    {"tiny", "32632", {10, 0, 676000, 0, -10, 5242000}, 10, 10, 72, 4},
    {"tiny_transform_alone", "32632", {10, 0, 676000, 0, -10, 5242000}, 10, 10, 72, 0},
    {"huge", "32632", {0.5, 0, 676000, 0, -0.5, 5242000}, 30000, 15000, 600, 4},
    {"huge_transform_alone", "32632", {0.5, 0, 676000, 0, -0.5, 5242000}, 30000, 15000, 600, 0},
};

void PrintTo(const RoundTrip& test, std::ostream* out) {
    *out << test.epsg << ", " << test.width << " by " << test.height;
}

class WriteGeoPdf : public ::testing::TestWithParam<RoundTrip> {};

// What was saved is read back within half a pixel, which is what control points
// rounded to whole pixels can hold.
TEST_P(WriteGeoPdf, ReadsBackAndGdalAgrees) {
    const RoundTrip& test = GetParam();
    const TempFolder folder;
    const int page_width = static_cast<int>(std::lround(static_cast<double>(test.width) * 72.0 / test.dpi));
    const int page_height = static_cast<int>(std::lround(static_cast<double>(test.height) * 72.0 / test.dpi));
    const std::string file = folder.Write("map.pdf", RichPdf(page_width, page_height));
    BGeoReference reference = References::Of(test.epsg, test.terms);
    if (test.points > 0)
        reference.SetPointPairVectorAndMathTransform(PointsOf(test.terms, test.Pixels(test.points)),
                                                     *reference.MathTransform);
    SavePdf(file, reference, test.width, test.height, test.dpi);

    BGeoReference again;
    BMapAnchor::Read(EReferenceType::GeoPDF, BString(file), again, test.width, test.height,
                     EMathTransformType::Affine, 3, nullptr);
    ASSERT_TRUE(again.HasMathTransform());
    ASSERT_TRUE(again.HasCoordSys());
    // Four points span a fifth of the raster, so a pixel's rounding grows fivefold at its edge.
    const double tolerance = test.points == 0 ? 2.5 : 0.5;
    for (const BPointPair& pair : PointsOf(test.terms, test.Pixels(5))) {
        const BPoint pixel = again.MathTransform->ConvertTargetToSource(pair.World);
        EXPECT_NEAR(pixel.x, pair.Column, tolerance);
        EXPECT_NEAR(pixel.y, pair.Row, tolerance);
    }

    GDALAllRegister();
    const std::unique_ptr<GDALDataset> peer(GDALDataset::Open(file.c_str(), GDAL_OF_RASTER));
    if (!peer) GTEST_SKIP() << "this GDAL has no PDF driver";
    double gt[6];
    ASSERT_EQ(peer->GetGeoTransform(gt), CE_None);
    const double columns = static_cast<double>(peer->GetRasterXSize()) / static_cast<double>(test.width);
    const double rows = static_cast<double>(peer->GetRasterYSize()) / static_cast<double>(test.height);
    const double tenth = 0.1 * std::hypot(test.terms[0], test.terms[3]);
    for (const BPointPair& corner : PointsOf(test.terms, test.Pixels(4))) {
        const double u = columns * static_cast<double>(corner.Column),
                     v = rows * static_cast<double>(corner.Row);
        EXPECT_NEAR(gt[0] + u * gt[1] + v * gt[2], corner.World.x, tenth);
        EXPECT_NEAR(gt[3] + u * gt[4] + v * gt[5], corner.World.y, tenth);
    }
}

INSTANTIATE_TEST_SUITE_P(Systems, WriteGeoPdf, testing::ValuesIn(kRoundTrips),
                         [](const auto& row) { return row.param.name; });

const AffineTerms6 kTerms = {0.5, 0, 676000, 0, -0.5, 5242000};

TEST(WriteGeoPdfFile, TheWholeShapeOfTheMeasure) {
    const TempFolder folder;
    const std::string file = folder.Write("map.pdf", RichPdf(720, 360));
    BGeoReference reference = References::Of("32632", kTerms);
    reference.SetPointPairVector(PointsOf(kTerms, {{0, 0}, {3000, 0}, {3000, 1500}, {0, 1500}}),
                                 EMathTransformType::None);
    SavePdf(file, reference, 3000, 1500, 300.0);
    const std::string pdf = TempFolder::Slurp(file);
    const auto holds = [&](const std::string& text) { return pdf.find(text) != std::string::npos; };
    EXPECT_TRUE(holds("/Subtype/GEO") || holds("/Subtype /GEO"));
    for (const char* part : {"RastrelSpatialPDF", "(3.2)", "/EPSG 32632", "720.0 360.0", "AllLayers",
                             "PROJCS[\"WGS_1984_UTM_Zone_32N\""})
        EXPECT_TRUE(holds(part)) << part;
    for (const char* own : {"1 0 0 rg 10 10 50 30 re f", "A bookmark", "A note", "xmpmeta"})
        EXPECT_TRUE(holds(own)) << own;
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
    SavePdf(file, References::Of("32632", {1, 0, 676000, 0, -1, 5242000}), 30000, 15000);
    const std::string pdf = TempFolder::Slurp(file);
    EXPECT_NE(pdf.find("14400.0 7200.0"), std::string::npos);
}

constexpr fs::perms kRights = fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read;

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
    for (const FailureCase& test : cases) {
        SCOPED_TRACE(test.name);
        const TempFolder folder;
        const LogCapture log;
        const Warnings warnings;
        const std::string file = folder.Write("map.pdf", test.content);
        if (test.enabled_points != 4) fs::create_hard_link(file, folder / "other");
        fs::permissions(file, kRights);
        BGeoReference reference;
        if (test.with_transform) reference = References::Of("32632", kTerms);
        reference.SetCoordSys(test.with_system ? BSharedPtr<BCoordSys>(BCoordSys::FromEPSGCode("32632"))
                                               : BSharedPtr<BCoordSys>());
        if (test.enabled_points >= 0) {
            auto pairs = PointsOf(kTerms, {{0, 0}, {200, 0}, {200, 100}, {0, 100}});
            for (std::size_t i = static_cast<std::size_t>(test.enabled_points); i < pairs.size(); ++i)
                pairs[i].Enabled = false;
            reference.SetPointPairVector(pairs, EMathTransformType::None);
        }
        const Thrown thrown = WhatIsThrown([&] { SavePdf(file, reference, 200, 100); });
        EXPECT_EQ(thrown.type, test.type);
        if (test.stands == Stands::Original) {
            EXPECT_EQ(TempFolder::Slurp(file), test.content);
            EXPECT_TRUE(fs::equivalent(file, folder / "other"));
            EXPECT_EQ(fs::status(file).permissions(), kRights);
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
        EXPECT_EQ(fs::status(name).permissions(), fs::perms::owner_read | fs::perms::owner_write);
        fs::remove(name);
    }
}

// What the link leads to is georeferenced, whatever its name, and stays what it is.
TEST(WriteGeoPdfFile, ALinkStaysALink) {
    for (const char* name : {"real.pdf", "REAL.PDF", "ab12"}) {
        SCOPED_TRACE(name);
        const TempFolder folder;
        const LogCapture log;
        const std::string link = folder / "map.pdf";
        const std::string real = folder.Write(name, RichPdf(200, 100));
        fs::create_hard_link(real, folder / "other");
        fs::permissions(real, kRights);
        fs::create_symlink(name, link);
        SavePdf(link, References::Of("32632", kTerms), 200, 100);
        EXPECT_TRUE(std::filesystem::is_symlink(link));
        EXPECT_NE(TempFolder::Slurp(real).find("/Measure"), std::string::npos);
        EXPECT_TRUE(fs::equivalent(real, folder / "other"));
        EXPECT_EQ(fs::status(real).permissions(), kRights);
        const fs::directory_iterator entries(folder / "");
        EXPECT_EQ(std::distance(begin(entries), end(entries)), 3);
        EXPECT_TRUE(log.lines.empty());
    }
}

TEST(WriteGeoPdfFile, AFolderIsNotMoved) {
    const TempFolder folder;
    const std::string target = folder / "map.pdf";
    std::filesystem::create_directory(target);
    EXPECT_EQ(WhatIsThrown([&] { SavePdf(target, References::Of("32632", kTerms), 200, 100); }).type,
              "BFileAccessException");
    EXPECT_TRUE(std::filesystem::is_directory(target));
}

TEST(WriteGeoPdfFile, ATargetThatDoesNotExistIsAWarning) {
    const TempFolder folder;
    Warnings warnings;
    EXPECT_NO_THROW(SavePdf(folder / "none.pdf", References::Of("32632", kTerms), 200, 100));
    ASSERT_EQ(warnings.texts.size(), 1U);
    EXPECT_EQ(warnings.titles[0], "Northfold Systems");
    EXPECT_EQ(warnings.texts[0], "Could not open temporary file, the PDF file was not exported");
}

}  // namespace
}  // namespace MapAnchor

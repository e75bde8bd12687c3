// Georeferencing a PDF in place by type, and what becomes of the user's file where that fails.

#include "LogCapture.h"
#include "PlainPdf.h"
#include "References.h"
#include "TempFolder.h"
#include "Thrown.h"

#include "objects/CPDFDocument.h"
#include "objects/CPDFPage.h"

#include <MapAnchor/BMapAnchor.h>
#include <MapAnchor/BWarningBox.h>

#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>

namespace MapAnchor {
namespace {

using namespace Tellurion;
namespace fs = std::filesystem;
using VellumLib::CPDFArray;
using VellumLib::CPDFDictionary;

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

void SavePdf(const std::string& file, const BGeoReference& reference, long width = 200, long height = 100,
             double dpi = 72.0) {
    BParamList params;
    params.SetDouble(BMapAnchor::kValPDFResolution, dpi);
    BMapAnchor::Save(EReferenceType::GeoPDF, BString(file), reference, width, height, BString(), 0, &params);
}

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
    int PageEdge(long pixels) const {
        return static_cast<int>(std::lround(static_cast<double>(pixels) * 72.0 / dpi));
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
    {"tiny_points", "32632", {10, 0, 676000, 0, -10, 5242000}, 10, 10, 72, 4},
    {"tiny", "32632", {10, 0, 676000, 0, -10, 5242000}, 10, 10, 72, 0},
    {"huge_points", "32632", {0.5, 0, 676000, 0, -0.5, 5242000}, 30000, 15000, 600, 4},
    {"huge", "32632", {0.5, 0, 676000, 0, -0.5, 5242000}, 30000, 15000, 600, 0},
};

/// Pairs of numbers between two limits each.
void ExpectPairs(const CPDFArray& numbers, int count, double low_1, double high_1, double low_2,
                 double high_2) {
    ASSERT_EQ(numbers.GetSize(), count);
    for (int i = 0; i < numbers.GetSize(); ++i) {
        EXPECT_GE(numbers[i].GetReal(), i % 2 ? low_2 : low_1);
        EXPECT_LE(numbers[i].GetReal(), i % 2 ? high_2 : high_1);
    }
}

/// The measure of a PDF with four points, as PDF 2.0 wants it.
void ExpectMeasure(const std::string& file, const std::string& epsg, double width, double height) {
    VellumLib::CPDFDocument document(QString::fromStdString(file));
    const CPDFArray viewports = document.GetPage(0).GetDictionary().GetArray("VP");
    ASSERT_EQ(viewports.GetSize(), 1);
    const CPDFDictionary viewport = viewports[0].GetDictionary();
    EXPECT_EQ(viewport.GetName("Type").ToQString(), "Viewport");
    ExpectPairs(viewport.GetArray("BBox"), 4, 0, width, 0, height);
    const CPDFDictionary measure = document.GetDictionaryFromReference(viewport.GetReference("Measure"));
    EXPECT_EQ(measure.GetName("Type").ToQString(), "Measure");
    EXPECT_EQ(measure.GetName("Subtype").ToQString(), "GEO");
    ExpectPairs(measure.GetArray("Bounds"), 8, 0, 1, 0, 1);
    ExpectPairs(measure.GetArray("LPTS"), 8, 0, 1, 0, 1);
    ExpectPairs(measure.GetArray("GPTS"), 8, -90, 90, -180, 180);
    const CPDFDictionary system = document.GetDictionaryFromReference(measure.GetReference("GCS"));
    EXPECT_EQ(system.GetName("Type").ToQString(), epsg == "4326" ? "GEOGCS" : "PROJCS");
    EXPECT_FALSE(system.GetString("WKT").ToQString().isEmpty());
    EXPECT_EQ(system.GetNumber("EPSG"), std::stoi(epsg));
    const CPDFArray units = measure.GetArray("PDU");
    ASSERT_EQ(units.GetSize(), 3);
    EXPECT_EQ(units[0].GetName().ToQString(), epsg == "2277" ? "USFT" : "M");
}

class WriteGeoPdf : public ::testing::TestWithParam<RoundTrip> {};

// What was saved is read back within half a pixel, which is what control points
// rounded to whole pixels can hold.
TEST_P(WriteGeoPdf, ReadsBackAndGdalAgrees) {
    const RoundTrip& test = GetParam();
    const TempFolder folder;
    const int page_width = test.PageEdge(test.width), page_height = test.PageEdge(test.height);
    const std::string file = folder.Write("map.pdf", RichPdf(page_width, page_height));
    BGeoReference reference = References::Of(test.epsg, test.terms);
    if (test.points > 0)
        reference.SetPointPairVectorAndMathTransform(PointsOf(test.terms, test.Pixels(test.points)),
                                                     *reference.MathTransform);
    SavePdf(file, reference, test.width, test.height, test.dpi);

    BGeoReference again;
    BMapAnchor::Read(EReferenceType::GeoPDF, BString(file), again, test.width, test.height,
                     EMathTransformType::Affine, 3, nullptr);
    // Four points span a fifth of the raster, so a pixel's rounding grows fivefold at its edge.
    const double tolerance = test.points == 0 ? 2.5 : 0.5;
    for (const BPointPair& pair : PointsOf(test.terms, test.Pixels(5))) {
        const BPoint pixel = again.MathTransform->ConvertTargetToSource(pair.World);
        EXPECT_NEAR(pixel.x, pair.Column, tolerance);
        EXPECT_NEAR(pixel.y, pair.Row, tolerance);
    }
    if (test.points <= 4) ExpectMeasure(file, test.epsg, page_width, page_height);

    GDALAllRegister();
    const std::unique_ptr<GDALDataset> peer(GDALDataset::Open(file.c_str(), GDAL_OF_RASTER));
    if (!peer) GTEST_SKIP() << "this GDAL has no PDF driver";
    double gt[6];
    ASSERT_EQ(peer->GetGeoTransform(gt), CE_None);
    const double columns = static_cast<double>(peer->GetRasterXSize()) / static_cast<double>(test.width);
    const double rows = static_cast<double>(peer->GetRasterYSize()) / static_cast<double>(test.height);
    const double tenth = 0.1 * std::hypot(test.terms[0], test.terms[3]);
    for (const BPointPair& corner : PointsOf(test.terms, test.Pixels(4))) {
        const double u = columns * corner.Column, v = rows * corner.Row;
        EXPECT_NEAR(gt[0] + u * gt[1] + v * gt[2], corner.World.x, tenth);
        EXPECT_NEAR(gt[3] + u * gt[4] + v * gt[5], corner.World.y, tenth);
    }
}

INSTANTIATE_TEST_SUITE_P(Systems, WriteGeoPdf, testing::ValuesIn(kRoundTrips),
                         [](const auto& row) { return row.param.name; });

const AffineTerms6 kTerms = {0.5, 0, 676000, 0, -0.5, 5242000};

TEST(WriteGeoPdfFile, WritesTheTextsThatReadersExpect) {
    const TempFolder folder;
    const std::string file = folder.Write("map.pdf", RichPdf(720, 360));
    BGeoReference reference;  // four points and no transform
    References::SetSystem(reference, "32632");
    reference.SetPointPairVector(PointsOf(kTerms, {{0, 0}, {3000, 0}, {3000, 1500}, {0, 1500}}),
                                 EMathTransformType::None);
    SavePdf(file, reference, 3000, 1500, 300.0);
    const std::string pdf = TempFolder::Slurp(file);
    for (const char* part :
         {"RastrelSpatialPDF", "(3.2)", "/EPSG 32632", "720.0 360.0", "AllLayers",
          "PROJCS[\"WGS_1984_UTM_Zone_32N\"", "1 0 0 rg 10 10 50 30 re f", "A bookmark", "A note", "xmpmeta"})
        EXPECT_NE(pdf.find(part), std::string::npos) << part;
    EXPECT_EQ(pdf.find("/Neatline"), std::string::npos);
    // A degree of latitude with fifteen digits, where six decimals would cut it.
    const std::size_t point = pdf.find('.', pdf.find("GPTS"));
    EXPECT_GE(pdf.find_first_not_of("0123456789", point + 1) - point, 11U);

    // Longitudes stay within half a turn across the antimeridian.
    const std::string across = folder.Write("across.pdf", RichPdf(200, 100));
    SavePdf(across, References::Of("4326", {0.1, 0, 175, 0, -0.1, 47}));
    ExpectMeasure(across, "4326", 200, 100);

    const std::string large = folder.Write("large.pdf", RichPdf(30000, 15000));
    SavePdf(large, References::Of("32632", kTerms), 30000, 15000);
    EXPECT_NE(TempFolder::Slurp(large).find("14400.0 7200.0"), std::string::npos);
}

/// Where the log says that the PDF is; empty where it does not.
std::string NameInLog(const LogCapture& log) {
    for (const std::string& line : log.lines)
        if (const std::size_t at = line.find("stands under the name <"); at != std::string::npos)
            return line.substr(at + 23, line.rfind('>') - at - 23);
    return {};
}

constexpr fs::perms kRights = fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read;

TEST(WriteGeoPdfFile, TheUsersPdfIsNeverLost) {
    const std::string good = RichPdf(200, 100);
    BGeoReference no_system = References::Of("32632", kTerms), no_transform, two_points = no_system;
    no_system.SetCoordSys(BSharedPtr<BCoordSys>());
    References::SetSystem(no_transform, "32632");
    auto pairs = PointsOf(kTerms, {{0, 0}, {200, 0}, {200, 100}, {0, 100}});
    pairs[2].Enabled = pairs[3].Enabled = false;
    two_points.SetPointPairVector(pairs, EMathTransformType::None);
    const struct {
        std::string content;
        BGeoReference reference;
        const char* type;
        bool in_place;  ///< the PDF is under its own name again
    } cases[] = {{good, no_system, "BException", true},
                 {good, no_transform, "BException", true},
                 {good, two_points, "", false},
                 {"this is no PDF", References::Of("32632", kTerms), "BException", false},
                 {"", References::Of("32632", kTerms), "BException", false}};
    for (const auto& test : cases) {
        const TempFolder folder;
        const LogCapture log;
        const std::string file = folder.Write("map.pdf", test.content);
        if (test.in_place) fs::create_hard_link(file, folder / "other");
        fs::permissions(file, kRights);
        EXPECT_EQ(WhatIsThrown([&] { SavePdf(file, test.reference); }).type, test.type);
        const std::string name = test.in_place ? file : NameInLog(log);
        EXPECT_EQ(std::filesystem::exists(file), test.in_place);
        ASSERT_TRUE(std::filesystem::exists(name)) << name;
        EXPECT_EQ(TempFolder::Slurp(name), test.content);
        EXPECT_TRUE(!test.in_place || fs::equivalent(file, folder / "other"));
        // Elsewhere nobody but the owner may read it.
        const fs::perms owner = kRights & fs::perms::owner_all;
        EXPECT_EQ(fs::status(name).permissions(), test.in_place ? kRights : owner);
        std::filesystem::remove(name);
    }
}

// The link's target is georeferenced, whatever its name.
TEST(WriteGeoPdfFile, LinksFoldersAndMissingTargets) {
    const BGeoReference reference = References::Of("32632", kTerms);
    for (const char* name : {"real.pdf", "REAL.PDF", "ab12"}) {
        SCOPED_TRACE(name);
        const TempFolder folder;
        const LogCapture log;
        const std::string real = folder.Write(name, RichPdf(200, 100));
        fs::create_hard_link(real, folder / "other");
        fs::permissions(real, kRights);
        std::filesystem::create_symlink(name, folder / "map.pdf");
        SavePdf(folder / "map.pdf", reference);
        EXPECT_TRUE(std::filesystem::is_symlink(folder / "map.pdf"));
        EXPECT_NE(TempFolder::Slurp(real).find("/Measure"), std::string::npos);
        EXPECT_TRUE(fs::equivalent(real, folder / "other"));
        EXPECT_EQ(fs::status(real).permissions(), kRights);
        const std::filesystem::directory_iterator entries(folder / "");
        EXPECT_EQ(std::distance(begin(entries), end(entries)), 3);
        EXPECT_TRUE(log.lines.empty());
    }
    const TempFolder folder;
    std::filesystem::create_directory(folder / "folder.pdf");
    EXPECT_EQ(WhatIsThrown([&] { SavePdf(folder / "folder.pdf", reference); }).type, "BFileAccessException");
    EXPECT_TRUE(std::filesystem::is_directory(folder / "folder.pdf"));

    std::vector<std::string> warnings;
    BWarningBox::Replace([&](void*, const BString& title, const BString& text) {
        warnings.push_back(title.StdStr() + ": " + text.StdStr());
    });
    SavePdf(folder / "none.pdf", reference);
    BWarningBox::Replace({});
    EXPECT_EQ(warnings, std::vector<std::string>{"Northfold Systems: Could not open temporary file, the PDF "
                                                 "file was not exported"});
}

/// True when the program is there and is content.
bool Runs(const std::string& command) {
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

/// The pixels of both pages.
std::string Pictures(const TempFolder& folder, const std::string& pdf) {
    EXPECT_TRUE(Runs("pdftoppm -r 72 '" + pdf + "' '" + folder / "page" + "'"));
    const std::string pixels =
        TempFolder::Slurp(folder / "page-1.ppm") + TempFolder::Slurp(folder / "page-2.ppm");
    EXPECT_GT(pixels.size(), 3U * (200 * 100 + 100 * 100));
    std::filesystem::remove(folder / "page-1.ppm");
    return pixels;
}

// Looks as before, too, and has its own content.
TEST(WriteGeoPdfFile, EveryFormOfSourceStaysSoundAndWhole) {
    if (!Runs("qpdf --version") || !Runs("pdftoppm -v")) GTEST_SKIP() << "needs qpdf and pdftoppm";
    for (const std::string form :
         {"--object-streams=disable", "--object-streams=generate", "--linearize", "--force-version=2.0"}) {
        SCOPED_TRACE(form);
        const TempFolder folder;
        const std::string plain = folder.Write("plain.pdf", RichPdf(200, 100));
        const std::string file = folder / "map.pdf";
        const std::string open = folder / "open.pdf";
        ASSERT_TRUE(Runs("qpdf " + form + " '" + plain + "' '" + file + "'"));
        const std::string before = Pictures(folder, file);
        SavePdf(file, References::Of("32632", kTerms));
        EXPECT_TRUE(Runs("qpdf --check '" + file + "'"));
        EXPECT_TRUE(Pictures(folder, file) == before);
        ASSERT_TRUE(Runs("qpdf --qdf --object-streams=disable '" + file + "' '" + open + "'"));
        const std::string text = TempFolder::Slurp(open);
        for (const char* part : {"(A bookmark)", "(A note)", "<x:xmpmeta", "1 0 0 rg 10 10 50 30 re f",
                                 "0 0 1 rg 0 0 50 50 re f", "/Count 2", "/RastrelSpatialPDF"})
            EXPECT_NE(text.find(part), std::string::npos) << part;
    }
}

}  // namespace
}  // namespace MapAnchor

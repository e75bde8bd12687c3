// Georeferencing a PDF beyond the rules: what is in the file stays, whichever way it is written.

#include "../objects/PdfBuilder.h"
#include "LogCapture.h"
#include "PagePdf.h"
#include "References.h"
#include "SmallDisk.h"
#include "TempFolder.h"
#include "Thrown.h"

#include <MapAnchor/BGeoPDFPages.h>
#include <MapAnchor/BGeoPDFTraits.h>
#include <MapAnchor/BMapAnchor.h>
#include <Tellurion/BException.h>

#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <cmath>
#include <cstdlib>

namespace MapAnchor {
namespace {

using namespace Tellurion;

enum Update { kNever, kAlways, kWhereNeeded };

struct Wish {
    int update = kAlways;
    int page = 1;
    bool wkt2 = false;
    long width = 200;
    long height = 100;
    const char* frame = nullptr;
    const char* name = nullptr;
    bool adds = false;
};

/// The failure, empty for none.
std::string Save(const std::string& file, const BGeoReference& reference, const Wish& wish = {}) {
    BParamList params;
    params.SetInteger(BMapAnchor::kValPDFWide, 1);
    params.SetInteger(BMapAnchor::kValPDFIncremental, wish.update);
    params.SetInteger(BMapAnchor::kValPDFPage, wish.page);
    params.SetInteger(BMapAnchor::kValPDFWkt2, wish.wkt2 ? 1 : 0);
    if (wish.frame) params.SetString(BMapAnchor::kValPDFFrame, wish.frame);
    if (wish.name) params.SetString(BMapAnchor::kValPDFMapName, wish.name);
    params.SetInteger(BMapAnchor::kValPDFAdd, wish.adds ? 1 : 0);
    try {
        BMapAnchor::Save(EReferenceType::GeoPDF, BString(file), reference, wish.width, wish.height, BString(),
                         0, &params);
    } catch (const BException& error) {
        return std::string(error.GetTypeName()) + ": " + error.GetDetailedMessage().StdStr();
    }
    return "";
}

BGeoReference ReadBack(const std::string& file, int page = 1, long width = 200, long height = 100,
                       const char* map = "") {
    BParamList params;
    params.SetInteger(BMapAnchor::kValPDFWide, 1);
    params.SetInteger(BMapAnchor::kValPDFPage, page);
    params.SetString(BMapAnchor::kValPDFMap, map);
    BGeoReference reference;
    BMapAnchor::Read(EReferenceType::GeoPDF, BString(file), reference, width, height,
                     EMathTransformType::Affine, 0, &params);
    return reference;
}

void ExpectPlace(const BGeoReference& reference, double x, double y, double tolerance = 1e-4) {
    ASSERT_TRUE(reference.HasMathTransform());
    const BPoint corner = reference.MathTransform->ConvertSourceToTarget({0, 0, 0});
    EXPECT_NEAR(corner.x, x, tolerance);
    EXPECT_NEAR(corner.y, y, tolerance);
}

bool Runs(const std::string& command) {
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

/// A page of 200 by 100 points whose older map is one of the other dialect.
constexpr const char* kPage =
    "/MediaBox[0 0 200.1234567 100]/Resources<<>>/LGIDict[<</Type/LGIDict/CTM[(1)(0)(0)(1)(5)(6)]>>]/VP 99 0 "
    "R";

std::string WithStreams() {
    PdfBuilder file;
    file.Add("<</Type/Catalog/Pages 3 0 R>>");
    const std::string page = std::string("<</Type/Page/Parent 3 0 R") + kPage + ">>";
    const ObjectStream objects = MakeObjectStream({5, 6}, {page, "null"});
    file.AddStream(objects.keys + "/Filter/FlateDecode", Deflated(objects.content));
    file.Add("<</Type/Pages/Count 1/Kids[5 0 R]>>");
    return file.FinishWithStream({2, 2}, "/ID[(first)(second)]");
}

TEST(WideSave, AnUpdateOnlyAppends) {
    const TempFolder folder;
    const std::string table = PagePdf(kPage).Text();
    const struct {
        const char* name;
        std::string pdf;
        bool stream;
    } files[] = {
        {"a table", table, false},
        {"no line end behind the marker", table.substr(0, table.size() - 1), false},
        {"object streams", WithStreams(), true},
        {"a header of version 2.0", "%PDF-2.0" + table.substr(8), false},
    };
    const BGeoReference reference = References::WithCorners(600000, 5200000);
    for (const auto& [name, pdf, stream] : files) {
        SCOPED_TRACE(name);
        const std::string file = folder.Write("map.pdf", pdf);
        ::chmod(file.c_str(), 0640);
        struct stat before {};
        ::stat(file.c_str(), &before);
        std::string last = pdf;
        for (int times = 0; times < 2; ++times) {
            ASSERT_EQ(Save(file, reference), "");
            const std::string now = TempFolder::Slurp(file);
            EXPECT_EQ(now.substr(0, last.size()), last);
            EXPECT_LT(now.size(), last.size() + 3000);
            last = now;
        }
        const std::string added = last.substr(pdf.size());
        EXPECT_EQ(added.find("/LGIDict"), std::string::npos);
        EXPECT_NE(added.find("[0 0 200.1234567 100]"), std::string::npos) << "the page's own bytes stay";
        EXPECT_EQ(added.find("/Type /XRef") != std::string::npos, stream);
        EXPECT_EQ(added.find("trailer") == std::string::npos, stream);
        EXPECT_EQ(added.find("/ID [ <6669727374> <") != std::string::npos, stream) << "first";
        struct stat after {};
        ::stat(file.c_str(), &after);
        EXPECT_EQ(after.st_mode, before.st_mode);
        EXPECT_EQ(after.st_ino, before.st_ino);
        ExpectPlace(ReadBack(file), 600000, 5200000);
        EXPECT_EQ(BGeoPDFPages::Describe(BString(file), nullptr).Pages.at(0).Page.Maps.size(), 1U);
        EXPECT_TRUE(!Runs("qpdf --version") || Runs("qpdf --check '" + file + "'"));
    }
}

TEST(WideSave, APageTakesSeveralMaps) {
    const TempFolder folder;
    const BGeoReference first = References::WithCorners(600000, 5200000);
    const BGeoReference second = References::WithCorners(700000, 5300000);
    const Wish inset{.frame = "110.50037 10.00021 190.0004 90.25049", .name = "Inset", .adds = true};
    for (const int update : {kAlways, kNever}) {
        const std::string file =
            folder.Write("map.pdf", PagePdf("/MediaBox[10 20 210 120]/UserUnit 2").Text());
        const auto map = [&file](const char* name) { return ReadBack(file, 1, 400, 200, name); };
        const Wish main{
            .update = update, .width = 400, .height = 200, .frame = "10 10 90 60", .name = "Main"};
        ASSERT_EQ(Save(file, first, main), "");
        Wish last = inset;
        last.width = 400;
        last.height = 200;
        ASSERT_EQ(Save(file, second, last), "");
        const BGeoPDFPages pages = BGeoPDFPages::Describe(BString(file), nullptr);
        const auto& maps = pages.Pages.at(0).Page.Maps;
        ASSERT_EQ(maps.size(), 2U);
        EXPECT_EQ(maps[1].Name, BString("Inset"));
        EXPECT_NEAR(maps[0].Box.Left, 15.0, 1e-9) << "in the units of the page";
        EXPECT_NEAR(maps[1].Box.Right, 105.0002, 1e-9);
        EXPECT_NEAR(maps[1].Box.Top, 65.125245, 1e-9);
        ExpectPlace(map("Main"), 600000, 5200000);
        ExpectPlace(map("last"), 700000, 5300000);
    }
    const std::string other = PagePdf(kPage).Text();
    const std::string refused = folder.Write("other.pdf", other);
    EXPECT_NE(Save(refused, first, inset).find("LGIDict"), std::string::npos);
    EXPECT_NE(Save(refused, first, {.width = 0, .frame = "1 1 5 5"}), "");
    BGeoReference points = first;
    points.MathTransform = {};
    EXPECT_NE(Save(refused, points, {.frame = "1 1 5 5"}).find("affine"), std::string::npos);
    for (const char* frame : {"", "1 2 3", "5 1 1 5", "1 1 5 5 x", "nan 1 2 3"})
        EXPECT_NE(Save(refused, first, {.frame = frame}).find("not four numbers"), std::string::npos)
            << frame;
    EXPECT_EQ(TempFolder::Slurp(refused), other);
}

TEST(WideSave, WhatWritingTheWholeFileBreaksIsSaidBeforeOrSpared) {
    const TempFolder folder;
    const BGeoReference reference = References::WithCorners(600000, 5200000);
    const auto catalog = [](const std::string& keys, const std::vector<std::string>& more) {
        std::vector<std::string> all = {"<</Type/Catalog/Pages 2 0 R " + keys + ">>",
                                        "<</Type/Pages/Kids[3 0 R]/Count 1>>",
                                        "<</Type/Page/Parent 2 0 R/MediaBox[0 0 200 100]/Resources<<>>>>"};
        all.insert(all.end(), more.begin(), more.end());
        return PlainPdf(all);
    };
    const std::string field = "<</FT/Sig/V 6 0 R>>";
    const std::string xmp = "<x pdfaid:part='2' pdfaid:conformance='B'/>";
    const struct {
        const char* id;
        std::string pdf;
        bool spared = true;
    } files[] = {
        {"", catalog("", {}), false},
        {"pdf-signed: ",
         catalog("/AcroForm<</SigFlags 3/Fields[4 0 R]>>", {"<</Kids[5 0 R]>>", field, "<<>>"})},
        {"", catalog("/AcroForm<</SigFlags 1/Fields[4 0 R]>>", {"<</FT/Sig>>"}), false},
        {"", catalog("/StructTreeRoot 4 0 R", {"<</K 5 0 R>>", "<</S/Document>>"})},
        {"pdf-archive: ", catalog("/Metadata 4 0 R", {PdfStreamObject(xmp)})},
        {"pdf-linearized: ", "%PDF-1.6\n% /Linearized" + catalog("", {}).substr(8)},
        {"pdf-locked: ", catalog("/Perms<</DocMDP<</Reference[<</TransformParams<</P 1>>>>]>>>>", {}), false},
    };
    for (const auto& [id, pdf, spared] : files) {
        SCOPED_TRACE(id);
        for (const int update : {kNever, kWhereNeeded}) {
            // The longer head moves the places of all objects.
            const bool moved = pdf.find("% /Linearized") != std::string::npos;
            const std::string file = folder.Write("map.pdf", pdf);
            if (moved &&
                !Runs("qpdf --linearize '" + folder.Write("plain.pdf", catalog("", {})) + "' '" + file + "'"))
                GTEST_SKIP() << "needs qpdf";
            const std::string before = TempFolder::Slurp(file);
            const LogCapture log;
            ASSERT_EQ(Save(file, reference, {.update = update}), "");
            const bool appended = TempFolder::Slurp(file).substr(0, before.size()) == before;
            EXPECT_EQ(appended, spared && update == kWhereNeeded);
            const std::string said = log.lines.empty() ? "" : log.lines.front();
            EXPECT_EQ(said.substr(0, std::string(id).size()), appended ? "" : id) << said;
            EXPECT_EQ(log.lines.size(), *id && !appended ? 1U : 0U) << said;
            ExpectPlace(ReadBack(file), 600000, 5200000);
        }
    }
    EXPECT_FALSE(BGeoPDFTraits::Of(BString(folder / "none.pdf")).Known);
}

TEST(WideSave, AnotherPageAtItsOwnPlaceAndUnit) {
    const TempFolder folder;
    const std::string pdf =
        PlainPdf({"<</Type/Catalog/Pages 2 0 R>>", "<</Type/Pages/Kids[3 0 R 4 0 R]/Count 3>>",
                  "<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]/LGIDict[1]>>",
                  "<</Type/Pages/Parent 2 0 R/Kids[5 0 R 6 0 R]/Count 2/MediaBox[50 -20 150 30]>>",
                  "<</Type/Page/Parent 4 0 R>>", "<</Type/Page/Parent 4 0 R/UserUnit 2/LGIDict[1]>>"});
    const BGeoReference reference = References::WithCorners(600000, 5200000);
    for (const int update : {kAlways, kNever}) {
        const std::string file = folder.Write("map.pdf", pdf);
        ASSERT_EQ(Save(file, reference, {.update = update, .page = 3}), "");
        ExpectPlace(ReadBack(file, 3), 600000, 5200000);
        const BGeoPDFPages pages = BGeoPDFPages::List(BString(file));
        EXPECT_EQ(pages.Pages.size(), 1U) << "no other page got a map";
        const BGeoPDFBox box = pages.Pages.at(0).Page.Maps.at(0).Box;
        EXPECT_EQ(std::vector<double>({box.Left, box.Bottom, box.Right, box.Top}),
                  std::vector<double>({50, -20, 150, 30}));
        EXPECT_NE(TempFolder::Slurp(file).find("LGIDict"), std::string::npos) << "that of the first page";
        EXPECT_NE(Save(file, reference, {.update = update, .page = 4}), "");
    }
}

TEST(WideSave, PositionsAreThoseThatOtherReadersExpect) {
    const struct {
        const char* epsg;
        double x;
        double y;
        double pixel;
        double tolerance;
    } places[] = {
        {"27572", 600000, 2200000, 10, 0.01},  // grads from Paris
        {"27562", 600000, 200000, 10, 0.01},   {"4807", 2.5, 50, 1e-4, 1e-8},
        {"4326", 179.985, 10, 1e-4, 1e-8},  // across the antimeridian
        {"4326", 350, 10, 1e-4, 1e-8},         {"3832", 1000, 1000, 100, 0.01},
        {"32601", 200000, 7000000, 100, 0.01},
    };
    GDALAllRegister();
    const TempFolder folder;
    for (const auto& place : places) {
        SCOPED_TRACE(place.epsg);
        BGeoReference reference = References::WithAffine(place.pixel, 0, place.x, 0, -place.pixel, place.y);
        References::SetSystem(reference, place.epsg);
        const std::string file = folder.Write("map.pdf", PagePdf("/MediaBox[0 0 200 100]").Text());
        ASSERT_EQ(Save(file, reference), "");
        const double x = place.x > 300 && place.pixel < 1 ? place.x - 360 : place.x;
        ExpectPlace(ReadBack(file), x, place.y, place.tolerance);
        GDALDataset* const dataset = GDALDataset::Open(file.c_str(), GDAL_OF_RASTER);
        ASSERT_NE(dataset, nullptr);
        double terms[6] = {};
        EXPECT_EQ(dataset->GetGeoTransform(terms), CE_None);
        EXPECT_NEAR(terms[0], x, place.tolerance);
        EXPECT_NEAR(terms[3], place.y, place.tolerance);
        GDALClose(dataset);
    }
}

TEST(WideSave, RefusedWithTheFileAsItWas) {
    const TempFolder folder;
    const std::string good = PagePdf("/MediaBox[0 0 200 100]").Text();
    const std::string encrypted =
        PlainPdf({"<</Type/Catalog/Pages 2 0 R>>", "<</Type/Pages/Kids[3 0 R]/Count 1>>",
                  "<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]>>"},
                 "/Encrypt<</Filter/Standard/V 1/R 2/O(12345678901234567890123456789012)"
                 "/U(12345678901234567890123456789012)/P -4>>/ID[(1)(1)]");
    const BGeoReference placed = References::WithCorners(600000, 5200000);
    BGeoReference bare = References::WithAffine(1, 0, 0, 0, -1, 0);
    BGeoReference polar = References::WithAffine(1e-3, 0, 0, 0, -1e-3, 95);
    References::SetSystem(polar, "4326");
    BGeoReference rotated = References::WithAffine(1e-3, 0, 5, 0, -1e-3, 5);
    rotated.SetCoordSys(BSharedPtr<BCoordSys>(BCoordSys::FromText(
        BString("+proj=ob_tran +o_proj=longlat +o_lon_p=0 +o_lat_p=40 +lon_0=10 +datum=WGS84"))));
    const struct {
        const char* failure;
        std::string pdf;
        const BGeoReference& reference;
        Wish wish = {};
    } rows[] = {
        {"Coordinate system is required", good, bare},
        {"beyond the pole", good, polar},
        {"too small to distinguish them", good, placed, {.width = 2, .height = 2}},
        {"is encrypted", encrypted, placed},
        {"password protected", encrypted, placed, {.update = kWhereNeeded}},
        {"cannot be updated", good.substr(0, good.size() - 40), placed},
        {"", good.substr(0, 200), placed, {.update = kWhereNeeded}},
        {"cannot be updated", good, placed, {.page = 2}},
        {"has no page 0", good, placed, {.page = 0}},
        {"BFileNotFoundException", "", placed},
    };
    for (const auto& [failure, pdf, reference, wish] : rows) {
        SCOPED_TRACE(failure);
        const std::string file = pdf.empty() ? folder / "none.pdf" : folder.Write("map.pdf", pdf);
        BGeoReference given = reference;
        if (wish.width == 2) given.PointPairVector.clear();
        const std::string heard = Save(file, given, wish);
        EXPECT_NE(heard, "");
        EXPECT_NE(heard.find(failure), std::string::npos) << heard;
        EXPECT_EQ(pdf.empty() ? "" : TempFolder::Slurp(file), pdf);
    }
    // Well-known text 2 where it is asked for; without, the reason why not.
    const std::string file = folder.Write("map.pdf", good);
    EXPECT_NE(Save(file, rotated).find("well-known text 2 is written only where"), std::string::npos);
    EXPECT_EQ(TempFolder::Slurp(file), good);
    EXPECT_EQ(Save(file, rotated, {.wkt2 = true}), "");
    ExpectPlace(ReadBack(file), 5, 5, 1e-8);
}

TEST(WideSave, AFullDiskOrAReadOnlyOneLeavesTheFile) {
    const TempFolder folder;
    const std::string good = PagePdf("/MediaBox[0 0 200 100]/Note(" + std::string(3300, 'x') + ")").Text();
    const SmallDisk disk(folder / ".", "16k");
    if (!disk.IsMounted()) GTEST_SKIP() << "no file system of its own can be had";
    const std::string file = folder.Write("map.pdf", good);
    folder.Write("other", std::string(12288, 'x'));
    const BGeoReference reference = References::WithCorners(600000, 5200000);
    const std::string full = Save(file, reference);
    EXPECT_NE(full.find("No space left on device"), std::string::npos) << full;
    EXPECT_EQ(TempFolder::Slurp(file), good);
    ASSERT_TRUE(disk.MakeReadOnly());
    EXPECT_NE(Save(file, reference).find("Read-only file system"), std::string::npos);
    EXPECT_EQ(TempFolder::Slurp(file), good);
}

}  // namespace
}  // namespace MapAnchor

// Geospatial PDF beyond the rules: what other software writes, on any page.

#include "GeoPdfFiles.h"
#include "LogCapture.h"
#include "TempFolder.h"

#include <MapAnchor/BGeoPDFPages.h>
#include <MapAnchor/BMapAnchor.h>
#include <Tellurion/BException.h>

#include <gtest/gtest.h>
#include <podofo/podofo.h>

namespace MapAnchor {
namespace {

using namespace Tellurion;
using GeoPdf::LGIDict;
using GeoPdf::Viewport;

struct WideOutcome {
    BGeoReference reference;
    std::string failure;
    std::string log;

    BPoint WorldAt(double column, double row) const {
        return reference.MathTransform->ConvertSourceToTarget({column, row, 0});
    }
};

struct Wish {
    int page = 1;
    const char* map = "";
    bool shown = false;
    long width = 612;
    long height = 792;
    const char* password = "";
};

WideOutcome ReadWide(const std::string& pdf, const Wish& wish = {}) {
    const TempFolder folder;
    BParamList params;
    params.SetInteger(BMapAnchor::kValPDFWide, 1);
    params.SetInteger(BMapAnchor::kValPDFPage, wish.page);
    params.SetString(BMapAnchor::kValPDFMap, wish.map);
    params.SetString(BMapAnchor::kValPDFPassword, wish.password);
    params.SetInteger(BMapAnchor::kValPDFShown, wish.shown ? 1 : 0);
    WideOutcome outcome;
    const LogCapture log;
    try {
        BMapAnchor::Read(EReferenceType::GeoPDF, BString(folder.Write("map.pdf", pdf)), outcome.reference,
                         wish.width, wish.height, EMathTransformType::Affine, 0, &params);
    } catch (const BException& error) {
        outcome.failure = error.GetDetailedMessage().StdStr();
    } catch (const PoDoFo::PdfError&) {
        outcome.failure = "PdfError";
    }
    for (const std::string& line : log.lines)
        outcome.log += line + "\n";
    return outcome;
}

struct FormCase {
    const char* name;
    std::string pdf;
    const char* remark;  ///< a piece of what the log says; empty for a file that follows the rules
};

// All of them are the map of 15 to 16 degrees east, 47 to 48 north.
const FormCase kViewportForms[] = {
    {"by the rules", Viewport().Text(), ""},
    {"VP by reference",
     PagePdf("/MediaBox [0 0 612 792] /VP 6 0 R")
         .Add(Viewport().Measure())
         .Add("<< /Type /GEOGCS /EPSG 4326 >>")
         .Add("[ " + Viewport().Entry() + " ]")
         .Text(),
     "\"VP\""},
    {"an entry of VP by reference",
     PagePdf("/MediaBox [0 0 612 792] /VP [ 6 0 R ]")
         .Add(Viewport().Measure())
         .Add("<< /Type /GEOGCS /EPSG 4326 >>")
         .Add(Viewport().Entry())
         .Text(),
     "An entry of \"VP\""},
    {"Measure and GCS in place",
     PagePdf("/MediaBox [0 0 612 792] /VP [ " +
             Viewport{.measure_value = Viewport{.gcs_value = "<< /Type /GEOGCS /EPSG 4326 >>"}.Measure()}
                 .Entry() +
             " ]")
         .Text(),
     "\"GCS\""},
    {"GPTS without LPTS", Viewport{.lpts = "[]"}.Text(), "\"LPTS\""},
    {"no Bounds", Viewport{.bounds = ""}.Text(), "\"Bounds\""},
    {"three points", Viewport{.gpts = "[47 15 48 15 48 16]", .lpts = "[0 0 0 1 1 1]"}.Text(), "four points"},
    {"odd counts", Viewport{.gpts = "[47 15 48 15 48 16 47 16 9]"}.Text(), "odd one"},
    {"numbers as strings", Viewport{.box = "[(0) (0) (612) (792)]"}.Text(), "strings"},
    {"a box reversed", Viewport{.page = "/MediaBox [612 792 0 0]"}.Text(), "lower left corner"},
    {"a box inherited, by reference",
     PagePdf("/VP [ " + Viewport().Entry() + " ]")
         .Add(Viewport().Measure())
         .Add("<< /Type /GEOGCS /EPSG 4326 >>")
         .Add("[0 0 612 792]")
         .Inherit("/MediaBox 6 0 R")
         .Text(),
     "inherits"},
    {"a code that counts where the text is broken",
     Viewport{.system = "/Type /GEOGCS /WKT (GEOGCS[) /EPSG 4326"}.Text(), "\"WKT\""},
};

TEST(WidePdf, ViewportsInEveryFormAreTheSameMap) {
    for (const auto& [name, pdf, remark] : kViewportForms) {
        SCOPED_TRACE(name);
        const WideOutcome outcome = ReadWide(pdf);
        ASSERT_TRUE(outcome.reference.HasMathTransform()) << outcome.failure << outcome.log;
        EXPECT_NEAR(outcome.WorldAt(153, 198).x, 15.25, 1e-9);
        EXPECT_NEAR(outcome.WorldAt(153, 198).y, 47.75, 1e-9);
        EXPECT_EQ(outcome.reference.CoordSys->ToEPSGCode(), BString("EPSG:4326"));
        const bool says = *remark ? outcome.log.find(remark) != std::string::npos : outcome.log.empty();
        EXPECT_TRUE(says) << outcome.log;
        EXPECT_EQ(outcome.log.empty(), outcome.log.find("pdf-beyond-rules: ") != 0) << outcome.log;
    }
}

std::string OneDict(const LGIDict& map) {
    return PagePdf(map.page + " /LGIDict 4 0 R").Add(map.Entry()).Text();
}

const std::string kClarke =
    "<< /Type /Projection /ProjectionType (TC) /CentralMeridian (15 0 0.0E) /OriginLatitude 0 /ScaleFactor "
    "0.9996 "
    "/FalseEasting (500000) /FalseNorthing 0 /Units (M) /Datum << /Description (Own) /Ellipsoid << "
    "/Description "
    "(Own) /SemiMajorAxis 6378206.4 /InvFlattening 294.9786982 >> /ToWGS84 << /dx 10 /dy 20 /dz 30 >> >> >>";

struct SystemCase {
    const char* name;
    LGIDict map;
    const char* in_system;  ///< a piece of its well-known text
    const char* remark;
};

// All of them have the matrix of the helper's own map.
const SystemCase kSystems[] = {
    {"one dictionary, plain numbers",
     {.ctm = "/CTM [2 0 0 2 400000 5200000]"},
     "\"central_meridian\",15],PARAMETER[\"scale_factor\",0.9996",
     "plain numbers"},
    {"a datum with ellipsoid and shift", {.projection = kClarke}, "6378206.4,294.9786982", "\"Datum\""},
    {"the shift of that datum", {.projection = kClarke}, "TOWGS84[10,20,30", ""},
    {"a text of its own", {.projection = "<< /WKT (" + GeoPdf::kUtm33 + ") >>"}, "UTM 33N", "\"WKT\""},
    {"an unknown datum",
     {.projection = "<< /Type /Projection /ProjectionType (UT) /Datum (XYZ) /Zone (33) /Hemisphere (N) >>"},
     "WGS_1984",
     "pdf-unknown-datum: The datum \"XYZ\""},
    {"a scale of 0",
     {.projection = "<< /Type /Projection /ProjectionType (TC) /Datum (WGE) /ScaleFactor (0) >>"},
     "PARAMETER[\"scale_factor\",1]",
     "pdf-scale"},
    {"a meridian down from the pole",
     {.projection = "<< /Type /Projection /ProjectionType (PG) /Datum (WGE) /LatitudeTrueScale (70) "
                    "/LongitudeDownFromPole (-45) >>"},
     "PARAMETER[\"central_meridian\",-45]",
     ""},
};

TEST(WidePdf, LGIDictsInEveryFormHaveTheirSystem) {
    for (const auto& [name, map, in_system, remark] : kSystems) {
        SCOPED_TRACE(name);
        const WideOutcome outcome = ReadWide(OneDict(map), {.width = 600, .height = 800});
        ASSERT_TRUE(outcome.reference.HasCoordSys() && outcome.reference.HasMathTransform())
            << outcome.failure << outcome.log;
        const std::string text = outcome.reference.CoordSys->ToWholeWKT().StdStr();
        EXPECT_NE(text.find(in_system), std::string::npos) << text;
        EXPECT_NE(outcome.log.find(remark), std::string::npos) << outcome.log;
        EXPECT_NEAR(outcome.WorldAt(0, 800).x, 400000.0, 1e-9);
        EXPECT_NEAR(outcome.WorldAt(0, 800).y, 5200000.0, 1e-9);
    }
}

std::string Replaced(std::string text, const std::string& piece, const std::string& by) {
    for (std::size_t at = text.find(piece); at != std::string::npos; at = text.find(piece, at + by.size()))
        text.replace(at, piece.size(), by);
    return text;
}

TEST(WidePdf, DamageThatViewersForgiveIsForgivenAndSaid) {
    const std::string whole = Viewport().Text();
    const std::pair<const char*, std::string> damaged[] = {
        {"a wrong startxref", Replaced(whole, "startxref\n", "startxref\n1")},
        {"rows of 19 bytes", Replaced(whole, " n \n", " n\n")},
        {"no end marker", Replaced(whole, "%%EOF", "")},
        {"junk before the header", "HTTP/1.1 200 OK\r\n\r\n" + whole},
        {"cut before its tables", whole.substr(0, whole.rfind("xref\n0"))},
        {"an object twice, the last one counts",
         "%PDF-1.4\n3 0 obj\n<< /Type /Page /Parent 2 0 R >>\nendobj\n" + whole},
    };
    for (const auto& [name, pdf] : damaged) {
        SCOPED_TRACE(name);
        const WideOutcome outcome = ReadWide(pdf);
        ASSERT_TRUE(outcome.reference.HasMathTransform()) << outcome.failure << outcome.log;
        EXPECT_NEAR(outcome.WorldAt(612, 0).x, 16.0, 1e-9);
        EXPECT_EQ(outcome.log.find("pdf-beyond-rules: The cross-references"), 0U) << outcome.log;
    }
    EXPECT_NE(ReadWide("%PDF-1.4\n1 0 obj\n<< /Type /Catalog >>\nendobj\n").failure, "");
}

TEST(WidePdf, APasswordOpensAes256) {
    const TempFolder folder;
    const Viewport named{.measure_value = "4 0 R /Name (Sheet)",
                         .system = "/Type /PROJCS /WKT (" + GeoPdf::kUtm33 + ")"};
    PoDoFo::PdfMemDocument document(folder.Write("plain.pdf", named.Text()).c_str());
    const std::string file = folder / "locked.pdf";
    const auto outcome_of = [&](const char* user, const char* given) {
        document.SetEncrypted(user, "owner", PoDoFo::PdfEncrypt::ePdfPermissions_Print,
                              PoDoFo::PdfEncrypt::ePdfEncryptAlgorithm_AESV3,
                              PoDoFo::PdfEncrypt::ePdfKeyLength_256);
        document.Write(file.c_str());
        return ReadWide(TempFolder::Slurp(file), {.password = given});
    };
    const WideOutcome empty = outcome_of("", "");
    ASSERT_TRUE(empty.reference.HasMathTransform()) << empty.failure << empty.log;
    EXPECT_EQ(empty.reference.CoordSys->GetName(), BString("UTM 33N"));
    EXPECT_EQ(BGeoPDFPages::Describe(BString(file), nullptr).Pages.at(0).Page.Maps.at(0).Name,
              BString("Sheet"));
    EXPECT_NE(empty.log.find("encrypted"), std::string::npos) << empty.log;
    EXPECT_TRUE(outcome_of("open", "open").reference.HasMathTransform());
    EXPECT_EQ(outcome_of("open", "shut").failure, "PdfError");
    const std::string pack = "qpdf --encrypt open owner 256 -- --object-streams=generate '" +
                             (folder / "plain.pdf") + "' '" + file + "'";
    if (std::system(pack.c_str()) != 0) GTEST_SKIP() << "object streams need qpdf";
    for (const auto& [given, failure] : {std::pair("open", ""), {"shut", "PdfError"}})
        EXPECT_EQ(ReadWide(TempFolder::Slurp(file), {.password = given}).failure, failure);
}

TEST(WidePdf, PositionsAreExactAndNotRoundedToPixels) {
    const WideOutcome outcome = ReadWide(Viewport{.box = "[100.25 100.25 500.75 700.75]"}.Text());
    ASSERT_TRUE(outcome.reference.HasMathTransform());
    EXPECT_NEAR(outcome.WorldAt(100.25, 792 - 100.25).x, 15.0, 1e-8);
    EXPECT_NEAR(outcome.WorldAt(500.75, 792 - 700.75).y, 48.0, 1e-8);
    EXPECT_EQ(outcome.reference.PointPairVector.at(2).Column, 501);
}

struct ShownCase {
    const char* page;
    long width, height;
    double column, row;  ///< of the page's place 153, 594, a quarter in from the left and the top
};

// A quarter of the page is 153 by 198 points.
const ShownCase kShown[] = {
    {"/MediaBox [0 0 612 792]", 612, 792, 153, 198},
    {"/MediaBox [0 0 612 792] /Rotate 90", 792, 612, 594, 153},
    {"/MediaBox [0 0 612 792] /Rotate -180", 612, 792, 459, 594},
    {"/MediaBox [0 0 612 792] /Rotate 270", 792, 612, 198, 459},
    {"/MediaBox [0 0 612 792] /CropBox [100 100 900 600]", 512, 500, 53, 6},
    {"/MediaBox [0 0 612 792] /UserUnit 2 /Rotate 90", 0, 0, 1188, 306},
};

TEST(WidePdf, ThePageAsShown) {
    for (const auto& [page, width, height, column, row] : kShown) {
        SCOPED_TRACE(page);
        const WideOutcome points = ReadWide(Viewport{.page = page, .box = "[0 0 612 792]"}.Text(),
                                            {.shown = true, .width = width, .height = height});
        ASSERT_TRUE(points.reference.HasMathTransform()) << points.failure << points.log;
        EXPECT_NEAR(points.WorldAt(column, row).x, 15.25, 1e-9);
        EXPECT_NEAR(points.WorldAt(column, row).y, 47.75, 1e-9);
        const WideOutcome matrix =
            ReadWide(OneDict({.page = page}), {.shown = true, .width = width, .height = height});
        EXPECT_NEAR(matrix.WorldAt(column, row).x, 400306.0, 1e-6);
        EXPECT_NEAR(matrix.WorldAt(column, row).y, 5201188.0, 1e-6);
    }
}

/// Three pages: the second has no map, the third two.
std::string ThreePages() {
    const auto viewport = [](const char* box, const char* name) {
        return std::string("<< /BBox ") + box + " /Name (" + name + ") /Measure 6 0 R >>";
    };
    return PlainPdf({"<< /Type /Catalog /Pages 2 0 R >>",
                     "<< /Type /Pages /Kids [3 0 R 8 0 R] /Count 9 /MediaBox [0 0 612 792] >>",
                     "<< /Type /Page /Parent 2 0 R /VP [" + viewport("[0 0 612 792]", "One") + "] >>",
                     "<< /Type /Page /Parent 8 0 R >>",
                     "<< /Type /Page /Parent 8 0 R /VP [" + viewport("[0 0 61 79]", "Inset") +
                         viewport("[0 0 612 792]", "Main") + "<< /BBox [0 0 612 792] >>] >>",
                     Viewport{.gcs_value = "7 0 R"}.Measure(), "<< /Type /GEOGCS /EPSG 4326 >>",
                     "<< /Type /Pages /Parent 2 0 R /Kids [4 0 R 5 0 R 2 0 R] /Count 1 >>"});
}

struct ChoiceCase {
    Wish wish;
    double width;         ///< of a degree on the page; 0 where nothing is read
    const char* failure;  ///< a piece of it
};

const ChoiceCase kChoices[] = {
    {{}, 612, ""},
    {{.page = 3}, 612, ""},  // the largest
    {{.page = 3, .map = "1"}, 61, ""},
    {{.page = 3, .map = "Inset"}, 61, ""},
    {{.page = 3, .map = "largest"}, 612, ""},
    {{.page = 3, .map = "3"}, 0, "no \"Measure\""},
    {{.page = 3, .map = "Outset"}, 0, "its maps are 1 (Inset), 2 (Main), 3"},
    {{.page = 2}, 0, "No Geospatial data"},
    {{.page = 4}, 0, "its pages are 1 to 3"},
    {{.page = 0}, 0, "its pages are 1 to"},
};

TEST(WidePdf, AnyMapOfAnyPage) {
    for (const auto& [wish, width, failure] : kChoices) {
        SCOPED_TRACE(std::to_string(wish.page) + " " + wish.map);
        const WideOutcome outcome = ReadWide(ThreePages(), wish);
        EXPECT_NE(outcome.failure.find(failure), std::string::npos) << outcome.failure;
        ASSERT_EQ(outcome.reference.HasMathTransform(), width != 0);
        if (width == 0) continue;
        EXPECT_NEAR(outcome.WorldAt(width, 792).x, 16.0, 1e-9);
    }
}

TEST(WidePdf, TheMapsOfAllPagesAreListed) {
    const TempFolder folder;
    const BGeoPDFPages list = BGeoPDFPages::List(BString(folder.Write("map.pdf", ThreePages())));
    EXPECT_EQ(list.PageCount, 3);
    EXPECT_TRUE(list.Complete);
    ASSERT_EQ(list.Pages.size(), 2U);
    EXPECT_EQ(list.Pages[1].Number, 3);
    const std::vector<BGeoPDFMap>& maps = list.Pages[1].Page.Maps;
    ASSERT_EQ(maps.size(), 3U);
    EXPECT_EQ(maps[1].Name, BString("Main"));
    EXPECT_TRUE(maps[1].InUse && !maps[0].InUse);
    EXPECT_FALSE(maps[2].Fault.IsEmpty());
    EXPECT_FALSE(BGeoPDFPages::List(BString(folder.Write("no.pdf", "%PDF-1.4"))).Fault.IsEmpty());
}

}  // namespace
}  // namespace MapAnchor

// A georeferenced PDF in the eyes of others: sound, looking as before, with all that it
// had, and a measure dictionary as PDF 2.0 wants it.

#include "PlainPdf.h"
#include "References.h"
#include "TempFolder.h"

#include "objects/CPDFDocument.h"
#include "objects/CPDFPage.h"

#include <MapAnchor/BMapAnchor.h>

#include <gtest/gtest.h>
#include <podofo/podofo.h>

#include <sys/wait.h>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <set>

namespace MapAnchor {
namespace {

using namespace Tellurion;
using PoDoFo::PdfArray;
using PoDoFo::PdfObject;

int RunCommand(const std::string& command) {
    const int status = std::system((command + " >/dev/null 2>&1").c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void Georeference(const std::string& file, const BGeoReference& reference) {
    BMapAnchor::Save(EReferenceType::GeoPDF, BString(file), reference, 200, 100, "", 0, nullptr);
}

/// The pixels of all pages.
std::string Pictures(const TempFolder& folder, const std::string& pdf) {
    EXPECT_EQ(RunCommand("pdftoppm -r 72 '" + pdf + "' '" + folder / "page" + "'"), 0);
    std::set<std::filesystem::path> pages;
    for (const auto& entry : std::filesystem::directory_iterator(folder / ""))
        if (entry.path().extension() == ".ppm") pages.insert(entry.path());
    std::string all;
    for (const auto& page : pages) {
        all += TempFolder::Slurp(page);
        std::filesystem::remove(page);
    }
    return all;
}

TEST(WriteProof, EveryFormOfSourceStaysSoundAndWhole) {
    if (RunCommand("qpdf --version") != 0 || RunCommand("pdftoppm -v") != 0)
        GTEST_SKIP() << "needs qpdf and pdftoppm";
    for (const std::string form :
         {"--object-streams=disable", "--object-streams=generate", "--linearize", "--force-version=2.0"}) {
        SCOPED_TRACE(form);
        const TempFolder folder;
        const std::string plain = folder.Write("plain.pdf", RichPdf(200, 100));
        const std::string file = folder / "map.pdf";
        ASSERT_EQ(RunCommand("qpdf " + form + " '" + plain + "' '" + file + "'"), 0);
        const std::string before = Pictures(folder, file);
        Georeference(file, References::Of("32632", {0.5, 0, 676000, 0, -0.5, 5242000}));
        EXPECT_EQ(RunCommand("qpdf --check '" + file + "'"), 0);
        EXPECT_TRUE(Pictures(folder, file) == before);
        const std::string open = folder / "open.pdf";
        ASSERT_EQ(RunCommand("qpdf --qdf --object-streams=disable '" + file + "' '" + open + "'"), 0);
        const std::string text = TempFolder::Slurp(open);
        for (const char* part : {"(A bookmark)", "(A note)", "<x:xmpmeta", "1 0 0 rg 10 10 50 30 re f",
                                 "0 0 1 rg 0 0 50 50 re f", "/Count 2", "/RastrelSpatialPDF"})
            EXPECT_NE(text.find(part), std::string::npos) << part;
    }
}

/// A value by its key, through a reference; fails for none.
const PdfObject& At(VellumLib::CPDFDocument& document, const PdfObject& holder, const char* key) {
    static const PdfObject none;
    const PdfObject* value = holder.GetDictionary().GetKey(key);
    if (value && value->IsReference())
        value = document.Document().GetObjects().GetObject(value->GetReference());
    EXPECT_TRUE(value) << key;
    return value ? *value : none;
}

std::string NameAt(VellumLib::CPDFDocument& document, const PdfObject& holder, const char* key) {
    const PdfObject& value = At(document, holder, key);
    EXPECT_TRUE(value.IsName()) << key;
    return value.IsName() ? value.GetName().GetName() : "";
}

/// Pairs of numbers between two limits each.
std::size_t ExpectPairs(const PdfObject& value, double low_1, double high_1, double low_2, double high_2) {
    if (!value.IsArray()) {
        ADD_FAILURE() << "no array";
        return 0;
    }
    const PdfArray& numbers = value.GetArray();
    EXPECT_EQ(numbers.size() % 2, 0U);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        EXPECT_TRUE(numbers[i].IsReal() || numbers[i].IsNumber());
        EXPECT_GE(numbers[i].GetReal(), i % 2 ? low_2 : low_1);
        EXPECT_LE(numbers[i].GetReal(), i % 2 ? high_2 : high_1);
    }
    return numbers.size();
}

struct MeasureCase {
    const char* name;
    const char* epsg;
    std::array<double, 6> terms;
    const char* type;    ///< of the system
    const char* linear;  ///< the unit on display
};

TEST(WriteProof, TheMeasureIsAsPdf2WantsIt) {
    const MeasureCase cases[] = {
        {"utm_north", "32632", {0.5, 0, 676000, 0, -0.5, 5242000}, "PROJCS", "M"},
        {"utm_south", "32755", {30, 0, 500000, 0, -30, 6000000}, "PROJCS", "M"},
        {"rotated", "32632", {3, 4, 676000, 4, -3, 5242000}, "PROJCS", "M"},
        {"geographic", "4326", {0.001, 0, 11, 0, -0.001, 47}, "GEOGCS", "M"},
        {"across_the_antimeridian", "4326", {0.1, 0, 175, 0, -0.1, 47}, "GEOGCS", "M"},
        {"state_plane_feet", "2277", {2, 0, 3100000, 0, -2, 10100000}, "PROJCS", "USFT"},
        {"web_mercator", "3857", {10, 0, 1260000, 0, -10, 5990000}, "PROJCS", "M"},
        {"polar", "3031", {100, 0, -300000, 0, -100, 1300000}, "PROJCS", "M"},
    };
    for (const MeasureCase& test : cases) {
        SCOPED_TRACE(test.name);
        const TempFolder folder;
        const std::string file = folder.Write("map.pdf", RichPdf(200, 100));
        Georeference(file, References::Of(test.epsg, test.terms));
        VellumLib::CPDFDocument document(QString::fromStdString(file));
        const PdfObject& page = *document.Document().GetPage(0)->GetObject();
        const PdfObject& vp = At(document, page, "VP");
        ASSERT_TRUE(vp.IsArray());
        ASSERT_EQ(vp.GetArray().size(), 1U);
        const PdfObject& viewport = vp.GetArray()[0];
        EXPECT_EQ(NameAt(document, viewport, "Type"), "Viewport");
        EXPECT_EQ(ExpectPairs(At(document, viewport, "BBox"), 0, 200, 0, 100), 4U);
        const PdfObject& measure = At(document, viewport, "Measure");
        EXPECT_EQ(NameAt(document, measure, "Type"), "Measure");
        EXPECT_EQ(NameAt(document, measure, "Subtype"), "GEO");
        EXPECT_EQ(ExpectPairs(At(document, measure, "Bounds"), 0, 1, 0, 1), 8U);
        EXPECT_EQ(ExpectPairs(At(document, measure, "LPTS"), 0, 1, 0, 1), 8U);
        EXPECT_EQ(ExpectPairs(At(document, measure, "GPTS"), -90, 90, -180, 180), 8U);
        const PdfObject& system = At(document, measure, "GCS");
        EXPECT_EQ(NameAt(document, system, "Type"), test.type);
        EXPECT_TRUE(At(document, system, "WKT").IsString());
        EXPECT_EQ(At(document, system, "EPSG").GetNumber(), std::atoi(test.epsg));
        const PdfObject& units = At(document, measure, "PDU");
        ASSERT_TRUE(units.IsArray());
        ASSERT_EQ(units.GetArray().size(), 3U);
        EXPECT_EQ(units.GetArray()[0].GetName().GetName(), test.linear);
    }
}

}  // namespace
}  // namespace MapAnchor

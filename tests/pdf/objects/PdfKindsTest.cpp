// The same map in every kind of PDF file: boxes and reference are alike, whether
// the file is loaded whole or for its first page alone.

#include "objects/CPDFDocument.h"
#include "objects/CPDFPage.h"

#include <MapAnchor/BMapAnchor.h>
#include <Tellurion/BException.h>

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QPainter>
#include <QPdfWriter>

#include "GeoPdfFiles.h"
#include "References.h"
#include "TempFolder.h"

#include <cstdlib>
#include <functional>

namespace VellumLib {
namespace {

using namespace Tellurion;
using MapAnchor::BMapAnchor;

constexpr int kWidth = 612;
constexpr int kHeight = 792;
constexpr const char* kBox = "/MediaBox [0 0 612 792]";

/// Writes map.pdf; false where the tool for it is missing.
using Make = std::function<bool(const TempFolder&)>;
Make Text(const std::string& text) {
    return [text](const TempFolder& folder) { return !folder.Write("map.pdf", text).empty(); };
}

struct Kind {
    const char* name;
    Make make;
    bool narrows = true;  ///< loading the first page alone leaves objects out
    bool has_box = true;
};

std::ostream& operator<<(std::ostream& out, const Kind& kind) {
    return out << kind.name;
}

// One object more than the page needs.
PagePdf Plain(const std::string& page_keys = kBox) {
    return GeoPdf::Viewport{.page = page_keys}.Pdf().Add("<< /Left /Out >>");
}

/// What qpdf makes of plain.pdf.
Make ByQpdf(const std::string& arguments) {
    return [arguments](const TempFolder& folder) {
        folder.Write("plain.pdf", Plain(kBox + std::string(" /Resources << >>")).Text());
        const std::string command =
            "cd '" + folder / "" + "' && qpdf " + arguments + " map.pdf >/dev/null 2>&1";
        return std::system(command.c_str()) == 0;
    };
}

/// The page is replaced by an update; the older one has other boxes.
std::string Updated() {
    std::string text = Plain("/MediaBox [0 0 1 1]").Text();
    const std::size_t previous = text.rfind("xref\n0");
    const std::string newer = Plain().Text();
    const std::size_t from = newer.find("3 0 obj");
    char row[32];
    std::snprintf(row, sizeof row, "%010zu 00000 n \n", text.size());
    text += newer.substr(from, newer.find("4 0 obj") - from);
    const std::size_t start = text.size();
    return text + "xref\n3 1\n" + row + "trailer\n<< /Root 1 0 R /Size 7 /Prev " + std::to_string(previous) +
           " >>\nstartxref\n" + std::to_string(start) + "\n%%EOF\n";
}

std::string ManyObjects() {
    PagePdf file = Plain();
    for (int i = 0; i < 1'000; ++i)
        file.Add("<< /Number " + std::to_string(i) + " >>");
    return file.Text();
}

/// Places in the file stay right where both texts have the same length.
std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    return text.replace(text.find(from), from.size(), to);
}

/// Two nodes are between the root and the page; the first counts no pages.
/// The page is below node 8, and names its parent.
std::string TreeOfNodes(const std::string& parent) {
    const std::string text = Plain()
                                 .Inherit("/Spare (      )")
                                 .Add("<< /Type /Pages /Kids [ ] /Count 0 >>")
                                 .Add("<< /Type /Pages /Kids [ 3 0 R ] /Count 1 >>")
                                 .Text();
    return Replaced(Replaced(text, "/Parent 2 0 R", "/Parent " + parent + " 0 R"),
                    "/Kids [ 3 0 R ] /Count 1 /Spare (      )", "/Kids [ 7 0 R 8 0 R ] /Count 1 /Spare ()");
}

/// The table has the measure in another generation than its head.
std::string OtherGeneration() {
    std::string text = Plain().Text();
    const std::size_t row = text.find("f \n", text.rfind("xref\n0")) + 3 + 3 * 20;
    return text.replace(row + 11, 5, "00001");
}

/// Another trailer, which the parser goes by, is behind that of the table.
std::string TwoTrailers() {
    std::string text = Plain().Text();
    return text.insert(text.rfind("startxref"), "trailer\n<< /Root 1 0 R /Size 7 >>\n");
}

bool WriteByQt(const TempFolder& folder) {
    int count = 1;
    char name[] = "kinds";
    char* arguments[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(count, arguments);
    const std::string path = folder / "map.pdf";
    {
        QPdfWriter writer(QString::fromStdString(path));
        writer.setPageSize(QPageSize(QSizeF(kWidth, kHeight), QPageSize::Point));
        QPainter(&writer).fillRect(100, 100, 500, 300, Qt::red);
    }
    BMapAnchor::Save(EReferenceType::GeoPDF, BString(path),
                     References::Of("4326", {1.0 / kWidth, 0, 15, 0, -1.0 / kHeight, 48}), kWidth, kHeight,
                     BString(), 0, nullptr);
    return true;
}

const Kind kKinds[] = {
    {"plain", Text(Plain().Text())},
    {"updated", Text(Updated())},
    {"many_objects", Text(ManyObjects())},
    {"indirect_resources", Text(Plain(kBox + std::string(" /Resources 6 0 R /Contents 6 0 R")).Text())},
    {"inherited_box", Text(Plain("").Inherit(kBox).Text()), true, false},
    {"object_streams", ByQpdf("--object-streams=generate plain.pdf"), false},
    {"linearised", ByQpdf("--linearize --object-streams=disable plain.pdf")},
    {"linearised_with_object_streams", ByQpdf("--linearize --object-streams=generate plain.pdf"), false},
    {"tree_of_nodes", Text(TreeOfNodes("8"))},
    {"inherits_from_elsewhere", Text(TreeOfNodes("2")), false},
    // Object 0 counts as one in use.
    {"miscounted_table", Text(Replaced(Plain().Text(), "65535 f", "65535 n")), false},
    {"count_by_reference",
     Text(Replaced(Plain().Inherit("/Spare (    )").Add("1").Text(), "/Count 1 /Spare (    )",
                   "/Count 7 0 R /Spare ()")),
     false},
    {"two_trailers", Text(TwoTrailers()), false},
    {"junk_behind_the_end", Text(TwoTrailers() + std::string(900, '%')), false},
    {"other_generation", Text(OtherGeneration()), false},
    {"several_pages", ByQpdf("--empty --pages plain.pdf 1 plain.pdf 1 --")},
    {"by_qt", WriteByQt},
};

class PdfKinds : public testing::TestWithParam<Kind> {};

TEST_P(PdfKinds, ReadAlike) {
    const TempFolder folder;
    if (!GetParam().make(folder)) GTEST_SKIP() << "needs qpdf";
    const std::string path = folder / "map.pdf";
    std::vector<std::size_t> objects;
    for (const EPDFExtent extent : {EPDFExtent::Whole, EPDFExtent::FirstPage}) {
        CPDFDocument document(QString::fromStdString(path), extent);
        CPDFPage& page = document.GetPage(0);
        const std::vector<double> box = {0, 0, kWidth, kHeight};
        EXPECT_EQ(page.GetMediaBox(), GetParam().has_box ? box : std::vector<double>());
        EXPECT_EQ(page.GetSpatialKind(), CPDFPage::kSpatialMeasure);
        objects.push_back(document.Document().GetObjects().GetSize());
    }
    EXPECT_EQ(objects[1] < objects[0], GetParam().narrows) << objects[1] << " of " << objects[0];

    BGeoReference reference;
    const auto read = [&] {
        BMapAnchor::Read(EReferenceType::GeoPDF, BString(path), reference, kWidth, kHeight,
                         EMathTransformType::Affine,
                         BMapAnchor::kStrictTransform | BMapAnchor::kStrictCoordSys, nullptr);
    };
    if (!GetParam().has_box) {
        EXPECT_THROW(read(), BException);
        return;
    }
    read();
    const BPoint world = reference.MathTransform->ConvertSourceToTarget({306.0, 198.0, 0.0});
    EXPECT_NEAR(world.x, 15.5, 1e-6);
    EXPECT_NEAR(world.y, 47.75, 1e-6);
    EXPECT_NE(reference.CoordSys->ToEPSGCode().StdStr().find("4326"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(All, PdfKinds, testing::ValuesIn(kKinds),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(FirstPage, IsNotWritten) {
    const TempFolder folder;
    CPDFDocument document(QString::fromStdString(folder.Write("map.pdf", ManyObjects())),
                          EPDFExtent::FirstPage);
    EXPECT_THROW(document.Write(QString::fromStdString(folder / "out.pdf")), PoDoFo::PdfError);
}

}  // namespace
}  // namespace VellumLib

// A page's content as a sequence of statements.

#include "PagePdf.h"
#include "TempFolder.h"

#include "objects/CPDFDocument.h"
#include "objects/CPDFPage.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace VellumLib {
namespace {

using Points = std::vector<std::pair<double, double>>;

struct Seen {
    int kind;
    Points points;
    friend bool operator==(const Seen&, const Seen&) = default;
    friend void PrintTo(const Seen& seen, std::ostream* out) {
        *out << seen.kind << ": " << ::testing::PrintToString(seen.points);
    }
};

using SeenList = std::vector<Seen>;

std::string PageWith(const std::string& content, const std::string& resources = "<< >>",
                     const std::vector<std::string>& more = {}) {
    PagePdf pdf("/MediaBox [0 0 100 100] /Contents 4 0 R /Resources " + resources);
    pdf.Add(PdfStreamObject(content));
    for (const std::string& object : more)
        pdf.Add(object);
    return pdf.Text();
}

SeenList Walk(const std::string& path) {
    CPDFDocument document(QString::fromStdString(path));
    SeenList all;
    CPDFStatement statement;
    while (document.GetPage(0).GetNextStatement(statement) != StatementEnd) {
        Points points;
        for (const CPDFPathPoint& point : statement.GetPoints())
            points.emplace_back(point.x, point.y);
        all.push_back({statement.GetKind(), points});
    }
    return all;
}

struct ContentCase {
    const char* name;
    const char* content;
    SeenList expected;
};

TEST(ContentStream, Statements) {
    const ContentCase cases[] = {
        {"matrix_moves_points", "1 0 0 1 10 20 cm 0 0 m 5 5 l S",
         SeenList({{7, {}}, {2, {{10, 20}, {15, 25}}}})},
        {"restore_undoes_the_matrix", "q 2 0 0 2 0 0 cm Q 1 1 m S",
         SeenList({{8, {}}, {7, {}}, {9, {}}, {2, {{1, 1}}}})},
        {"restore_undoes_only_the_last_matrix", "q 2 0 0 2 0 0 cm 1 0 0 1 5 5 cm Q 1 1 m S",
         SeenList({{8, {}}, {7, {}}, {7, {}}, {9, {}}, {2, {{2, 2}}}})},
        {"clip_comes_before_its_group", "0 0 10 10 re W n 1 g Q 2 2 m S",
         SeenList({{12, {{0, 0}, {0, 10}, {10, 10}, {10, 0}}}, {10, {}}, {9, {}}, {2, {{2, 2}}}})},
        {"curve_by_c", "0 0 m 1 1 2 2 3 3 c S", SeenList({{2, {{0, 0}, {3, 3}}}})},
        {"curve_by_v_leaves_a_gap", "0 0 m 2 2 3 3 v S", SeenList({{2, {{0, 0}}}})},
        {"text", "BT /F1 12 Tf 1 0 0 1 50 50 Tm (x) Tj ET",
         SeenList({{14, {}}, {1, {}}, {16, {}}, {1, {}}, {15, {}}})},
        {"end_of_text_takes_a_matrix_back", "2 0 0 2 0 0 cm BT ET 1 1 m S",
         SeenList({{7, {}}, {14, {}}, {15, {}}, {2, {{1, 1}}}})},
        {"marked_content_and_colour", "/A << >> BDC 1 0 0 rg EMC /S sh",
         SeenList({{4, {}}, {10, {}}, {5, {}}, {13, {}}})},
        {"operands_at_the_end", "1 2 3", SeenList()},
        {"unknown_operator", "1 2 xyzzy", SeenList({{1, {}}})},
    };
    const TempFolder folder;
    for (const ContentCase& test : cases) {
        SCOPED_TRACE(test.name);
        EXPECT_EQ(Walk(folder.Write("page.pdf", PageWith(test.content))), test.expected);
    }
}

TEST(ContentStream, FormsAndImages) {
    const TempFolder folder;
    const std::string resources = "<< /XObject << /Im0 5 0 R /Fm0 6 0 R /Fm1 7 0 R >> >>";
    const std::string form = "/Type /XObject /Subtype /Form /BBox [0 0 9 9]";
    const std::vector<std::string> more = {
        PdfStreamObject("x", "/Type /XObject /Subtype /Image"), PdfStreamObject("1 1 m S", form),
        PdfStreamObject("1 1 m S /Im0 Do", form + " /Group << /S /Transparency >>")};
    const auto walk = [&](const std::string& content, const std::string& of_page) {
        return Walk(folder.Write("page.pdf", PageWith(content, of_page, more)));
    };
    EXPECT_EQ(walk("100 0 0 50 10 10 cm /Im0 Do", resources),
              (SeenList{{7, {}}, {11, {{10, 10}, {110, 60}}}}));
    EXPECT_EQ(walk("/Fm0 Do", resources), (SeenList{{11, {{0, 0}}}}));
    // A group is entered, once, in the space of its Do; inside it a Do is any operator.
    EXPECT_EQ(walk("1 0 0 1 5 5 cm /Fm1 Do /Fm1 Do", resources),
              (SeenList{{7, {}}, {11, {}}, {2, {{6, 6}}}, {1, {}}, {11, {}}}));
    // Resources behind a reference are not looked into.
    std::vector<std::string> elsewhere = more;
    elsewhere.push_back(resources);
    EXPECT_EQ(Walk(folder.Write("page.pdf", PageWith("/Fm1 Do", "8 0 R", elsewhere))), (SeenList{{1, {}}}));
}

TEST(ContentStream, StreamsOfAnArrayAreReadAsOne) {
    const TempFolder folder;
    const std::string pdf = PagePdf("/Contents [4 0 R 9 0 R 6 0 R 5 0 R (x)]")
                                .Add(PdfStreamObject("1 2"))
                                .Add(PdfStreamObject("m 3 4 l S"))
                                .Add("<< /Not /A_stream >>")
                                .Text();
    EXPECT_EQ(Walk(folder.Write("array.pdf", pdf)), (SeenList{{2, {{1, 2}, {3, 4}}}}));
    EXPECT_EQ(Walk(folder.Write("none.pdf", PagePdf("").Text())), SeenList());
}

TEST(ContentStream, AClipKnowsOfAShadingInItsGroup) {
    const TempFolder folder;
    CPDFDocument document(QString::fromStdString(
        folder.Write("page.pdf", PageWith("0 0 9 9 re W n /S sh Q 0 0 9 9 re W n Q /S sh"))));
    std::vector<std::pair<int, bool>> seen;
    CPDFStatement statement;
    while (document.GetPage(0).GetNextStatement(statement) != StatementEnd)
        seen.emplace_back(statement.GetKind(), statement.HasShading());
    EXPECT_EQ(seen, (std::vector<std::pair<int, bool>>{
                        {12, true}, {13, false}, {9, false}, {12, false}, {9, false}, {13, false}}));
}

TEST(ContentStream, CurvesCarryTheirControls) {
    const TempFolder folder;
    CPDFDocument document(
        QString::fromStdString(folder.Write("page.pdf", PageWith("2 0 0 2 0 0 cm 0 0 m 1 2 3 4 5 6 c S"))));
    int begun = 0, steps = 0, ended = 0;
    document.GetPage(0).SetProgressBeginCallback([&] { ++begun; });
    document.GetPage(0).SetProgressStepCallback([&] { ++steps; });
    document.GetPage(0).SetProgressEndCallback([&] { ++ended; });
    CPDFStatement statement;
    document.GetPage(0).GetNextStatement(statement);
    document.GetPage(0).GetNextStatement(statement);
    EXPECT_EQ(statement.GetPoints(), (std::vector<CPDFPathPoint>{{0, 0, 2, 4, 0, 0}, {10, 12, 0, 0, 6, 8}}));
    EXPECT_EQ(statement.GetByteCount(), 11U);
    EXPECT_EQ(statement.ToText(), "0 0 m\n1 2 3 4 5 6 c\nS\n");
    EXPECT_EQ((std::vector<int>{begun, steps, ended}), (std::vector<int>{1, 2, 1}));
}

TEST(ContentStream, FaultsOfTheContentAreErrors) {
    const TempFolder folder;
    std::string clips;
    for (int i = 0; i < 100000; ++i)
        clips += "0 0 m W n ";
    std::string dictionaries = "/A ";
    std::string arrays;
    for (int i = 0; i < 200000; ++i) {
        dictionaries += "<</A(>>)";
        arrays += "[";
    }
    for (const std::string& content : {std::string("1 cm"), std::string("m S"), std::string("(a) 2 m S"),
                                       std::string("5 Do"), clips, dictionaries, arrays}) {
        SCOPED_TRACE(content.substr(0, 20));
        EXPECT_THROW(Walk(folder.Write("page.pdf", PageWith(content, "<< /XObject << >> >>"))),
                     PoDoFo::PdfError);
    }
}

}  // namespace
}  // namespace VellumLib

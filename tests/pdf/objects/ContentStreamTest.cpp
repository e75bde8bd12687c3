// A page's content as a sequence of statements.

#include "PagePdf.h"
#include "TempFolder.h"

#include "objects/CPDFDocument.h"
#include "objects/CPDFPage.h"

#include <gtest/gtest.h>

#include <sstream>

namespace VellumLib {
namespace {

const std::string kResources = "<< /XObject << /Im0 5 0 R /Fm0 6 0 R /Fm1 7 0 R >> >>";

/// A page with an image, a form and a form that is a group, objects 5 to 7.
std::string PageWith(const std::string& content, const std::string& resources = kResources) {
    const std::string form = "/Type /XObject /Subtype /Form /BBox [0 0 9 9]";
    return PagePdf("/MediaBox [0 0 100 100] /Contents 4 0 R /Resources " + resources)
        .Add(PdfStreamObject(content))
        .Add(PdfStreamObject("x", "/Type /XObject /Subtype /Image"))
        .Add(PdfStreamObject("1 1 m S", form))
        .Add(PdfStreamObject("1 1 m S /Im0 Do", form + " /Group << /S /Transparency >>"))
        .Add(kResources)
        .Text();
}

/// The statements' kinds, each with its points, and * for a clip that has a shading.
std::string Walk(const std::string& pdf) {
    const TempFolder folder;
    CPDFDocument document(QString::fromStdString(folder.Write("page.pdf", pdf)));
    std::ostringstream all;
    CPDFStatement statement;
    while (document.GetPage(0).GetNextStatement(statement) != StatementEnd) {
        all << statement.GetKind() << (statement.HasShading() ? "* " : " ");
        for (const CPDFPathPoint& point : statement.GetPoints())
            all << '(' << point.x << ' ' << point.y << ") ";
    }
    return all.str();
}

struct ContentCase {
    const char* content;
    const char* statements;
};

TEST(ContentStream, Statements) {
    const ContentCase cases[] = {
        {"1 0 0 1 10 20 cm 0 0 m 5 5 l S", "7 2 (10 20) (15 25) "},
        // A restore undoes the last matrix, and no other one.
        {"q 2 0 0 2 0 0 cm Q 1 1 m S", "8 7 9 2 (1 1) "},
        {"q 2 0 0 2 0 0 cm 1 0 0 1 5 5 cm Q 1 1 m S", "8 7 7 9 2 (2 2) "},
        {"2 0 0 2 0 0 cm BT ET 1 1 m S", "7 14 15 2 (1 1) "},
        {"0 0 10 10 re W n 1 g Q 2 2 m S", "12 (0 0) (0 10) (10 10) (10 0) 10 9 2 (2 2) "},
        {"0 0 m W n /S sh Q 0 0 m W n Q /S sh", "12* (0 0) 13 9 12 (0 0) 9 13 "},
        {"0 0 m W n 1 1 m W n /S sh Q 1 g Q 2 2 m S", "12 (0 0) 13 9 12* (1 1) 10 9 2 (2 2) "},
        {"0 0 m 1 1 2 2 3 3 c S", "2 (0 0) (3 3) "},
        {"0 0 m 2 2 3 3 v S", "2 (0 0) "},
        {"BT /F1 12 Tf 1 0 0 1 50 50 Tm (x) Tj ET", "14 1 16 1 15 "},
        {"/A << >> BDC 1 0 0 rg EMC /S sh", "4 10 5 13 "},
        {"1 2 3", ""},
        {"1 2 xyzzy", "1 "},
        {"100 0 0 50 10 10 cm /Im0 Do", "7 11 (10 10) (110 60) "},
        {"/Fm0 Do", "11 (0 0) "},
        // A group is entered, once, in the space of its Do; inside it a Do is any operator.
        {"1 0 0 1 5 5 cm /Fm1 Do /Fm1 Do", "7 11 2 (6 6) 1 11 "},
    };
    for (const ContentCase& test : cases)
        EXPECT_EQ(Walk(PageWith(test.content)), test.statements) << test.content;
    // Resources behind a reference are ignored.
    EXPECT_EQ(Walk(PageWith("/Fm1 Do", "8 0 R")), "1 ");
    // The streams of an array are read as one.
    EXPECT_EQ(Walk(PagePdf("/Contents [4 0 R 9 0 R 6 0 R 5 0 R (x)]")
                       .Add(PdfStreamObject("1 2"))
                       .Add(PdfStreamObject("m 3 4 l S"))
                       .Add("<< /Not /A_stream >>")
                       .Text()),
              "2 (1 2) (3 4) ");
    EXPECT_EQ(Walk(PagePdf("").Text()), "");
    // As deep as they come.
    EXPECT_EQ(Walk(PageWith(Repeated("0 0 m W n ", 100'000))), Repeated("12 (0 0) ", 100'000));
}

TEST(ContentStream, CurvesHaveTheirControlPoints) {
    const TempFolder folder;
    CPDFDocument document(
        QString::fromStdString(folder.Write("page.pdf", PageWith("2 0 0 2 0 0 cm 0 0 m 1 2 3 4 5 6 c S"))));
    std::string progress;
    document.GetPage(0).SetProgressBeginCallback([&] { progress += "begin "; });
    document.GetPage(0).SetProgressStepCallback([&] { progress += "step "; });
    document.GetPage(0).SetProgressEndCallback([&] { progress += "end"; });
    CPDFStatement statement;
    document.GetPage(0).GetNextStatement(statement);
    document.GetPage(0).GetNextStatement(statement);
    EXPECT_EQ(statement.GetPoints(), (std::vector<CPDFPathPoint>{{0, 0, 2, 4, 0, 0}, {10, 12, 0, 0, 6, 8}}));
    EXPECT_EQ(statement.GetByteCount(), 11U);
    EXPECT_EQ(statement.ToText(), "0 0 m\n1 2 3 4 5 6 c\nS\n");
    EXPECT_EQ(progress, "begin step step end");
}

TEST(ContentStream, FaultsOfTheContentAreErrors) {
    for (const std::string& content :
         {std::string("1 cm"), std::string("m S"), std::string("(a) 2 m S"), std::string("5 Do"),
          "/A " + Repeated("<</A(>>)", 200'000), Repeated("[", 200'000)})
        EXPECT_THROW(Walk(PageWith(content)), PoDoFo::PdfError) << content.substr(0, 20);
}

}  // namespace
}  // namespace VellumLib

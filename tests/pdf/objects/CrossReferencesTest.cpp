// Cross-references in every form, and the objects that they lead to.

#include "load/CrossReferences.h"

#include "load/DictionaryText.h"
#include "load/PageSearch.h"

#include "PdfBuilder.h"
#include "TempFolder.h"

#include <gtest/gtest.h>

namespace VellumLib {
namespace {

using namespace PoDoFo;

/// The page's media box, right side, or -1 where the file is refused.
double RightOf(const std::string& pdf, long page = 0) {
    const TempFolder folder;
    FileWindow file(folder.Write("map.pdf", pdf));
    try {
        CrossReferences references(file);
        const auto media = FindPage(references, page).media;
        return media ? (*media)[2] : 0.0;
    } catch (const PdfError&) {
        return -1.0;
    }
}

/// Catalog, tree and page in object stream 4; object stream 5 cannot be decoded.
PdfBuilder Packed(const std::string& page, const std::string& keys = "", bool deflated = true) {
    PdfBuilder file;
    for (int i = 0; i < 3; ++i)
        file.Add("null");
    const ObjectStream objects =
        MakeObjectStream({7, 8, 9}, {"<</Type/Catalog/Pages 8 0 R>>",
                                     "<</Type/Pages/Count 1/Kids[9 0 R]/MediaBox[0 0 70 90]>>",
                                     "<</Type/Page/Parent 8 0 R" + page + ">>"});
    file.AddStream(objects.keys + keys + (deflated ? "/Filter/FlateDecode" : "/Filter null"),
                   deflated ? Deflated(objects.content) : objects.content);
    file.AddStream("/N 1/First 4/Filter/FlateDecode", "not deflated");
    return file;
}

std::string WithRoot(std::string pdf) {
    return pdf.replace(pdf.rfind("/Root 1 0 R"), 11, "/Root 7 0 R");
}

TEST(CrossReferences, LeadToThePageInEveryForm) {
    const std::string table = WithPage("/MediaBox[0 0 50 60]").Finish();
    const auto start = [](const std::string& pdf) {
        return std::to_string(std::stol(pdf.substr(pdf.rfind("startxref") + 10)));
    };
    const auto update = [&](const std::string& pdf, const std::string& keys) {
        const std::string page = "3 0 obj\n<</Type/Page/Parent 2 0 R/MediaBox[0 0 80 60]>>\nendobj\n";
        char row[24];
        std::snprintf(row, sizeof row, "%010zu 00000 n \n", pdf.size());
        return pdf + page + "xref\n3 1\n" + row + "trailer\n<</Root 1 0 R/Size 4" + keys + ">>\nstartxref\n" +
               std::to_string(pdf.size() + page.size()) + "\n%%EOF\n";
    };
    const std::string packed = WithRoot(Packed("").FinishWithStream({4, 4, 4, 5}));
    const struct {
        const char* name;
        std::string pdf;
        double right;
    } files[] = {
        {"a table", table, 50},
        {"an update", update(table, "/Prev " + start(table)), 80},
        {"sections in a circle", update(table, "/Prev " + std::to_string(table.size() + 61)), -1},
        {"a broken object stream that is not needed", packed, 70},
        {"no filter at all", WithRoot(Packed("", "", false).FinishWithStream({4, 4, 4})), 70},
        {"a broken object stream that is needed", WithRoot(Packed("").FinishWithStream({4, 5, 4})), -1},
        {"an object in another place of its stream", WithRoot(Packed("").FinishWithStream({4, 4})), -1},
        {"more objects stated than there are", WithRoot(Packed("", "/N 999").FinishWithStream({4, 4, 4})),
         -1},
    };
    for (const auto& [name, pdf, right] : files)
        EXPECT_EQ(RightOf(pdf), right) << name;
    EXPECT_EQ(RightOf(table, 1), -1);
    EXPECT_EQ(RightOf(table, -1), -1);
}

TEST(CrossReferences, OfAHybridFileFindWhatItHidesFromOlderReaders) {
    // Objects 2 and 3 are free in the table; the stream that the trailer names has them.
    PdfBuilder file;
    file.Add("<</Type/Catalog/Pages 2 0 R>>");
    const std::int64_t pages = file.Position();
    file.Append("2 0 obj\n<</Type/Pages/Count 1/Kids[3 0 R]>>\nendobj\n");
    const std::int64_t page = file.Position();
    file.Append("3 0 obj\n<</Type/Page/Parent 2 0 R/MediaBox[0 0 40 60]>>\nendobj\n");
    const std::int64_t stream = file.Position();
    std::string entries;
    for (const std::int64_t place : {pages, page})
        entries += std::string("\1", 1) + static_cast<char>(place >> 8) + static_cast<char>(place) + '\0';
    file.Append("9 0 obj\n" + PdfStreamObject(entries, "/Type/XRef/Size 10/W[1 2 1]/Index[2 2]") +
                "\nendobj\n");
    EXPECT_EQ(RightOf(file.Finish("/XRefStm " + std::to_string(stream))), 40);
}

TEST(DictionaryText, KeepsTheBytesOfWhatIsNotChanged) {
    const struct {
        const char* text;
        const char* expected;
    } rows[] = {
        {"<</A 1/VP[1 [2] 3]/B(x)>>", "<</A 1/B(x)\n/VP 7 0 R\n>>"},
        {"<</VP 3 0 R/MediaBox[0 0 595.2755905 1]>>", "<</MediaBox[0 0 595.2755905 1]\n/VP 7 0 R\n>>"},
        {"<< /V#50 << /VP 1 >> /VP null % /VP\n /K (a\\)/VP 1) >>",
         "<<   % /VP\n /K (a\\)/VP 1) \n/VP 7 0 R\n>>"},
        {"<< /K <</VP 1>> /H <4f> /N /VP >>", "<< /K <</VP 1>> /H <4f> /N /VP \n/VP 7 0 R\n>>"},
    };
    for (const auto& [text, expected] : rows) {
        DictionaryText dictionary(text);
        dictionary.Set("VP", "7 0 R");
        EXPECT_EQ(dictionary.Text(), expected);
        EXPECT_EQ(dictionary.Value("VP"), "7 0 R");
    }
    for (const char* text : {"", "<<", "<</A", "<</A 1", "[1]", "<</A 1 2 (x)>>", "<<1 2>>", "<</A(x>>"})
        EXPECT_THROW(DictionaryText{text}, PdfError) << text;
}

}  // namespace
}  // namespace VellumLib

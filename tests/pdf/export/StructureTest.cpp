// Georeferencing a PDF that has a logical structure.

#include "LogCapture.h"
#include "PlainPdf.h"
#include "References.h"
#include "TempFolder.h"

#include "objects/CPDFDocument.h"
#include "objects/CPDFPage.h"

#include <MapAnchor/BMapAnchor.h>

#include <gtest/gtest.h>

#include <cstdlib>

namespace MapAnchor {
namespace {

using namespace Tellurion;
using PoDoFo::PdfObject;

/// The roles of the kids, theirs in brackets; of our element the property as well.
std::string RolesBelow(PoDoFo::PdfMemDocument& document, const PdfObject& holder) {
    const PdfObject* const kids = holder.GetIndirectKey("K");
    if (!kids || !kids->IsArray()) return "";
    std::string text;
    for (const PdfObject& kid : kids->GetArray()) {
        const PdfObject* const element =
            kid.IsReference() ? document.GetObjects().GetObject(kid.GetReference()) : &kid;
        if (!element->IsDictionary() || !element->GetDictionary().HasKey("S")) continue;
        const std::string role = element->GetDictionary().GetKeyAsName("S").GetName();
        text += (text.empty() ? "" : " ") + role;
        if (role == "Feature") {
            const PdfObject& property = element->GetIndirectKey("A")->GetIndirectKey("P")->GetArray()[0];
            text += ":" + property.GetIndirectKey("V")->GetString().GetStringUtf8();
        }
        const std::string below = RolesBelow(document, *element);
        if (!below.empty()) text += "(" + below + ")";
    }
    return text;
}

/// The roles of the tree, or its root as it is; then what has to stay.
std::string StructureOf(const std::string& file, bool roles) {
    VellumLib::CPDFDocument document(QString::fromStdString(file));
    PoDoFo::PdfMemDocument& all = document.Document();
    PdfObject* const root = all.GetCatalog()->GetIndirectKey("StructTreeRoot");
    std::string text;
    if (!root || !roles) return root ? (root->ToString(text), text) : "none";
    const PdfObject* const top = root->GetIndirectKey("K");
    if (top->IsDictionary()) text = top->GetDictionary().GetKeyAsName("S").GetName() + ": ";
    text += RolesBelow(all, top->IsDictionary() ? *top : *root);
    const PdfObject* const marks = all.GetCatalog()->GetIndirectKey("MarkInfo");
    text += marks->GetDictionary().GetKeyAsBool("UserProperties") ? " marked " : " ";
    const PdfObject* const page = document.GetPage(0).GetDictionary().Object();
    const PdfObject* const tree = root->GetIndirectKey("ParentTree");
    return text + std::to_string(page->GetDictionary().GetKeyAsLong("StructParents", -1)) + " " +
           std::to_string(tree->GetDictionary().GetKeyAsLong("Mine", -1));
}

void Save(const std::string& file, const BGeoReference& reference, bool appends) {
    BParamList params;
    params.SetInteger(BMapAnchor::kValPDFWide, 1);
    params.SetInteger(BMapAnchor::kValPDFIncremental, appends ? 1 : 0);
    BMapAnchor::Save(EReferenceType::GeoPDF, BString(file), reference, 200, 100, BString(), 0, &params);
}

bool Runs(const std::string& command) {
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

TEST(Structure, IsExtendedOrStays) {
    const TempFolder folder;
    const BGeoReference first = References::WithCorners(600000, 5200000);
    BGeoReference second = first;
    References::SetSystem(second, "32632");
    const std::string good = "/Type/StructTreeRoot/ParentTree<</Nums[]/Mine 7>>";
    const std::string paragraph = "<</Type/StructElem/S/P/P 4 0 R/K[0<</Type/MCR/MCID 1>>]>>";
    const std::string ours = "Feature:WGS 84 / UTM zone 32N";
    const struct {
        const char* name;
        std::string expected;  ///< nothing: the tree is damaged; "&" is our element
        std::string root;
        std::string element = "";  ///< nothing: a paragraph
        std::string array = "[]";
        std::string catalog = "/StructTreeRoot 4 0 R";
    } files[] = {
        {"a top element", "P: & marked 3 7", good + "/K 6 0 R"},
        {"one whose kid is content", "P: & marked 3 7", good + "/K 6 0 R", "<</S/P/K 0>>"},
        {"one whose kid is an element", "P: Span & marked 3 7", good + "/K 6 0 R", "<</S/P/K<</S/Span>>>>"},
        {"one without kids", "P: & marked 3 7", good + "/K 6 0 R", "<</S/P>>"},
        {"one in an array", "P(&) marked 3 7", good + "/K[6 0 R]"},
        {"one whose kids are apart", "P: Span & marked 3 7", good + "/K 6 0 R", "<</S/P/K 5 0 R>>",
         "[<</S/Span>>]"},
        {"one in place", "P & marked 3 7", good + "/K<</S/P/K 0>>"},
        {"several", "Span P & marked 3 7", good + "/K[<</S/Span>>6 0 R]"},
        {"several apart", "P & marked 3 7", good + "/K 5 0 R", "", "[6 0 R null]"},
        {"none", "& marked 3 7", good},
        {"one that is not there", "& marked 3 7", good + "/K null"},
        {"marks of its own", "P: & marked 3 7", good + "/K 6 0 R", "", "<</Marked true>>",
         "/StructTreeRoot 4 0 R/MarkInfo 5 0 R"},
        {"the standard allows no role of ours", "P 3 7", good + "/K[6 0 R]", "",
         PdfStreamObject("<x pdfuaid:part='1'/>"), "/StructTreeRoot 4 0 R/Metadata 5 0 R/MarkInfo<<>>"},
        {"marks that are the page", "", good + "/K 6 0 R", "", "[]", "/StructTreeRoot 4 0 R/MarkInfo 3 0 R"},
        {"an odd kid", "", good + "/K 3"},
        {"odd kids", "", good + "/K[6 0 R 3]"},
        {"an odd kid below", "", good + "/K[6 0 R]", "<</S/P/K(x)>>"},
        {"a circle", "", good + "/K 6 0 R", "<</S/P/K 5 0 R>>", "<</S/Span/K[<</S/P/K 6 0 R>>]>>"},
        {"a circle through the root", "", good + "/K 6 0 R", "<</S/P/K 4 0 R>>"},
        {"another root", "", "/Type/Pages"},
        {"a root in place", "", good, "", "[]", "/StructTreeRoot<</Type/StructTreeRoot>>"},
    };
    for (const auto& [name, expected, root, element, array, catalog] : files)
        for (const bool appends : {true, false}) {
            SCOPED_TRACE(std::string(name) + (appends ? ", appended" : ", whole"));
            const std::string file = folder.Write(
                "map.pdf",
                PlainPdf({"<</Type/Catalog/Pages 2 0 R" + catalog + ">>",
                          "<</Type/Pages/Kids[3 0 R]/Count 1>>",
                          "<</Type/Page/Parent 2 0 R/MediaBox[0 0 200 100]/Resources<<>>/StructParents 3>>",
                          "<<" + root + ">>", array, element.empty() ? paragraph : element}));
            const std::string before = StructureOf(file, false);
            const LogCapture log;
            Save(file, first, appends);
            Save(file, second, appends);  // renews the element
            std::string wanted = expected.empty() ? before : expected;
            if (const std::size_t place = wanted.find('&'); place != std::string::npos)
                wanted.replace(place, 1, ours);
            EXPECT_EQ(StructureOf(file, !expected.empty()), wanted);
            EXPECT_EQ(log.lines.size(), expected.empty() ? 2U : 0U);
            for (const std::string& line : log.lines)
                EXPECT_EQ(line.substr(0, 12), "pdf-tagged: ") << line;
            EXPECT_TRUE(!Runs("qpdf --version") || Runs("qpdf --check '" + file + "'"));
        }
}

TEST(Structure, WhatOtherProgramsKeepInTheFileStays) {
    const TempFolder folder;
    const std::string file = folder.Write(
        "map.pdf",
        PlainPdf({"<</Type/Catalog/Pages 2 0 R/PieceInfo 4 0 R>>", "<</Type/Pages/Kids[3 0 R]/Count 1>>",
                  "<</Type/Page/Parent 2 0 R/MediaBox[0 0 200 100]>>", "<</Other<</Private 5>>>>"}));
    Save(file, References::WithCorners(600000, 5200000), false);
    VellumLib::CPDFDocument document(QString::fromStdString(file));
    const PdfObject* const pieces = document.Document().GetCatalog()->GetIndirectKey("PieceInfo");
    EXPECT_TRUE(pieces->GetDictionary().HasKey("Other"));
    EXPECT_TRUE(pieces->GetDictionary().HasKey("RastrelSpatialPDF"));
}

}  // namespace
}  // namespace MapAnchor

// The PDF layer on real files: every page is walked, and a file that is saved again
// is as sound as before and looks the same.

#include "objects/CCorruptedPDFException.h"
#include "objects/CPDFDocument.h"
#include "objects/CPDFPage.h"

#include "Corpus.h"

#include <sys/wait.h>
#include <cstdlib>
#include <set>

namespace VellumLib {
namespace {

using MapAnchor::Path;

/// Files that cannot be opened and walked to the end: encrypted, with broken or circular
/// cross-references, without the start of a PDF, an object or a sound stream.
const std::set<std::string> kUnreadable = {"040669.pdf",
                                           "226387.pdf",
                                           "303226.pdf",
                                           "367594.pdf",
                                           "byte_enc.pdf",
                                           "enc-R3,V2.pdf",
                                           "inspect.pdf",
                                           "invalid_srs.pdf",
                                           "issue-149.pdf",
                                           "lorem-ipsum-openprintcopypw.pdf",
                                           "missing_stream.pdf",
                                           "short-O-U.pdf",
                                           "lorem-ipsum-plus-image-updated-opencopyprintpw.pdf"};

/// Calls the check for every PDF, and counts those of which it is true.
int CountPdfs(const std::function<bool(const Path&)>& check) {
    int count = 0;
    for (const char* folder : {"pdf", "pdf-plain"})
        for (const Path& file : MapAnchor::FilesOf(folder, ".pdf")) {
            SCOPED_TRACE(file.filename());
            count += check(file) ? 1 : 0;
        }
    return count;
}

/// "" for success, "corrupt", or "error <number>" by PoDoFo's numbers.
std::string Outcome(const std::function<void()>& act) {
    try {
        act();
    } catch (const CCorruptedPDFException&) {
        return "corrupt";
    } catch (const PoDoFo::PdfError& error) {
        return "error " + std::to_string(error.GetError());
    }
    return "";
}

QString NameOf(const Path& file) {
    return QString::fromStdString(file.string());
}

TEST(PdfCorpus, EveryPageIsWalked) {
    int statements = 0;
    const int files = CountPdfs([&](const Path& file) {
        const std::string outcome = Outcome([&] {
            CPDFDocument document(NameOf(file));
            CPDFStatement statement;
            for (int page = 0; page < document.Document().GetPageCount(); ++page)
                while (document.GetPage(page).GetNextStatement(statement) != StatementEnd)
                    ++statements;
        });
        EXPECT_EQ(outcome.empty(), kUnreadable.count(file.filename()) == 0) << outcome;
        return true;
    });
    EXPECT_GT(files, 50);
    EXPECT_GT(statements, 10000);
}

std::string BoxesOf(CPDFDocument& document, int index) {
    std::string boxes;
    for (const auto getter : {&CPDFPage::GetMediaBox, &CPDFPage::GetCropBox, &CPDFPage::GetBleedBox,
                              &CPDFPage::GetTrimBox, &CPDFPage::GetArtBox})
        boxes += ";" + Outcome([&] {
                     for (const double number : (document.GetPage(index).*getter)())
                         boxes += std::to_string(number) + " ";
                 });
    return boxes;
}

TEST(PdfCorpus, WhatLoadsWithoutTheGuardLoadsWithIt) {
    PoDoFo::PdfError::EnableDebug(false);
    PoDoFo::PdfError::EnableLogging(false);
    const int loaded = CountPdfs([](const Path& file) {
        PoDoFo::PdfMemDocument plain;
        if (kUnreadable.count(file.filename()) != 0) return false;
        EXPECT_EQ(Outcome([&] { plain.Load(file.c_str()); }), "");
        EXPECT_EQ(Outcome([&] {
                      CPDFDocument guarded(NameOf(file));
                      EXPECT_EQ(guarded.Document().GetPageCount(), plain.GetPageCount());
                      for (int page = 0; page < plain.GetPageCount(); ++page)
                          EXPECT_TRUE(plain.GetPage(page) && BoxesOf(guarded, page).size() > 5);
                  }),
                  "");
        return true;
    });
    EXPECT_GT(loaded, 40);
}

/// Boxes, dialect and maps of the first page, or what it failed with.
std::string FirstPage(const Path& file, EPDFExtent extent, std::size_t& objects) {
    std::string all;
    const std::string outcome = Outcome([&] {
        CPDFDocument document(NameOf(file), extent);
        objects = document.Document().GetObjects().GetSize();
        all = BoxesOf(document, 0);
        all += Outcome([&] { all += std::to_string(document.GetPage(0).GetSpatialKind()); });
        for (const char* key : {"VP", "LGIDict"}) {
            std::string text;
            const auto* const value = document.GetPage(0).GetDictionary().GetKey(key);
            if (value) value->ToString(text, PoDoFo::ePdfWriteMode_Compact);
            all += text;
        }
    });
    return all + outcome;
}

TEST(PdfCorpus, TheFirstPageIsTheFirstPageOfTheWhole) {
    const int narrowed = CountPdfs([](const Path& file) {
        // The contents of its page are not a stream, which the first page alone does not read.
        if (file.filename() == "missing_stream.pdf") return false;
        std::size_t whole = 0, alone = 0;
        const std::string expected = FirstPage(file, EPDFExtent::Whole, whole);
        EXPECT_EQ(FirstPage(file, EPDFExtent::FirstPage, alone), expected);
        return alone < whole;
    });
    EXPECT_GT(narrowed, 20);
}

int RunCommand(const std::string& command) {
    const int status = std::system((command + " >/dev/null 2>&1").c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// What a save has to keep: the first page as pixels, metadata, the catalog's keys, and
/// the number of annotations and outlines.
std::string Inventory(const Path& file) {
    const TempFolder folder;
    EXPECT_EQ(RunCommand("pdftoppm -singlefile -r 18 '" + file.string() + "' '" + folder / "page" + "'"), 0);
    CPDFDocument document(NameOf(file));
    std::string all = TempFolder::Slurp(folder / "page.ppm") + document.GetMetadata().toStdString();
    for (const auto& [key, value] : document.GetCatalog().Container().GetKeys())
        all += " " + key.GetName();
    for (int page = 0; page < document.Document().GetPageCount(); ++page) {
        const auto* const notes = document.Document().GetPage(page)->GetObject()->GetIndirectKey("Annots");
        all += " " + std::to_string(notes && notes->IsArray() ? notes->GetArray().size() : 0);
    }
    const auto* item = document.Document().GetCatalog()->GetIndirectKey("Outlines");
    for (item = item ? item->GetIndirectKey("First") : nullptr; item && all.size() < 10'000'000;
         item = item->GetIndirectKey("Next"))
        if (const auto* const title = item->GetIndirectKey("Title"); title && title->IsString())
            all += title->GetString().GetStringUtf8();
    return all;
}

TEST(PdfCorpus, ASavedFileIsAsSoundAsBeforeAndLooksTheSame) {
    if (RunCommand("qpdf --version") != 0 || RunCommand("pdftoppm -v") != 0)
        GTEST_SKIP() << "needs qpdf and pdftoppm";
    const int saved = CountPdfs([](const Path& file) {
        if (kUnreadable.count(file.filename()) != 0) return false;
        const TempFolder folder;
        const std::string out = folder / "out.pdf";
        EXPECT_EQ(Outcome([&] { CPDFDocument(NameOf(file)).Write(NameOf(out)); }), "");
        EXPECT_LE(RunCommand("qpdf --check '" + out + "'"),
                  RunCommand("qpdf --check '" + file.string() + "'"));
        EXPECT_TRUE(Inventory(out) == Inventory(file));
        return true;
    });
    EXPECT_GT(saved, 40);
}

}  // namespace
}  // namespace VellumLib

// The PDF layer on real files: every page is walked, and a file that is saved again
// is as sound as before and looks the same.

#include "objects/CCorruptedPDFException.h"
#include "objects/CPDFDocument.h"
#include "objects/CPDFPage.h"

#include "Corpus.h"

#include <sys/wait.h>
#include <cstdlib>

namespace VellumLib {
namespace {

using std::filesystem::path;

/// Hands every PDF to the check, and counts those of which it is true.
int CountPdfs(const std::function<bool(const path&)>& check) {
    int count = 0;
    for (const char* folder : {"pdf", "pdf-plain"})
        for (const path& file : MapAnchor::FilesOf(folder, ".pdf")) {
            SCOPED_TRACE(file.filename());
            count += check(file) ? 1 : 0;
        }
    return count;
}

/// What came of it: "" for success, "corrupt", "error <number>" by PoDoFo's numbers.
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

QString PathOf(const path& file) {
    return QString::fromStdString(file.string());
}

int WalkAllPages(CPDFDocument& document) {
    int statements = 0;
    for (int page = 0; page < document.Document().GetPageCount(); ++page) {
        CPDFStatement statement;
        while (document.GetPage(page).GetNextStatement(statement) != StatementEnd)
            ++statements;
    }
    return statements;
}

int RunCommand(const std::string& command) {
    const int status = std::system((command + " >/dev/null 2>&1").c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// The first page, as pixels.
std::string Picture(const TempFolder& folder, const std::string& pdf) {
    if (RunCommand("pdftoppm -singlefile -r 18 '" + pdf + "' '" + folder / "page" + "'") != 0)
        return "not rendered";
    return TempFolder::Slurp(folder / "page.ppm");
}

// Files that cannot be opened and walked to the end, and why.
const std::map<std::string, const char*> kUnreadable = {
    {"040669.pdf", "its cross-references are broken"},
    {"226387.pdf", "its cross-references are broken"},
    {"303226.pdf", "its cross-references are broken"},
    {"367594.pdf", "a content stream is no sound Flate data"},
    {"byte_enc.pdf", "encrypted"},
    {"enc-R3,V2.pdf", "encrypted"},
    {"inspect.pdf", "does not start as a PDF"},
    {"invalid_srs.pdf", "the parser finds no object where it expects one"},
    {"issue-149.pdf", "its cross-reference tables run in a circle"},
    {"lorem-ipsum-openprintcopypw.pdf", "encrypted"},
    {"lorem-ipsum-plus-image-updated-opencopyprintpw.pdf", "encrypted"},
    {"missing_stream.pdf", "a reference that is followed late leads to no object"},
    {"short-O-U.pdf", "encrypted"},
};

TEST(PdfCorpus, EveryPageIsWalked) {
    int statements = 0;
    const int files = CountPdfs([&](const path& file) {
        const std::string outcome = Outcome([&] {
            CPDFDocument document(PathOf(file));
            statements += WalkAllPages(document);
        });
        EXPECT_EQ(outcome.empty(), kUnreadable.count(file.filename()) == 0) << outcome;
        return true;
    });
    EXPECT_GT(files, 50);
    EXPECT_GT(statements, 10000);
}

// The contents of its page are no stream: the parser by itself fails when it takes the
// page, and the first page alone does not read them.
const char* const kNoContents = "missing_stream.pdf";

std::string BoxesOf(CPDFDocument& document, int index) {
    std::string boxes;
    for (const auto getter : {&CPDFPage::GetMediaBox, &CPDFPage::GetCropBox, &CPDFPage::GetBleedBox,
                              &CPDFPage::GetTrimBox, &CPDFPage::GetArtBox}) {
        boxes += Outcome([&] {
            for (const double number : (document.GetPage(index).*getter)())
                boxes += std::to_string(number) + " ";
        });
        boxes += "; ";
    }
    return boxes;
}

// The parser by itself, without anything around it.
std::string PlainBoxes(PoDoFo::PdfMemDocument& document, int index) {
    PoDoFo::PdfPage* const page = document.GetPage(index);
    const auto* const box = page ? page->GetObject()->GetDictionary().GetKey("MediaBox") : nullptr;
    std::string numbers;
    if (box && box->IsArray())
        for (const PoDoFo::PdfObject& number : box->GetArray())
            numbers += std::to_string(number.GetReal()) + " ";
    return numbers;
}

TEST(PdfCorpus, WhatLoadsWithoutTheGuardLoadsWithIt) {
    PoDoFo::PdfError::EnableDebug(false);
    PoDoFo::PdfError::EnableLogging(false);
    const int loaded = CountPdfs([](const path& file) {
        const auto known = kUnreadable.find(file.filename());
        const bool encrypted = known != kUnreadable.end() && known->second == std::string("encrypted");
        if (encrypted || file.filename() == kNoContents) return false;
        PoDoFo::PdfMemDocument plain;
        if (!Outcome([&] { plain.Load(file.c_str()); }).empty()) return false;
        const std::string outcome = Outcome([&] {
            CPDFDocument guarded(PathOf(file));
            ASSERT_EQ(guarded.Document().GetPageCount(), plain.GetPageCount());
            for (int page = 0; page < plain.GetPageCount(); ++page) {
                const std::string boxes = BoxesOf(guarded, page);
                EXPECT_EQ(boxes.substr(0, boxes.find(';')), PlainBoxes(plain, page));
            }
        });
        EXPECT_EQ(outcome, "");
        return true;
    });
    EXPECT_GT(loaded, 40);
}

/// Boxes, dialect and maps of the first page, or what it failed with.
std::string FirstPage(const path& file, EPDFExtent extent, std::size_t& objects) {
    std::string all;
    all += Outcome([&] {
        CPDFDocument document(PathOf(file), extent);
        objects = document.Document().GetObjects().GetSize();
        all = BoxesOf(document, 0);
        all += Outcome([&] { all += std::to_string(document.GetPage(0).GetSpatialKind()); });
        for (const char* key : {"VP", "LGIDict"})
            if (const auto* const value = document.GetPage(0).GetDictionary().GetKey(key)) {
                std::string text;
                value->ToString(text, PoDoFo::ePdfWriteMode_Compact);
                all += text;
            }
    });
    return all;
}

TEST(PdfCorpus, TheFirstPageIsTheFirstPageOfTheWhole) {
    const int narrowed = CountPdfs([](const path& file) {
        if (file.filename() == kNoContents) return false;
        std::size_t whole = 0;
        std::size_t alone = 0;
        const std::string expected = FirstPage(file, EPDFExtent::Whole, whole);
        EXPECT_EQ(FirstPage(file, EPDFExtent::FirstPage, alone), expected);
        return alone < whole;
    });
    EXPECT_GT(narrowed, 20);
}

/// What a save has to keep beside the look of the pages.
std::string Inventory(const path& file) {
    CPDFDocument document(PathOf(file));
    std::string all = document.GetMetadata().toStdString();
    for (const auto& [key, value] : document.GetCatalog().Container().GetKeys())
        all += " " + key.GetName();
    for (int page = 0; page < document.Document().GetPageCount(); ++page) {
        const auto* const annotations =
            document.Document().GetPage(page)->GetObject()->GetIndirectKey("Annots");
        all +=
            " " + std::to_string(annotations && annotations->IsArray() ? annotations->GetArray().size() : 0);
    }
    const auto* const outlines = document.Document().GetCatalog()->GetIndirectKey("Outlines");
    for (const auto* item = outlines ? outlines->GetIndirectKey("First") : nullptr;
         item && all.size() < 100'000; item = item->GetIndirectKey("Next"))
        if (const auto* const title = item->GetIndirectKey("Title"); title && title->IsString())
            all += title->GetString().GetStringUtf8();
    return all;
}

TEST(PdfCorpus, ASavedFileIsAsSoundAsBeforeAndLooksTheSame) {
    if (RunCommand("qpdf --version") != 0 || RunCommand("pdftoppm -v") != 0)
        GTEST_SKIP() << "needs qpdf and pdftoppm";
    const int saved = CountPdfs([](const path& file) {
        const TempFolder folder;
        const std::string out = folder / "out.pdf";
        const std::string opened = Outcome([&] { CPDFDocument document(PathOf(file)); });
        if (!opened.empty() || kUnreadable.count(file.filename())) return false;
        EXPECT_EQ(Outcome([&] { CPDFDocument(PathOf(file)).Write(PathOf(out)); }), "");
        EXPECT_LE(RunCommand("qpdf --check '" + out + "'"),
                  RunCommand("qpdf --check '" + file.string() + "'"));
        EXPECT_EQ(Inventory(out), Inventory(file));
        EXPECT_TRUE(Picture(folder, out) == Picture(folder, file.string()));
        return true;
    });
    EXPECT_GT(saved, 40);
}

}  // namespace
}  // namespace VellumLib

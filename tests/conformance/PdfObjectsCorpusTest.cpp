// The PDF layer on real files: every page is walked, and a file that is saved again
// is as sound as before and looks the same.

#include "TempFolder.h"

#include "objects/CCorruptedPDFException.h"
#include "objects/CPDFDocument.h"
#include "objects/CPDFPage.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace VellumLib {
namespace {

std::vector<std::filesystem::path> CorpusPdfs() {
    std::set<std::filesystem::path> files;
    for (const char* folder : {"pdf", "pdf-plain"})
        for (const auto& entry :
             std::filesystem::directory_iterator(std::filesystem::path(MAPANCHOR_CORPUS) / folder))
            if (entry.path().extension() == ".pdf") files.insert(entry.path());
    return {files.begin(), files.end()};
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

QString PathOf(const std::filesystem::path& path) {
    return QString::fromStdString(path.string());
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

std::string Pictures(const TempFolder& folder, const std::string& pdf) {
    if (RunCommand("pdftoppm -r 18 -l 3 '" + pdf + "' '" + folder / "page" + "'") != 0) return "not rendered";
    std::map<std::string, std::string> pages;
    for (const auto& entry : std::filesystem::directory_iterator(folder / ""))
        if (entry.path().extension() == ".ppm") {
            pages[entry.path().filename()] = TempFolder::Slurp(entry.path());
            std::filesystem::remove(entry.path());
        }
    std::string all;
    for (const auto& [name, pixels] : pages)
        all += pixels;
    return all;
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
    const auto files = CorpusPdfs();
    ASSERT_GT(files.size(), 50U);
    int statements = 0;
    for (const auto& file : files) {
        SCOPED_TRACE(file.filename());
        const std::string outcome = Outcome([&] {
            CPDFDocument document(PathOf(file));
            statements += WalkAllPages(document);
        });
        EXPECT_EQ(outcome.empty(), kUnreadable.count(file.filename()) == 0) << outcome;
    }
    EXPECT_GT(statements, 10000);
}

TEST(PdfCorpus, ASavedFileIsAsSoundAsBeforeAndLooksTheSame) {
    if (RunCommand("qpdf --version") != 0 || RunCommand("pdftoppm -v") != 0)
        GTEST_SKIP() << "needs qpdf and pdftoppm";
    int saved = 0;
    for (const auto& file : CorpusPdfs()) {
        SCOPED_TRACE(file.filename());
        const TempFolder folder;
        const std::string out = folder / "out.pdf";
        const std::string opened = Outcome([&] { CPDFDocument document(PathOf(file)); });
        if (!opened.empty() || kUnreadable.count(file.filename())) continue;
        EXPECT_EQ(Outcome([&] { CPDFDocument(PathOf(file)).Write(PathOf(out)); }), "");
        EXPECT_LE(RunCommand("qpdf --check '" + out + "'"),
                  RunCommand("qpdf --check '" + file.string() + "'"));
        EXPECT_TRUE(Pictures(folder, out) == Pictures(folder, file.string()));
        ++saved;
    }
    EXPECT_GT(saved, 40);
}

}  // namespace
}  // namespace VellumLib

#include "objects/GuardedLoad.h"

#include "objects/CPDFDocument.h"
#include "objects/CPDFPage.h"

#include <sys/stat.h>

#include <podofo/podofo.h>

#include <gtest/gtest.h>

#include "PdfBuilder.h"
#include "TempFolder.h"

#include <cstdint>
#include <filesystem>
#include <fstream>

namespace VellumLib {
namespace {

using namespace PoDoFo;

std::size_t OpenFiles() {
    const std::filesystem::directory_iterator entries("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

EPdfError CodeOf(const std::string& path) {
    try {
        PdfMemDocument document;
        LoadGuarded(document, path);
        return ePdfError_ErrOk;
    } catch (const PdfError& error) {
        return error.GetError();
    }
}

std::string SmallFile() {
    PdfBuilder file;
    file.AddPage("/VP[<</Type/Viewport/BBox[1 2 3 4]>>]/Contents 4 0 R");
    file.AddStream("", "0 0 m");
    return file.Finish();
}

TEST(GuardedLoad, ReadsObjectsAndStreamsAfterTheLoad) {
    const TempFolder folder;
    PdfMemDocument document;
    LoadGuarded(document, folder.Write("small.pdf", SmallFile()));
    ASSERT_EQ(document.GetPageCount(), 1);
    PdfPage* const page = document.GetPage(0);
    EXPECT_EQ(page->GetMediaBox().GetWidth(), 100);
    EXPECT_EQ(page->GetObject()->GetDictionary().GetKey("VP")->GetArray().size(), 1U);
    PdfObject* const contents = document.GetObjects().GetObject(PdfReference(4, 0));
    PdfRefCountedBuffer buffer;
    PdfBufferOutputStream stream(&buffer);
    contents->GetStream()->GetFilteredCopy(&stream);
    EXPECT_EQ(std::string(buffer.GetBuffer(), static_cast<std::size_t>(stream.GetLength())), "0 0 m");
}

TEST(GuardedLoad, ReadsWhatAnObjectStreamHolds) {
    PdfBuilder file;
    file.AddPage("/VP 6 0 R");
    const ObjectStream stream = MakeObjectStream({6, 7}, {"[7 0 R]", "<</BBox[1 2 3 4]>>"});
    file.AddStream(stream.keys + "/Filter/FlateDecode", Deflated(stream.content));
    const TempFolder folder;
    PdfMemDocument document;
    LoadGuarded(document, folder.Write("compressed.pdf", file.FinishWithStream({4, 4})));
    EXPECT_TRUE(document.GetPage(0)->GetObject()->GetIndirectKey("VP")->IsArray());
    EXPECT_TRUE(document.GetObjects().GetObject(PdfReference(7, 0))->GetDictionary().HasKey("BBox"));
}

TEST(GuardedLoad, KeepsTheFileOpenForTheDocumentOnly) {
    const TempFolder folder;
    const std::string path = folder.Write("small.pdf", SmallFile());
    const std::size_t before = OpenFiles();
    {
        PdfMemDocument document;
        LoadGuarded(document, path);
        EXPECT_EQ(OpenFiles(), before + 1);
    }
    EXPECT_EQ(OpenFiles(), before);
    EXPECT_NE(CodeOf(folder.Write("bad.pdf", SmallFile().substr(20))), ePdfError_ErrOk);
    EXPECT_EQ(OpenFiles(), before);
}

TEST(GuardedLoad, SurvivesAFileThatIsCutShortWhileItIsOpen) {
    PdfBuilder file;
    file.AddPage("/VP 4 0 R");
    file.Append(Repeated(" ", 200'000));
    file.Add("[1 2]");
    file.Append(Repeated(" ", 200'000));
    const TempFolder folder;
    const std::string path = folder.Write("cut.pdf", file.Finish());
    PdfMemDocument document;
    LoadGuarded(document, path);
    std::filesystem::resize_file(path, 1'000);
    EXPECT_THROW(document.GetObjects().GetObject(PdfReference(4, 0))->IsArray(), PdfError);
}

TEST(GuardedLoad, SaysWhichFileIsMissing) {
    const TempFolder folder;
    PdfMemDocument document;
    try {
        LoadGuarded(document, folder / "none.pdf");
        FAIL();
    } catch (const PdfError& error) {
        EXPECT_EQ(error.GetError(), ePdfError_FileNotFound);
        EXPECT_EQ(error.GetCallstack().back().GetInformation(), folder / "none.pdf");
    }
}

TEST(GuardedLoad, RefusesWhatIsNoFile) {
    const TempFolder folder;
    const std::string pipe = folder / "pipe.pdf";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(CodeOf(pipe), ePdfError_NoPdfFile);
    EXPECT_EQ(CodeOf(folder / "."), ePdfError_NoPdfFile);
    EXPECT_EQ(CodeOf(""), ePdfError_InvalidHandle);
}

TEST(GuardedLoad, LeavesTheParsersSettingsAsTheyWere) {
    const TempFolder folder;
    PdfError::EnableLogging(true);
    const long largest = PdfParser::GetMaxObjectCount();
    EXPECT_EQ(CodeOf(folder.Write("small.pdf", SmallFile())), ePdfError_ErrOk);
    EXPECT_NE(CodeOf(folder.Write("bad.pdf", "%PDF-1.4\n%%EOF")), ePdfError_ErrOk);
    EXPECT_EQ(PdfParser::GetMaxObjectCount(), largest);
    EXPECT_TRUE(PdfError::LoggingEnabled());
}

// The parser counts its recursion for the thread, and loses count where it gives up.
TEST(GuardedLoad, HundredsOfBadFilesDoNotSpoilAGoodOne) {
    PdfBuilder deep;
    deep.AddPage("/A " + Nested("[", "]", 400));
    PdfBuilder chain;
    chain.AddPage();
    std::int64_t previous = 0;
    for (int i = 0; i < 200; ++i) {
        const std::int64_t start = chain.Position();
        chain.Append(chain.Table() + "trailer\n<</Root 1 0 R/Size 4/Prev " + std::to_string(previous) +
                     ">>\n");
        previous = start;
    }
    const TempFolder folder;
    const std::string deep_path = folder.Write("deep.pdf", deep.Finish());
    const std::string chain_path = folder.Write("chain.pdf", chain.End(previous));
    for (int i = 0; i < 300; ++i) {
        EXPECT_NE(CodeOf(chain_path), ePdfError_ErrOk);
        PdfMemDocument document;
        LoadGuarded(document, deep_path);
        EXPECT_THROW(document.GetPage(0), PdfError);
    }
    EXPECT_EQ(CodeOf(folder.Write("small.pdf", SmallFile())), ePdfError_ErrOk);
}

// A chain of nodes above the page; `back` is what the last of them has for a kid.
std::string ChainOfNodes(int depth, int back = 0) {
    PdfBuilder file;
    file.Add("<</Type/Catalog/Pages 2 0 R>>");
    for (int i = 0; i < depth; ++i) {
        const int kid = back > 0 && i + 1 == depth ? back : i + 3;
        file.Add("<</Type/Pages/Count 1/Kids[" + std::to_string(kid) + " 0 R]>>");
    }
    file.Add("<</Type/Page/MediaBox[0 0 100 100]>>" + std::string(600, ' '));
    return file.Finish();
}

struct TreeCase {
    const char* name;
    std::string file;
    bool found;
};

// Found after hundreds of searches that failed on the same thread.
TEST(PageTree, IsSearchedAsDeepAsTheThreadCanGoWithoutLosingALevel) {
    const TreeCase cases[] = {
        {"too_deep", ChainOfNodes(300), false},
        {"back_to_the_root", ChainOfNodes(60, 2), false},
        {"back_to_itself", ChainOfNodes(60, 61), false},
        {"deep", ChainOfNodes(190), true},
        {"flat", SmallFile(), true},
    };
    for (const TreeCase& row : cases) {
        SCOPED_TRACE(row.name);
        const TempFolder folder;
        const QString path = QString::fromStdString(folder.Write("tree.pdf", row.file));
        for (int i = 0; i < (row.found ? 1 : 300); ++i) {
            CPDFDocument document(path);
            if (row.found)
                EXPECT_EQ(document.GetPage(0).GetMediaBox().at(2), 100.0);
            else
                EXPECT_THROW(document.GetPage(0), PdfError);
        }
    }
}

TEST(GuardedLoad, OpensAHundredThousandObjects) {
    PdfBuilder file;
    file.AddPage();
    for (int i = 0; i < 100'000; ++i)
        file.Add("<</Type/Annot/Rect[0 0 " + std::to_string(i) + " 1]/Contents(text)>>");
    const TempFolder folder;
    PdfMemDocument document;
    LoadGuarded(document, folder.Write("many.pdf", file.Finish()));
    for (const PdfObject* object : document.GetObjects())
        ASSERT_TRUE(object->IsDictionary());
}

TEST(GuardedLoad, OpensAHundredThousandCompressedObjects) {
    constexpr int kStreams = 1'000;
    constexpr int kEach = 100;
    PdfBuilder file;
    file.AddPage();
    std::vector<int> compressed;
    for (int i = 0; i < kStreams; ++i) {
        std::vector<int> numbers;
        for (int k = 0; k < kEach; ++k)
            numbers.push_back(3 + kStreams + 2 + i * kEach + k);
        const ObjectStream stream =
            MakeObjectStream(numbers, std::vector<std::string>(kEach, "<</Type/Annot/Rect[0 0 1 1]>>"));
        const int number = file.AddStream(stream.keys + "/Filter/FlateDecode", Deflated(stream.content));
        compressed.insert(compressed.end(), kEach, number);
    }
    const TempFolder folder;
    PdfMemDocument document;
    LoadGuarded(document, folder.Write("many.pdf", file.FinishWithStream(compressed)));
    EXPECT_GE(document.GetObjects().GetSize(), 100'000U);
}

std::uint64_t BytesReadSoFar() {
    std::ifstream counters("/proc/self/io");
    std::string key;
    std::uint64_t value = 0;
    while (counters >> key >> value)
        if (key == "rchar:") return value;
    return 0;
}

TEST(GuardedLoad, DoesNotReadStreams) {
    PdfBuilder file;
    file.AddPage();
    file.AddStream("", Repeated("0123456789abcdef", 1'000'000));
    const TempFolder folder;
    const std::string path = folder.Write("large.pdf", file.Finish());
    const std::uint64_t before = BytesReadSoFar();
    ASSERT_GT(before, 0U);
    PdfMemDocument document;
    LoadGuarded(document, path);
    document.GetPage(0)->GetMediaBox();
    EXPECT_LT(BytesReadSoFar() - before, 500'000U);
}

}  // namespace
}  // namespace VellumLib

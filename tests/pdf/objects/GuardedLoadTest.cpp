#include "load/GuardedLoad.h"

#include "objects/CPDFDocument.h"
#include "objects/CPDFPage.h"

#include <sys/stat.h>

#include <podofo/podofo.h>

#include <gtest/gtest.h>

#include "PdfBuilder.h"
#include "TempFolder.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <numeric>

namespace VellumLib {
namespace {

using namespace PoDoFo;

std::size_t OpenFiles() {
    const std::filesystem::directory_iterator entries("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

EPdfError CodeOf(const std::string& path, std::string* information = nullptr) {
    try {
        LoadGuarded(path);
        return ePdfError_ErrOk;
    } catch (const PdfError& error) {
        if (information) *information = error.GetCallstack().back().GetInformation();
        return error.GetError();
    }
}

std::string SmallFile() {
    PdfBuilder file = WithPage("/VP[<</Type/Viewport/BBox[1 2 3 4]>>]/Contents 4 0 R");
    file.AddStream("", "0 0 m");
    return file.Finish();
}

TEST(GuardedLoad, ReadsObjectsAndStreamsAfterTheLoad) {
    const TempFolder folder;
    const auto small = LoadGuarded(folder.Write("small.pdf", SmallFile()));
    PdfPage* const page = small->GetPage(0);
    EXPECT_EQ(small->GetPageCount(), 1);
    EXPECT_EQ(page->GetMediaBox().GetWidth(), 100);
    EXPECT_EQ(page->GetObject()->GetDictionary().GetKey("VP")->GetArray().size(), 1U);
    PdfRefCountedBuffer buffer;
    PdfBufferOutputStream stream(&buffer);
    small->GetObjects().GetObject(PdfReference(4, 0))->GetStream()->GetFilteredCopy(&stream);
    EXPECT_EQ(std::string(buffer.GetBuffer(), static_cast<std::size_t>(stream.GetLength())), "0 0 m");

    PdfBuilder file = WithPage("/VP 6 0 R");
    const ObjectStream objects = MakeObjectStream({6, 7}, {"[7 0 R]", "<</BBox[1 2 3 4]>>"});
    file.AddStream(objects.keys + "/Filter/FlateDecode", Deflated(objects.content));
    const auto compressed = LoadGuarded(folder.Write("compressed.pdf", file.FinishWithStream({4, 4})));
    EXPECT_TRUE(compressed->GetPage(0)->GetObject()->GetIndirectKey("VP")->IsArray());
    EXPECT_TRUE(compressed->GetObjects().GetObject(PdfReference(7, 0))->GetDictionary().HasKey("BBox"));
}

TEST(GuardedLoad, KeepsTheFileOpenForTheDocumentOnly) {
    const TempFolder folder;
    const std::string path = folder.Write("small.pdf", SmallFile());
    const std::size_t before = OpenFiles();
    {
        const auto loaded = LoadGuarded(path);
        EXPECT_EQ(OpenFiles(), before + 1);
    }
    EXPECT_NE(CodeOf(folder.Write("bad.pdf", SmallFile().substr(20))), ePdfError_ErrOk);
    EXPECT_EQ(OpenFiles(), before);
}

TEST(GuardedLoad, SurvivesAFileThatIsCutShortWhileItIsOpen) {
    PdfBuilder file = WithPage("/VP 4 0 R");
    file.Append(Repeated(" ", 200'000));
    file.Add("[1 2]");
    file.Append(Repeated(" ", 200'000));
    const TempFolder folder;
    const std::string path = folder.Write("cut.pdf", file.Finish());
    const auto loaded = LoadGuarded(path);
    std::filesystem::resize_file(path, 1'000);
    EXPECT_THROW(loaded->GetObjects().GetObject(PdfReference(4, 0))->IsArray(), PdfError);
}

TEST(GuardedLoad, RefusesWhatIsNoFile) {
    const TempFolder folder;
    const std::string pipe = folder / "pipe.pdf";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::string named;
    EXPECT_EQ(CodeOf(pipe, &named), ePdfError_NoPdfFile);
    EXPECT_EQ(named, pipe + " is not a regular file");
    EXPECT_EQ(CodeOf(folder / "."), ePdfError_NoPdfFile);
    EXPECT_EQ(CodeOf(""), ePdfError_InvalidHandle);
    EXPECT_EQ(CodeOf(folder / "none.pdf", &named), ePdfError_FileNotFound);
    EXPECT_EQ(named, folder / "none.pdf");
}

TEST(GuardedLoad, LeavesTheParsersSettingsAsTheyWere) {
    const TempFolder folder;
    PdfError::EnableLogging(true);
    const long largest = PdfParser::GetMaxObjectCount();
    EXPECT_EQ(CodeOf(folder.Write("small.pdf", SmallFile())), ePdfError_ErrOk);
    EXPECT_NE(CodeOf(folder.Write("bad.pdf", "%PDF-1.4\n%%EOF")), ePdfError_ErrOk);
    CPDFDocument(QString::fromStdString(folder / "small.pdf"))
        .Write(QString::fromStdString(folder / "out.pdf"));
    EXPECT_EQ(PdfParser::GetMaxObjectCount(), largest);
    EXPECT_TRUE(PdfError::LoggingEnabled());
}

// The parser counts its recursion per thread, and loses count where it gives up.
TEST(GuardedLoad, HundredsOfBadFilesDoNotSpoilAGoodOne) {
    PdfBuilder deep = WithPage("/A " + Nested("[", "]", 400));
    PdfBuilder chain = WithPage();
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
        EXPECT_THROW(LoadGuarded(deep_path)->GetPage(0), PdfError);
    }
    EXPECT_EQ(CodeOf(folder.Write("small.pdf", SmallFile())), ePdfError_ErrOk);
}

// A chain of nodes above the page; `back` is the kid of the last of them.
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

// Good trees are searched after hundreds of searches that failed on the same thread.
TEST(PageTree, IsSearchedAsDeepAsTheThreadCanGoWithoutLosingALevel) {
    const TempFolder folder;
    // Too deep, back to the root, and back to itself.
    for (const std::string& file : {ChainOfNodes(300), ChainOfNodes(60, 2), ChainOfNodes(60, 61)}) {
        const QString path = QString::fromStdString(folder.Write("tree.pdf", file));
        for (int i = 0; i < 300; ++i)
            EXPECT_THROW(CPDFDocument(path).GetPage(0), PdfError);
    }
    for (const std::string& file : {ChainOfNodes(190), SmallFile()}) {
        CPDFDocument document(QString::fromStdString(folder.Write("tree.pdf", file)));
        EXPECT_EQ(document.GetPage(0).GetMediaBox().at(2), 100.0);
    }
}

TEST(GuardedLoad, OpensAHundredThousandObjects) {
    PdfBuilder file = WithPage();
    for (int i = 0; i < 100'000; ++i)
        file.Add("<</Type/Annot/Rect[0 0 " + std::to_string(i) + " 1]/Contents(text)>>");
    const TempFolder folder;
    const auto loaded = LoadGuarded(folder.Write("many.pdf", file.Finish()));
    for (const PdfObject* object : loaded->GetObjects())
        ASSERT_TRUE(object->IsDictionary());
}

TEST(GuardedLoad, OpensAMillionNumbersInOneArray) {
    PdfBuilder file = WithPage("/VP 4 0 R");
    file.Add("[" + Repeated("600123.456 ", 1'000'000) + "]");
    const TempFolder folder;
    const auto loaded = LoadGuarded(folder.Write("large.pdf", file.Finish()));
    EXPECT_EQ(loaded->GetPage(0)->GetObject()->GetIndirectKey("VP")->GetArray().size(), 1'000'000U);
}

TEST(GuardedLoad, RefusesMoreSmallValuesThanTheFileExplains) {
    PdfBuilder file = WithPage();
    for (int i = 0; i < 3; ++i)
        file.Add("[" + Repeated("0 ", 990'000) + "]");
    const TempFolder folder;
    const auto loaded = LoadGuarded(folder.Write("zeros.pdf", file.Finish()));
    const auto is_array = [](const PdfObject* object) { return object->IsArray(); };
    EXPECT_THROW(std::ranges::count_if(loaded->GetObjects(), is_array), PdfError);
}

TEST(GuardedLoad, OpensAHundredThousandCompressedObjects) {
    constexpr int kStreams = 1'000;
    PdfBuilder file = WithPage();
    std::vector<int> compressed;
    for (int i = 0; i < kStreams; ++i) {
        std::vector<int> numbers(100);
        std::iota(numbers.begin(), numbers.end(), 3 + kStreams + 2 + i * 100);
        const ObjectStream stream =
            MakeObjectStream(numbers, std::vector<std::string>(100, "<</Type/Annot/Rect[0 0 1 1]>>"));
        const int number = file.AddStream(stream.keys + "/Filter/FlateDecode", Deflated(stream.content));
        compressed.insert(compressed.end(), 100, number);
    }
    const TempFolder folder;
    const std::string path = folder.Write("many.pdf", file.FinishWithStream(compressed));
    EXPECT_GE(LoadGuarded(path)->GetObjects().GetSize(), 100'000U);
}

std::uint64_t BytesReadSoFar() {
    std::ifstream counters("/proc/self/io");
    std::string key;
    std::uint64_t value = 0;
    counters >> key >> value;
    return key == "rchar:" ? value : 0;
}

TEST(GuardedLoad, DoesNotReadStreams) {
    PdfBuilder file = WithPage();
    file.AddStream("", Repeated("0123456789abcdef", 1'000'000));
    const TempFolder folder;
    const std::string path = folder.Write("large.pdf", file.Finish());
    const std::uint64_t before = BytesReadSoFar();
    ASSERT_GT(before, 0U);
    LoadGuarded(path)->GetPage(0)->GetMediaBox();
    EXPECT_LT(BytesReadSoFar() - before, 500'000U);
}

const std::string kAes128 =
    "<</Filter/Standard/V 4/R 4/Length 128/P -4/CF<</StdCF<</CFM/AESV2/AuthEvent/DocOpen/Length 16>>>>"
    "/StmF/StdCF/StrF/StdCF/O<00112233445566778899aabbccddeeff00112233445566778899aabbccddeeff>"
    "/U<00112233445566778899aabbccddeeff00112233445566778899aabbccddeeff>>>";

PdfBuilder WithCipher() {
    PdfBuilder file = WithPage();
    file.Add(kAes128);
    return file;
}

// An update whose own trailer does not repeat the entry.
std::string InOlderTrailer() {
    PdfBuilder file = WithCipher();
    const std::int64_t old = file.Position();
    file.Append(file.Table() + "trailer\n<</Root 1 0 R/Size 5/Encrypt 4 0 R/ID[<00><00>]>>\n");
    return file.Finish("/Prev " + std::to_string(old));
}

// A table for old readers, and a stream beside it that holds the entry.
std::string InHybridStream() {
    PdfBuilder file = WithCipher();
    const std::int64_t stream = file.Position();
    file.AddStream("/Type/XRef/Root 1 0 R/Size 5/W[1 1 1]/Index[4 0]/Encrypt 4 0 R", "");
    return file.Finish("/XRefStm " + std::to_string(stream));
}

// Refused as such wherever the file states it, before the parser comes to ciphers that it lacks.
TEST(EncryptedPdf, EndsWithItsCode) {
    const TempFolder folder;
    const std::string id = "/ID[<00><00>]";
    for (const std::string& keys : std::vector<std::string>{
             "/Encrypt 4 0 R" + id, "/Encrypt 4 0 R", "/Encrypt 4 0 R/ID[]", "/Encrypt" + kAes128 + id,
             "/Encrypt 77 0 R", "/#45ncrypt 4 0 R", "%>>\n/Encrypt 4 0 R"})
        EXPECT_EQ(CodeOf(folder.Write("file.pdf", WithCipher().Finish(keys))), ePdfError_InvalidPassword)
            << keys;
    for (const std::string& file :
         {WithCipher().FinishWithStream({}, "/Encrypt 4 0 R" + id), InOlderTrailer(), InHybridStream()})
        EXPECT_EQ(CodeOf(folder.Write("file.pdf", file)), ePdfError_InvalidPassword) << file;
    for (const char* keys : {"/Encrypt null", "/Note(/Encrypt 4 0 R)", "/A<</Encrypt 4 0 R>>"})
        EXPECT_EQ(CodeOf(folder.Write("file.pdf", WithCipher().Finish(keys))), ePdfError_ErrOk) << keys;
    EXPECT_EQ(CodeOf(folder.Write("file.pdf", WithPage("/Encrypt 1 0 R").Finish())), ePdfError_ErrOk);
}

}  // namespace
}  // namespace VellumLib

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

EPdfError CodeOf(const std::string& path, std::string* information = nullptr) {
    try {
        LoadGuarded(path);
        return ePdfError_ErrOk;
    } catch (const PdfError& error) {
        if (information) *information = error.GetCallstack().back().GetInformation();
        return error.GetError();
    }
}

PdfBuilder WithPage(const std::string& keys = "") {
    PdfBuilder file;
    file.AddPage(keys);
    return file;
}

std::string SmallFile() {
    PdfBuilder file = WithPage("/VP[<</Type/Viewport/BBox[1 2 3 4]>>]/Contents 4 0 R");
    file.AddStream("", "0 0 m");
    return file.Finish();
}

TEST(GuardedLoad, ReadsObjectsAndStreamsAfterTheLoad) {
    const TempFolder folder;
    const auto loaded = LoadGuarded(folder.Write("small.pdf", SmallFile()));
    PdfMemDocument& document = *loaded;
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
    PdfBuilder file = WithPage("/VP 6 0 R");
    const ObjectStream stream = MakeObjectStream({6, 7}, {"[7 0 R]", "<</BBox[1 2 3 4]>>"});
    file.AddStream(stream.keys + "/Filter/FlateDecode", Deflated(stream.content));
    const TempFolder folder;
    const auto loaded = LoadGuarded(folder.Write("compressed.pdf", file.FinishWithStream({4, 4})));
    PdfMemDocument& document = *loaded;
    EXPECT_TRUE(document.GetPage(0)->GetObject()->GetIndirectKey("VP")->IsArray());
    EXPECT_TRUE(document.GetObjects().GetObject(PdfReference(7, 0))->GetDictionary().HasKey("BBox"));
}

TEST(GuardedLoad, KeepsTheFileOpenForTheDocumentOnly) {
    const TempFolder folder;
    const std::string path = folder.Write("small.pdf", SmallFile());
    const std::size_t before = OpenFiles();
    {
        const auto loaded = LoadGuarded(path);
        EXPECT_EQ(OpenFiles(), before + 1);
    }
    EXPECT_EQ(OpenFiles(), before);
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
    PdfMemDocument& document = *loaded;
    std::filesystem::resize_file(path, 1'000);
    EXPECT_THROW(document.GetObjects().GetObject(PdfReference(4, 0))->IsArray(), PdfError);
}

TEST(GuardedLoad, RefusesWhatIsNoFile) {
    const TempFolder folder;
    const std::string pipe = folder / "pipe.pdf";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(CodeOf(pipe), ePdfError_NoPdfFile);
    EXPECT_EQ(CodeOf(folder / "."), ePdfError_NoPdfFile);
    EXPECT_EQ(CodeOf(""), ePdfError_InvalidHandle);
    std::string named;
    EXPECT_EQ(CodeOf(folder / "none.pdf", &named), ePdfError_FileNotFound);
    EXPECT_EQ(named, folder / "none.pdf");
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
        const auto loaded = LoadGuarded(deep_path);
        PdfMemDocument& document = *loaded;
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
    PdfBuilder file = WithPage();
    for (int i = 0; i < 100'000; ++i)
        file.Add("<</Type/Annot/Rect[0 0 " + std::to_string(i) + " 1]/Contents(text)>>");
    const TempFolder folder;
    const auto loaded = LoadGuarded(folder.Write("many.pdf", file.Finish()));
    PdfMemDocument& document = *loaded;
    for (const PdfObject* object : document.GetObjects())
        ASSERT_TRUE(object->IsDictionary());
}

TEST(GuardedLoad, OpensAHundredThousandCompressedObjects) {
    constexpr int kStreams = 1'000;
    constexpr int kEach = 100;
    PdfBuilder file = WithPage();
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
    const auto loaded = LoadGuarded(folder.Write("many.pdf", file.FinishWithStream(compressed)));
    PdfMemDocument& document = *loaded;
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
    PdfBuilder file = WithPage();
    file.AddStream("", Repeated("0123456789abcdef", 1'000'000));
    const TempFolder folder;
    const std::string path = folder.Write("large.pdf", file.Finish());
    const std::uint64_t before = BytesReadSoFar();
    ASSERT_GT(before, 0U);
    const auto loaded = LoadGuarded(path);
    PdfMemDocument& document = *loaded;
    document.GetPage(0)->GetMediaBox();
    EXPECT_LT(BytesReadSoFar() - before, 500'000U);
}

constexpr const char* kAes128 =
    "<</Filter/Standard/V 4/R 4/Length 128/P -4/CF<</StdCF<</CFM/AESV2/AuthEvent/DocOpen/Length 16>>>>"
    "/StmF/StdCF/StrF/StdCF/O<00112233445566778899aabbccddeeff00112233445566778899aabbccddeeff>"
    "/U<00112233445566778899aabbccddeeff00112233445566778899aabbccddeeff>>>";

PdfBuilder WithCipher() {
    PdfBuilder file = WithPage();
    file.Add(kAes128);
    return file;
}

std::string InTrailer(const std::string& keys) {
    return WithCipher().Finish(keys);
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

struct CipherCase {
    const char* name;
    std::string file;
};

// Refused as such wherever the file says so, before the parser comes to ciphers that
// it cannot deal with.
TEST(EncryptedPdf, EndsWithItsCode) {
    const CipherCase encrypted[] = {
        {"cipher_that_the_parser_lacks", InTrailer("/Encrypt 4 0 R/ID[<00><00>]")},
        {"without_an_identifier", InTrailer("/Encrypt 4 0 R")},
        {"with_an_empty_identifier", InTrailer("/Encrypt 4 0 R/ID[]")},
        {"dictionary_in_place", InTrailer(std::string("/Encrypt") + kAes128 + "/ID[<00><00>]")},
        {"object_that_does_not_exist", InTrailer("/Encrypt 77 0 R")},
        {"name_in_escapes", InTrailer("/#45ncrypt 4 0 R")},
        {"behind_a_comment", InTrailer("%>>\n/Encrypt 4 0 R")},
        {"cross_reference_stream", WithCipher().FinishWithStream({}, "/Encrypt 4 0 R/ID[<00><00>]")},
        {"older_trailer", InOlderTrailer()},
        {"hybrid_stream", InHybridStream()},
    };
    const CipherCase open[] = {
        {"entry_that_is_null", InTrailer("/Encrypt null")},
        {"word_in_a_string", InTrailer("/Note(/Encrypt 4 0 R)")},
        {"entry_of_a_deeper_dictionary", InTrailer("/A<</Encrypt 4 0 R>>")},
        {"entry_of_a_page", WithPage("/Encrypt 1 0 R").Finish()},
    };
    const TempFolder folder;
    for (const CipherCase& c : encrypted)
        EXPECT_EQ(CodeOf(folder.Write("file.pdf", c.file)), ePdfError_InvalidPassword) << c.name;
    for (const CipherCase& c : open)
        EXPECT_EQ(CodeOf(folder.Write("file.pdf", c.file)), ePdfError_ErrOk) << c.name;
}

}  // namespace
}  // namespace VellumLib

// PDF files: any bytes through the guarded load, then all that the object layer can be
// asked of a document.

#include "PdfFuzz.h"

#include "objects/CPDFString.h"

using namespace VellumLib;

namespace {

void AskDocument(CPDFDocument& document) {
    fuzz::Survives([&] { document.GetMetadata(); });
    fuzz::Survives([&] { document.GetCreator(); });
    fuzz::Survives([&] { document.GetCreationDate(); });
    fuzz::Survives([&] { document.GetModDate(); });
}

void AskPage(CPDFPage& page) {
    for (const auto box : {&CPDFPage::GetMediaBox, &CPDFPage::GetCropBox, &CPDFPage::GetBleedBox,
                           &CPDFPage::GetTrimBox, &CPDFPage::GetArtBox})
        fuzz::Survives([&] { (page.*box)(); });
    fuzz::Survives([&] { page.GetSpatialKind(); });
    fuzz::Survives([&] { page.GetContentsLength(); });
    fuzz::Survives([&] { page.GetPropertyTitle("MC0"); });
    for (const char* key : {"VP", "LGIDict"})
        fuzz::Survives([&] {
            const CPDFArray array = page.GetDictionary().GetArray(key);
            for (int i = 0; i < array.GetSize(); ++i)
                array[i].IsReference();
        });
}

void WalkContent(CPDFPage& page) {
    constexpr int kMost = 20'000;
    CPDFStatement statement;
    for (int i = 0; i < kMost && page.GetNextStatement(statement) != StatementEnd; ++i) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::MemoryFile memory("pdf");
    static const QString path = QString::fromUtf8(std::string(memory.Path().Utf8()).c_str());
    memory.Fill(data, size);
    fuzz::Survives([] {
        CPDFDocument document(path, EPDFExtent::FirstPage);
        AskPage(document.GetPage(0));
    });
    fuzz::Survives([] {
        CPDFDocument document(path);
        AskDocument(document);
        CPDFPage& page = document.GetPage(0);
        AskPage(page);
        WalkContent(page);
    });
    return 0;
}

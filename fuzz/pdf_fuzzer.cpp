// PDF files: any bytes through the guarded load, then all that the object layer can be
// asked of a document.

#include "PdfFuzz.h"

#include "export/StructureState.h"
#include "objects/CPDFString.h"

#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

using namespace VellumLib;

namespace {

void AskDocument(CPDFDocument& document) {
    fuzz::Survives([&] { document.GetMetadata(); });
    fuzz::Survives([&] { document.GetCreator(); });
    fuzz::Survives([&] { document.GetCreationDate(); });
    fuzz::Survives([&] { document.GetModDate(); });
}

void AskStructure(CPDFDocument& document) {
    constexpr std::size_t kMaxElements = 2'000;
    LookAtStructure(
        document.GetCatalog().Container(), PoDoFo::PdfReference(3, 0),
        [&](const PoDoFo::PdfReference& reference) {
            return document.Document().GetObjects().GetObject(reference);
        },
        kMaxElements);
}

/// What the page says of itself, however it was loaded; nothing where it throws.
using Answers = std::vector<std::optional<std::vector<double>>>;

template <class Question>
void Ask(Answers& answers, Question question) {
    answers.emplace_back();
    fuzz::Survives([&] { answers.back() = question(); });
}

Answers AskPage(CPDFPage& page) {
    using Numbers = std::vector<double>;
    Answers answers;
    for (const auto box : {&CPDFPage::GetMediaBox, &CPDFPage::GetCropBox, &CPDFPage::GetBleedBox,
                           &CPDFPage::GetTrimBox, &CPDFPage::GetArtBox})
        Ask(answers, [&] { return (page.*box)(); });
    Ask(answers, [&] { return Numbers{static_cast<double>(page.GetSpatialKind())}; });
    Ask(answers, [&] { return Numbers{static_cast<double>(page.GetRotation()), page.GetUserUnit()}; });
    fuzz::Survives([&] { page.GetContentsLength(); });
    fuzz::Survives([&] { page.GetPropertyTitle("MC0"); });
    for (const char* key : {"VP", "LGIDict"})
        fuzz::Survives([&] {
            const CPDFArray array = page.GetDictionary().GetArray(key);
            for (int i = 0; i < array.GetSize(); ++i)
                array[i].IsReference();
        });
    return answers;
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
    Answers first;
    Answers whole;
    fuzz::Survives([&] {
        CPDFDocument document(path, EPDFExtent::FirstPage);
        first = AskPage(document.GetPage(0));
    });
    fuzz::Survives([&] {
        CPDFDocument document(path);
        AskDocument(document);
        fuzz::Survives([&] { AskStructure(document); });
        CPDFPage& page = document.GetPage(0);
        whole = AskPage(page);
        WalkContent(page);
    });
    if (!whole.empty() && first != whole) std::abort();
    return 0;
}

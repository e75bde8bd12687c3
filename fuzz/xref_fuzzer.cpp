// Any bytes as a file of cross-references in tables and streams: the way to a page, the page as
// it is written, the streams of objects, and an update, which has to read back.

#include "PdfFuzz.h"

#include "load/CrossReferences.h"
#include "load/DictionaryText.h"
#include "load/IncrementalUpdate.h"
#include "load/PageSearch.h"

#include <cstdlib>
#include <string>

using namespace VellumLib;

namespace {

/// The bytes that change the page.
std::string Changed(FileWindow& file, CrossReferences& references) {
    for (unsigned number = 1; number < 12; ++number)
        fuzz::Survives([&] { references.StreamOf(PoDoFo::PdfReference(number, 0), 1 << 16); });
    const FoundPage page = FindPage(references, 0);
    DictionaryText text(references.TextOf(page.reference));
    if (page.dictionary.HasKey("VP") && text.Value("VP").empty()) std::abort();
    text.Set("VP", "[ 7 0 R ]");
    IncrementalUpdate update(references, file);
    update.Put(update.NewObject(), "<< >>");
    update.Put(page.reference, text.Text());
    return update.Tail();
}

bool HasTheChange(const std::string& path) {
    FileWindow file(path);
    CrossReferences references(file);
    const FoundPage page = FindPage(references, 0);
    return DictionaryText(references.TextOf(page.reference)).Value("VP") == "[ 7 0 R ]";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::MemoryFile memory("pdf");
    static const std::string path(memory.Path().Utf8());
    memory.Fill(data, size);
    std::string whole(reinterpret_cast<const char*>(data), size);
    const bool changed = fuzz::Survives([&] {
        FileWindow file(path);
        CrossReferences references(file);
        whole += Changed(file, references);
    });
    if (!changed) return 0;
    memory.Fill(reinterpret_cast<const std::uint8_t*>(whole.data()), whole.size());
    bool kept = false;
    if (!fuzz::Survives([&] { kept = HasTheChange(path); }) || !kept) std::abort();
    return 0;
}

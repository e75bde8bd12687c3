// Any bytes as a file of cross-references in tables and streams: the way to a page, the page as
// it is written, and the streams of objects.

#include "PdfFuzz.h"

#include "load/CrossReferences.h"
#include "load/DictionaryText.h"
#include "load/PageSearch.h"

#include <cstdlib>
#include <string>

using namespace VellumLib;

namespace {

void ReadObjects(CrossReferences& references) {
    for (unsigned number = 1; number < 12; ++number)
        fuzz::Survives([&] { references.StreamOf(PoDoFo::PdfReference(number, 0), 1 << 16); });
    const FoundPage page = FindPage(references, 0);
    DictionaryText text(references.TextOf(page.reference));
    if (page.dictionary.HasKey("VP") && text.Value("VP").empty()) std::abort();
    text.Set("VP", "[ 7 0 R ]");
    if (DictionaryText(text.Text()).Value("VP") != "[ 7 0 R ]") std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::MemoryFile memory("pdf");
    static const std::string path(memory.Path().Utf8());
    memory.Fill(data, size);
    fuzz::Survives([&] {
        FileWindow file(path);
        CrossReferences references(file);
        ReadObjects(references);
    });
    return 0;
}

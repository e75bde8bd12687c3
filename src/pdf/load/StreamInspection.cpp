#include "load/StreamInspection.h"

#include "load/FileWindow.h"
#include "load/ObjectStreamContent.h"
#include "load/StreamData.h"
#include "load/XRefLayout.h"

#include <podofo/podofo.h>

#include <string_view>
#include <vector>

namespace VellumLib {

namespace {

using namespace PoDoFo;

// The parser's own reading of the text, so that both see the same dictionary.
PdfVariant ParseDictionary(const std::string& text) {
    PdfTokenizer tokenizer(text.data(), text.size());
    PdfVariant value;
    tokenizer.GetNextVariant(value, nullptr);
    return value;
}

bool Mentions(const std::string& text, std::string_view name) {
    return text.find(name) != std::string::npos || text.find('#') != std::string::npos;
}

bool IsCrossReference(const PdfDictionary& dictionary) {
    const PdfObject* const type = dictionary.GetKey("Type");
    return type && type->IsName() && type->GetName() == "XRef";
}

// A layout that cannot be read is left to the parser, which has its own words for it.
void InspectCrossReferences(const PdfDictionary& dictionary, const std::string& content, LoadBudget& budget) {
    const auto read = ReadLayout(dictionary, content.size());
    if (!read) return;
    const XRefLayout& layout = *read;
    const char* at = content.data();
    for (std::size_t i = 0; i < layout.ranges.size(); i += 2) {
        const auto first = static_cast<std::uint64_t>(layout.ranges[i]);
        for (std::int64_t k = 0; k < layout.ranges[i + 1]; ++k) {
            const XRefEntry entry = layout.EntryAt(at);
            at += layout.EntrySize();
            if (entry.type == 1)
                budget.AnnounceObject(first + static_cast<std::uint64_t>(k));
            else if (entry.type == 2)
                budget.AnnounceCompressed(entry.place);
        }
    }
}

}  // namespace

void InspectStream(FileWindow& file, const std::string& text, std::int64_t start, LoadBudget& budget) {
    const PdfVariant dictionary = ParseDictionary(text);
    const PdfDictionary& keys = dictionary.GetDictionary();
    const std::string content = DecodeStream(file, dictionary, start, budget.DecodableBytes());
    budget.AddDecodedBytes(content.size());
    if (IsCrossReference(keys)) {
        budget.AddSection();
        InspectCrossReferences(keys, content, budget);
    }
    InspectObjectStream(keys, content, budget);
}

bool AnnouncesEncryption(const std::string& text, bool is_trailer) {
    if (!Mentions(text, "Encrypt")) return false;
    const PdfVariant dictionary = ParseDictionary(text);
    if (!is_trailer && !IsCrossReference(dictionary.GetDictionary())) return false;
    const PdfObject* const entry = dictionary.GetDictionary().GetKey("Encrypt");
    return entry && !entry->IsNull();
}

}  // namespace VellumLib

#include "load/XRefLayout.h"

#include "load/LoadBudget.h"

namespace VellumLib {

namespace {

using namespace PoDoFo;

bool ReadWidths(const PdfDictionary& dictionary, XRefLayout& layout) {
    const PdfObject* const widths = dictionary.GetKey("W");
    if (!widths || !widths->IsArray() || widths->GetArray().size() != 3) return false;
    for (std::size_t i = 0; i < 3; ++i) {
        if (!widths->GetArray()[i].IsNumber()) return false;
        const std::int64_t width = widths->GetArray()[i].GetNumber();
        if (width < 0 || width > 8)
            RefusePdf(ePdfError_InvalidXRefStream, "A field of the cross-references is too wide.");
        layout.widths[i] = static_cast<std::uint64_t>(width);
    }
    return true;
}

bool ReadRanges(const PdfDictionary& dictionary, XRefLayout& layout) {
    const PdfObject* const index = dictionary.GetKey("Index");
    if (!index) {
        layout.ranges = {0, dictionary.GetKeyAsLong(PdfName::KeySize, 0)};
        return true;
    }
    if (!index->IsArray() || index->GetArray().size() % 2 != 0) return false;
    for (const PdfObject& number : index->GetArray()) {
        if (!number.IsNumber()) return false;
        layout.ranges.push_back(number.GetNumber());
    }
    return true;
}

void RequireEntries(const XRefLayout& layout, std::uint64_t available) {
    std::uint64_t needed = 0;
    for (std::size_t i = 1; i < layout.ranges.size(); i += 2) {
        const std::int64_t count = layout.ranges[i];
        if (count > 0) needed += static_cast<std::uint64_t>(count);
        if (count > INT32_MAX || needed > INT32_MAX || needed * layout.EntrySize() > available ||
            (needed > 0 && layout.EntrySize() == 0))
            RefusePdf(ePdfError_NoXRef, "Invalid count in XRef stream");
    }
}

std::uint64_t ReadField(const char*& at, std::uint64_t width) {
    std::uint64_t value = 0;
    for (; width > 0; --width)
        value = value << 8 | static_cast<unsigned char>(*at++);
    return value;
}

}  // namespace

XRefEntry XRefLayout::EntryAt(const char* at) const {
    XRefEntry entry{};
    entry.type = widths[0] == 0 ? 1 : ReadField(at, widths[0]);
    entry.place = ReadField(at, widths[1]);
    entry.detail = ReadField(at, widths[2]);
    return entry;
}

std::optional<XRefLayout> ReadLayout(const PdfDictionary& dictionary, std::uint64_t available) {
    XRefLayout layout;
    if (!ReadWidths(dictionary, layout) || !ReadRanges(dictionary, layout)) return std::nullopt;
    RequireEntries(layout, available);
    return layout;
}

}  // namespace VellumLib

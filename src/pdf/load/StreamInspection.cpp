#include "load/StreamInspection.h"

#include "load/FileWindow.h"
#include "load/ObjectStreamContent.h"

#include <podofo/podofo.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>
#include <vector>

namespace VellumLib {

namespace {

using namespace PoDoFo;

constexpr std::int64_t kUnknownLength = std::int64_t{64} * 1024 * 1024;
constexpr std::int64_t kWidestRow = std::int64_t{8} * 1024 * 1024;

/// Keeps what a decoder gives, up to a limit. It must not throw: the decoder would
/// not release its own state.
class BoundedSink final : public PdfOutputStream {
public:
    explicit BoundedSink(std::uint64_t limit) : limit_(limit) {}
    pdf_long Write(const char* data, pdf_long size) override {
        const auto room = limit_ - content_.size();
        content_.append(data, std::min(static_cast<std::uint64_t>(std::max<pdf_long>(size, 0)), room));
        return size;
    }
    void Close() override {}
    bool IsFull() const { return content_.size() == limit_; }
    std::string TakeContent() { return std::move(content_); }

private:
    std::uint64_t limit_;
    std::string content_;
};

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

// Only encodings that real files use here, one of which compresses.
TVecFilters Filters(const PdfVariant& dictionary) {
    const PdfObject* const entry = dictionary.GetDictionary().GetKey("Filter");
    if (!entry) return {};
    bool direct = entry->IsName() || entry->IsArray();
    if (entry->IsArray())
        direct = std::all_of(entry->GetArray().begin(), entry->GetArray().end(),
                             [](const PdfObject& filter) { return filter.IsName(); });
    if (!direct) RefusePdf(ePdfError_UnsupportedFilter, "A filter is not named.");
    TVecFilters filters = PdfFilterFactory::CreateFilterList(entry);
    const auto compressing = std::count(filters.begin(), filters.end(), ePdfFilter_FlateDecode);
    const auto plain = std::count(filters.begin(), filters.end(), ePdfFilter_ASCIIHexDecode) +
                       std::count(filters.begin(), filters.end(), ePdfFilter_ASCII85Decode);
    if (compressing > 1 || static_cast<std::size_t>(compressing + plain) != filters.size())
        RefusePdf(ePdfError_UnsupportedFilter, "A filter of an object stream is not known.");
    return filters;
}

// The row of a predictor is taken from memory before any data is seen.
void CheckRow(const PdfDictionary& dictionary) {
    const PdfObject* const entry = dictionary.GetKey("DecodeParms");
    const PdfDictionary& parameters = entry && entry->IsDictionary() ? entry->GetDictionary() : dictionary;
    std::int64_t bits = 1;
    for (const char* const key : {"Columns", "Colors", "BitsPerComponent"}) {
        const std::int64_t value = parameters.GetKeyAsLong(key, 1);
        if (value > kWidestRow || (bits *= std::max<std::int64_t>(value, 1)) > kWidestRow)
            RefusePdf(ePdfError_ValueOutOfRange, "The rows of a stream are too wide.");
    }
}

std::int64_t RawLength(const PdfDictionary& dictionary, std::int64_t available) {
    const PdfObject* const length = dictionary.GetKey(PdfName::KeyLength);
    if (!length || !length->IsNumber()) return std::min(available, kUnknownLength);
    return std::clamp<std::int64_t>(length->GetNumber(), 0, available);
}

// What decodes before a fault counts: the parser may stop short of it.
std::string Decode(FileWindow& file, const PdfVariant& dictionary, std::int64_t start, std::uint64_t limit) {
    const TVecFilters filters = Filters(dictionary);
    const PdfDictionary& keys = dictionary.GetDictionary();
    CheckRow(keys);
    BoundedSink sink(limit);
    std::unique_ptr<PdfOutputStream> decoder;
    if (!filters.empty()) decoder.reset(PdfFilterFactory::CreateDecodeStream(filters, &sink, &keys));
    PdfOutputStream& target = decoder ? *decoder : static_cast<PdfOutputStream&>(sink);
    try {
        std::array<char, 8192> piece;
        for (std::int64_t left = RawLength(keys, std::max<std::int64_t>(file.Size() - start, 0));
             left > 0 && !sink.IsFull();) {
            const std::size_t got = file.Read(
                start, piece.data(), static_cast<std::size_t>(std::min<std::int64_t>(left, piece.size())));
            if (got == 0) break;
            target.Write(piece.data(), static_cast<pdf_long>(got));
            start += static_cast<std::int64_t>(got);
            left -= static_cast<std::int64_t>(got);
        }
        target.Close();
    } catch (const PdfError&) {
    }
    return sink.TakeContent();
}

/// The layout of a cross-reference stream: field widths and (first, count) pairs.
struct Layout {
    std::array<std::uint64_t, 3> widths{};
    std::vector<std::int64_t> ranges;

    std::uint64_t EntrySize() const { return widths[0] + widths[1] + widths[2]; }
};

bool ReadWidths(const PdfDictionary& dictionary, Layout& layout) {
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

bool ReadRanges(const PdfDictionary& dictionary, Layout& layout) {
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

void RequireEntries(const Layout& layout, std::uint64_t available) {
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

// A layout that cannot be read is left to the parser, which has its own words for it.
void InspectCrossReferences(const PdfDictionary& dictionary, const std::string& content, LoadBudget& budget) {
    Layout layout;
    if (!ReadWidths(dictionary, layout) || !ReadRanges(dictionary, layout)) return;
    RequireEntries(layout, content.size());
    const char* at = content.data();
    for (std::size_t i = 0; i < layout.ranges.size(); i += 2) {
        const auto first = static_cast<std::uint64_t>(layout.ranges[i]);
        for (std::int64_t k = 0; k < layout.ranges[i + 1]; ++k) {
            const std::uint64_t type = layout.widths[0] == 0 ? 1 : ReadField(at, layout.widths[0]);
            const std::uint64_t place = ReadField(at, layout.widths[1]);
            ReadField(at, layout.widths[2]);
            if (type == 1)
                budget.AnnounceObject(first + static_cast<std::uint64_t>(k));
            else if (type == 2)
                budget.AnnounceCompressed(place);
        }
    }
}

}  // namespace

void InspectStream(FileWindow& file, const std::string& text, std::int64_t start, LoadBudget& budget) {
    const PdfVariant dictionary = ParseDictionary(text);
    const PdfDictionary& keys = dictionary.GetDictionary();
    const std::string content = Decode(file, dictionary, start, budget.DecodableBytes());
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

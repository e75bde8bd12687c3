#include "load/StreamData.h"

#include "load/Decryption.h"
#include "load/LoadBudget.h"

#include <algorithm>
#include <array>
#include <memory>

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

// Only encodings that real files use here, one of which compresses.
TVecFilters Filters(const PdfVariant& dictionary) {
    const PdfObject* const entry = dictionary.GetDictionary().GetKey("Filter");
    if (!entry || entry->IsNull()) return {};
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

std::string DecryptedBytes(FileWindow& file, std::int64_t start, std::int64_t length,
                           Decryption& decryption) {
    std::string bytes(static_cast<std::size_t>(length), '\0');
    bytes.resize(file.Read(start, bytes.data(), bytes.size()));
    return decryption.DecryptBytes(bytes);
}

void WritePieces(FileWindow& file, std::int64_t start, std::int64_t length, PdfOutputStream& target,
                 const BoundedSink& sink) {
    std::array<char, 8192> piece;
    while (length > 0 && !sink.IsFull()) {
        const std::size_t got = file.Read(
            start, piece.data(), static_cast<std::size_t>(std::min<std::int64_t>(length, piece.size())));
        if (got == 0) return;
        target.Write(piece.data(), static_cast<pdf_long>(got));
        start += static_cast<std::int64_t>(got);
        length -= static_cast<std::int64_t>(got);
    }
}

}  // namespace

std::string DecodeStream(FileWindow& file, const PdfVariant& dictionary, std::int64_t start,
                         std::uint64_t limit, Decryption* decryption) {
    const TVecFilters filters = Filters(dictionary);
    const PdfDictionary& keys = dictionary.GetDictionary();
    CheckRow(keys);
    const std::int64_t length = RawLength(keys, std::max<std::int64_t>(file.Size() - start, 0));
    const std::string plain = decryption ? DecryptedBytes(file, start, length, *decryption) : std::string();
    BoundedSink sink(limit);
    std::unique_ptr<PdfOutputStream> decoder;
    if (!filters.empty()) decoder.reset(PdfFilterFactory::CreateDecodeStream(filters, &sink, &keys));
    PdfOutputStream& target = decoder ? *decoder : static_cast<PdfOutputStream&>(sink);
    try {
        if (decryption) {
            target.Write(plain.data(), static_cast<pdf_long>(plain.size()));
        } else {
            WritePieces(file, start, length, target, sink);
        }
        target.Close();
    } catch (const PdfError&) {
    }
    return sink.TakeContent();
}

}  // namespace VellumLib

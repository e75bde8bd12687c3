#include "load/CrossReferences.h"

#include "load/FileEnd.h"
#include "load/LoadBudget.h"
#include "load/StreamData.h"
#include "load/SyntaxTracker.h"

#include <algorithm>
#include <set>
#include <string_view>

namespace VellumLib {

namespace {

using namespace PoDoFo;

constexpr std::int64_t kRow = 20;
constexpr std::size_t kSections = 1'000;
// A look-up goes through all of them.
constexpr std::size_t kSubsections = 65'536;
constexpr std::uint64_t kEntryBytes = std::uint64_t{16} << 20;
constexpr std::uint64_t kOneStream = std::uint64_t{12} << 20;
constexpr std::uint64_t kAllStreams = std::uint64_t{256} << 20;
/// Object streams that are kept once they are decoded.
constexpr std::size_t kKept = std::size_t{4} << 20;
constexpr std::size_t kReferenceText = 48;

void Require(bool held) {
    RequirePlain(held);
}

std::int64_t WholeNumber(const PdfDictionary& dictionary, const char* key) {
    const PdfObject* const value = dictionary.GetKey(key);
    Require(value && value->IsNumber() && value->GetNumber() >= 0);
    return value->GetNumber();
}

/// A number at the head of an object stream.
std::uint64_t NextNumber(std::string_view text, std::size_t& at) {
    constexpr std::string_view kWhite("\0\t\n\f\r ", 6);
    constexpr std::uint64_t kMost = 9'999'999'999;
    while (at < text.size() && kWhite.find(text[at]) != std::string_view::npos)
        ++at;
    Require(at < text.size() && text[at] >= '0' && text[at] <= '9');
    std::uint64_t number = 0;
    for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
        number = number * 10 + static_cast<std::uint64_t>(text[at] - '0');
        Require(number <= kMost);
    }
    return number;
}

}  // namespace

CrossReferences::CrossReferences(FileWindow& file, const std::optional<std::string>& password)
    : file_(file), values_(file) {
    std::int64_t behind = 0;
    Require(file_.At(0) == '%' && values_.TakeWord(behind, "%PDF-"));
    std::set<std::int64_t> seen;
    std::int64_t start = newest_ = FileEnd(file_).TakeStart(values_);
    for (bool more = true; more;) {
        Require(seen.size() < kSections && seen.insert(start).second);
        const PdfVariant section = ReadSection(start);
        const PdfDictionary& keys = section.GetDictionary();
        more = keys.HasKey("Prev");
        if (more) start = WholeNumber(keys, "Prev");
        if (seen.size() == 1) trailer_ = section;
    }
    Require(WholeNumber(Trailer(), "Size") <= LoadBudget::kObjectNumbers);
    if (password) decryption_ = Decryption::Unlock(*this, *password);
}

CrossReferences::~CrossReferences() = default;

std::int64_t CrossReferences::FirstFreeNumber() const {
    std::int64_t number = WholeNumber(Trailer(), "Size");
    for (const Subsection& part : subsections_)
        number = std::max(number, part.first + part.count);
    return number;
}

PdfVariant CrossReferences::ReadSection(std::int64_t start) {
    std::int64_t position = start;
    const bool is_table = values_.TakeWord(position, "xref");
    if (subsections_.empty()) ends_in_stream_ = !is_table;
    return is_table ? ReadTable(position) : ReadStreamSection(start);
}

PdfVariant CrossReferences::ReadTable(std::int64_t position) {
    std::vector<Subsection> table;
    while (!values_.TakeWord(position, "trailer")) {
        const std::int64_t first = values_.TakeNumber(position);
        const std::int64_t count = values_.TakeNumber(position);
        values_.SkipWhite(position);
        Require(first <= LoadBudget::kObjectNumbers && count <= (file_.Size() - position) / kRow);
        // A table that takes object 0 for one in use counts its objects wrong.
        Require(first != 0 || count == 0 || RowAt(position).type == 0);
        Require(table.size() < kSubsections);
        table.push_back({first, count, position, -1, 0});
        position += count * kRow;
    }
    values_.SkipWhite(position);
    PdfVariant trailer;
    const std::int64_t end = values_.ReadValue(position, trailer);
    Require(trailer.IsDictionary());
    if (trailer_text_.empty()) trailer_text_ = CopyOf(position, end);
    // What older readers are not to see goes before the rows, where it counts as free.
    if (trailer.GetDictionary().HasKey("XRefStm"))
        ReadStreamSection(WholeNumber(trailer.GetDictionary(), "XRefStm"));
    for (const Subsection& subsection : table)
        AddSubsection(subsection);
    return trailer;
}

PdfVariant CrossReferences::ReadStreamSection(std::int64_t start) {
    std::int64_t position = start;
    const std::int64_t number = values_.TakeNumber(position);
    const std::int64_t generation = values_.TakeNumber(position);
    Require(number <= LoadBudget::kObjectNumbers && generation <= 65'535);
    PdfVariant section;
    std::int64_t begin = 0;
    const PdfReference own(static_cast<pdf_objnum>(number), static_cast<pdf_gennum>(generation));
    position = values_.ReadObject(start, own, section, &begin);
    Require(section.IsDictionary() && section.GetDictionary().GetKeyAsName("Type") == "XRef");
    if (trailer_text_.empty()) trailer_text_ = CopyOf(begin, position);
    std::uint64_t held = 0;
    for (const Decoded& decoded : decoded_)
        held += decoded.entries.size();
    std::string entries = DecodeAt(position, section, kEntryBytes - std::min(held, kEntryBytes), nullptr);
    const auto layout = ReadLayout(section.GetDictionary(), entries.size());
    Require(layout.has_value());
    std::size_t offset = 0;
    for (std::size_t i = 0; i + 1 < layout->ranges.size(); i += 2) {
        const std::int64_t count = layout->ranges[i + 1];
        Require(layout->ranges[i] >= 0 && count >= 0);
        AddSubsection({layout->ranges[i], count, 0, static_cast<int>(decoded_.size()), offset});
        offset += static_cast<std::size_t>(count) * layout->EntrySize();
    }
    decoded_.push_back({*layout, std::move(entries)});
    return section;
}

void CrossReferences::AddSubsection(const Subsection& subsection) {
    Require(subsections_.size() < kSubsections);
    subsections_.push_back(subsection);
}

XRefEntry CrossReferences::RowAt(std::int64_t position) {
    std::int64_t at = position;
    XRefEntry row{};
    row.place = static_cast<std::uint64_t>(values_.TakeNumber(at));
    Require(at == position + 10 && file_.At(at) == ' ');
    row.detail = static_cast<std::uint64_t>(values_.TakeNumber(at));
    Require(at == position + 16 && file_.At(at) == ' ');
    row.type = file_.At(at + 1) == 'n' ? 1 : 0;
    Require(row.type == 1 || file_.At(at + 1) == 'f');
    return row;
}

XRefEntry CrossReferences::Find(const PdfReference& reference) {
    const auto number = static_cast<std::int64_t>(reference.ObjectNumber());
    for (const Subsection& part : subsections_) {
        if (number < part.first || number >= part.first + part.count) continue;
        XRefEntry entry{};
        if (part.decoded < 0) {
            entry = RowAt(part.rows + (number - part.first) * kRow);
        } else {
            const Decoded& decoded = decoded_[static_cast<std::size_t>(part.decoded)];
            const auto index = static_cast<std::size_t>(number - part.first);
            entry = decoded.layout.EntryAt(decoded.entries.data() + part.offset +
                                           index * decoded.layout.EntrySize());
        }
        Require(entry.type == 2 ||
                (entry.type == 1 && entry.place > 0 && entry.detail == reference.GenerationNumber() &&
                 entry.place < static_cast<std::uint64_t>(file_.Size())));
        Require(entry.type != 2 || reference.GenerationNumber() == 0);
        return entry;
    }
    RefusePdf(ePdfError_NoObject, "The cross-references lack an object.");
}

std::string CrossReferences::DecodeAt(std::int64_t position, const PdfVariant& dictionary,
                                      std::uint64_t limit, Decryption* decryption) {
    Require(values_.TakeWord(position, "stream"));
    if (file_.At(position) == '\r') ++position;
    if (file_.At(position) == '\n') ++position;
    std::string content = DecodeStream(file_, dictionary, position, limit, decryption);
    Require(content.size() < limit);
    decoded_bytes_ += content.size();
    if (decoded_bytes_ > kAllStreams) RefusePdf(ePdfError_OutOfMemory, "The object streams are too large.");
    return content;
}

const CrossReferences::ObjectStream& CrossReferences::StreamOfNumber(std::uint64_t number) {
    if (const auto known = streams_.find(number); known != streams_.end()) return known->second;
    if (kept_ > kKept) streams_.clear(), kept_ = 0;
    Require((!IsEncrypted() || decryption_) && number > 0 && number <= LoadBudget::kObjectNumbers);
    const PdfReference reference(static_cast<pdf_objnum>(number), 0);
    const XRefEntry entry = Find(reference);
    Require(entry.type == 1);
    PdfVariant dictionary;
    const std::int64_t behind =
        values_.ReadObject(static_cast<std::int64_t>(entry.place), reference, dictionary);
    Require(dictionary.IsDictionary());
    ObjectStream stream;
    stream.content = DecodeAt(behind, dictionary, kOneStream, decryption_.get());
    stream.first = static_cast<std::size_t>(WholeNumber(dictionary.GetDictionary(), "First"));
    Require(stream.first <= stream.content.size());
    const std::string_view head = std::string_view(stream.content).substr(0, stream.first);
    const std::int64_t count = WholeNumber(dictionary.GetDictionary(), "N");
    std::size_t at = 0;
    for (std::int64_t i = 0; i < count; ++i) {
        const std::uint64_t object = NextNumber(head, at);
        stream.head.emplace_back(object, NextNumber(head, at));
    }
    kept_ += stream.content.size();
    return streams_[number] = std::move(stream);
}

/// The extent of the value is found first, as where a value is in the file itself.
CrossReferences::Extent CrossReferences::ExtentOf(const XRefEntry& entry, std::uint64_t number) {
    const ObjectStream& stream = StreamOfNumber(entry.place);
    Require(entry.detail < stream.head.size() && stream.head[entry.detail].first == number);
    const std::size_t begin = stream.first + stream.head[entry.detail].second;
    const ObjectLimits limits(file_.Size());
    SyntaxTracker tracker;
    std::size_t end = begin;
    while (end < stream.content.size() && !tracker.ValueEnded()) {
        tracker.Consume(static_cast<unsigned char>(stream.content[end++]));
        Require(tracker.Depth() <= LoadBudget::kDeepest && limits.Allow(tracker, copies_));
    }
    Require(begin < end && tracker.Depth() == 0);
    copies_ += tracker.CopyCost();
    return {&stream.content, begin, end};
}

void CrossReferences::Read(PdfObject& object) {
    const XRefEntry entry = Find(object.Reference());
    if (entry.type == 2) {
        const Extent extent = ExtentOf(entry, object.Reference().ObjectNumber());
        const std::size_t end = std::min(extent.content->size(), extent.end + kReferenceText);
        PdfTokenizer tokenizer(extent.content->data() + extent.begin, end - extent.begin);
        tokenizer.GetNextVariant(object, nullptr);
        return;
    }
    std::int64_t position =
        values_.ReadObject(static_cast<std::int64_t>(entry.place), object.Reference(), object);
    if (decryption_) decryption_->DecryptStrings(object);
    Require(values_.TakeWord(position, "endobj") ||
            (object.IsDictionary() && values_.TakeWord(position, "stream")));
}

std::string CrossReferences::TextOf(const PdfReference& reference) {
    const XRefEntry entry = Find(reference);
    if (entry.type == 2) {
        const Extent extent = ExtentOf(entry, reference.ObjectNumber());
        return extent.content->substr(extent.begin, extent.end - extent.begin);
    }
    PdfVariant value;
    std::int64_t begin = 0;
    const std::int64_t end =
        values_.ReadObject(static_cast<std::int64_t>(entry.place), reference, value, &begin);
    return CopyOf(begin, end);
}

std::string CrossReferences::StreamOf(const PdfReference& reference, std::uint64_t limit) {
    const XRefEntry entry = Find(reference);
    if (entry.type != 1) return {};
    PdfVariant dictionary;
    std::int64_t behind = values_.ReadObject(static_cast<std::int64_t>(entry.place), reference, dictionary);
    std::int64_t position = behind;
    if (!dictionary.IsDictionary() || !values_.TakeWord(position, "stream")) return {};
    return DecodeAt(behind, dictionary, limit, decryption_.get());
}

std::string CrossReferences::CopyOf(std::int64_t begin, std::int64_t end) {
    std::string text(static_cast<std::size_t>(end - begin), '\0');
    text.resize(file_.Read(begin, text.data(), text.size()));
    return text;
}

}  // namespace VellumLib

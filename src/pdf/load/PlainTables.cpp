#include "load/PlainTables.h"

#include "load/LoadBudget.h"
#include "load/SyntaxTracker.h"

#include <algorithm>
#include <set>
#include <string>
#include <utility>

namespace VellumLib {

namespace {

using namespace PoDoFo;

constexpr std::int64_t kRow = 20;
constexpr std::int64_t kEndOfFile = 1024;
constexpr std::size_t kText = std::size_t{8} * 1024 * 1024;
constexpr std::int64_t kWhite = 1000;
constexpr std::int64_t kReferenceText = 48;
// As the parser has it.
constexpr std::size_t kLongestToken = 4096;
constexpr std::size_t kSections = 50;
// A look-up goes through all of them.
constexpr std::size_t kSubsections = 4'096;
constexpr std::int64_t kLargest = 9'999'999'999;
constexpr std::string_view kTrailerWord = "trailer";

void Require(bool held) {
    if (!held) RefusePdf(ePdfError_InvalidXRef, "The cross-references are not plain.");
}

bool IsWhite(int byte) {
    return byte == ' ' || byte == '\n' || byte == '\r' || byte == '\t' || byte == '\f' || byte == 0;
}

bool IsDigit(int byte) {
    return byte >= '0' && byte <= '9';
}

/// The last trailer of a linearised file may name no catalog.
bool NamesNoOtherRoot(const PdfDictionary& last, const PdfDictionary& newest) {
    const PdfObject* const root = last.GetKey("Root");
    const PdfObject* const own = newest.GetKey("Root");
    if (!root) return true;
    return own && root->IsReference() && own->IsReference() && root->GetReference() == own->GetReference();
}

/// The two bytes that the parser takes for the end of a row.
bool EndsRow(int first, int second) {
    if (first == ' ') return second == '\r' || second == '\n';
    return (first == '\r' && second == '\n') || (first == '\n' && second == '\r');
}

/// A piece of the file as the tokenizer's input.
class PieceDevice final : public PdfInputDevice {
public:
    explicit PieceDevice(FileWindow& file) : file_(file) {}

    void Restrict(std::int64_t begin, std::int64_t end) {
        position_ = begin;
        end_ = end;
    }
    std::streamoff Tell() const override { return position_; }
    int GetChar() const override {
        const int byte = Look();
        if (byte >= 0) ++position_;
        return byte;
    }
    int Look() const override { return position_ < end_ ? file_.At(position_) : -1; }
    bool Eof() const override { return Look() < 0; }
    bool Bad() const override { return false; }
    void Clear(std::ios_base::iostate) const override {}

private:
    FileWindow& file_;
    mutable std::int64_t position_ = 0;
    std::int64_t end_ = 0;
};

}  // namespace

/// One for many values: it takes longer to make than to use.
class PlainTables::Tokenizer {
public:
    explicit Tokenizer(FileWindow& file) : device_(new PieceDevice(file)) {}
    Tokenizer(const Tokenizer&) = delete;
    Tokenizer& operator=(const Tokenizer&) = delete;

    void Read(std::int64_t begin, std::int64_t end, PdfVariant& value) {
        device_->Restrict(begin, end);
        tokenizer_.GetNextVariant(value, nullptr);
    }

private:
    PieceDevice* device_;  ///< the tokenizer's
    PdfTokenizer tokenizer_{PdfRefCountedInputDevice(device_), PdfRefCountedBuffer(kLongestToken)};
};

PlainTables::PlainTables(FileWindow& file, const std::optional<std::string>& password) : file_(file) {
    constexpr std::string_view kHeader = "%PDF-1.";
    std::int64_t behind = 0;
    Require(file_.At(0) == '%' && TakeWord(behind, kHeader));
    Require(file_.At(behind) >= '0' && file_.At(behind) <= '7');
    std::set<std::int64_t> seen;
    std::int64_t start = FindStart();
    for (bool more = true; more;) {
        Require(seen.size() < kSections && seen.insert(start).second);
        const bool last_was_open = last_trailer_ >= 0;
        PdfVariant trailer = ReadSection(start);
        const PdfDictionary& keys = trailer.GetDictionary();
        // The parser takes the catalog of the last trailer in sight.
        Require(seen.size() == 1 || last_was_open == (last_trailer_ >= 0) ||
                NamesNoOtherRoot(keys, Trailer()));
        Require((password || !keys.HasKey("Encrypt")) && !keys.HasKey("XRefStm"));
        const PdfObject* const previous = keys.GetKey("Prev");
        more = previous != nullptr;
        if (more) {
            Require(previous->IsNumber());
            start = previous->GetNumber();
            Require(start >= 0 && start < file_.Size());
        }
        if (seen.size() == 1) trailer_ = trailer;
    }
    Require(last_trailer_ < 0);
    const PdfObject* const size = Trailer().GetKey("Size");
    Require(size && size->IsNumber() && size->GetNumber() <= LoadBudget::kObjectNumbers);
    if (password) Unlock(*password);
}

void PlainTables::Unlock(const std::string& password) {
    const PdfObject* const entry = Trailer().GetKey("Encrypt");
    if (!entry) return;
    PdfObject dictionary = *entry;
    if (entry->IsReference()) {
        dictionary = PdfObject(entry->GetReference(), PdfVariant());
        ReadObject(Find(entry->GetReference()), dictionary);
    }
    decryption_ = Decryption::Unlock(dictionary, password);
    Require(decryption_ != nullptr);
}

PlainTables::PlainTables(FileWindow& file, FoundObjects found) : file_(file), found_(std::move(found)) {
    Require(!found_.encrypted && !found_.objects.empty());
    for (auto at = found_.trailers.rbegin(); at != found_.trailers.rend() && !trailer_.IsDictionary(); ++at) {
        PdfVariant trailer;
        try {
            ReadValue(*at, trailer);
        } catch (const PdfError&) {
            continue;
        }
        if (trailer.IsDictionary() && trailer.GetDictionary().HasKey("Root")) trailer_ = trailer;
    }
    if (trailer_.IsDictionary()) return;
    const auto catalog = found_.objects.find(found_.catalog);
    Require(catalog != found_.objects.end());
    PdfDictionary keys;
    keys.AddKey("Root", PdfReference(catalog->first, static_cast<pdf_gennum>(catalog->second.generation)));
    trailer_ = keys;
}

PlainTables::~PlainTables() = default;

std::int64_t PlainTables::FindStart() {
    constexpr std::string_view kWord = "startxref";
    const std::int64_t first = std::max<std::int64_t>(0, file_.Size() - kEndOfFile);
    std::string end(static_cast<std::size_t>(file_.Size() - first), '\0');
    end.resize(file_.Read(first, end.data(), end.size()));
    const std::size_t found = end.rfind(kWord);
    Require(found != std::string::npos && end.find("%%EOF", found) != std::string::npos);
    const std::size_t trailer = end.rfind(kTrailerWord);
    Require(trailer != std::string::npos);
    last_trailer_ = first + static_cast<std::int64_t>(trailer);
    std::int64_t position = first + static_cast<std::int64_t>(found + kWord.size());
    return TakeNumber(position);
}

/// Notes where the rows are, and gives the trailer.
PdfVariant PlainTables::ReadSection(std::int64_t start) {
    std::int64_t position = start;
    Require(TakeWord(position, "xref"));
    while (!TakeWord(position, kTrailerWord)) {
        const std::int64_t first = TakeNumber(position);
        const std::int64_t count = TakeNumber(position);
        SkipWhite(position);
        Require(first <= LoadBudget::kObjectNumbers && count <= (file_.Size() - position) / kRow);
        // A table that takes object 0 for one in use counts its objects wrong.
        Require(first != 0 || count == 0 || !RowAt(position).used);
        Require(subsections_.size() < kSubsections);
        subsections_.push_back({first, count, position});
        position += count * kRow;
    }
    if (position - static_cast<std::int64_t>(kTrailerWord.size()) == last_trailer_) last_trailer_ = -1;
    PdfVariant trailer;
    ReadValue(position, trailer);
    Require(trailer.IsDictionary());
    return trailer;
}

PlainTables::Row PlainTables::RowAt(std::int64_t position) {
    std::int64_t at = position;
    Row row{};
    row.offset = TakeNumber(at);
    Require(at == position + 10 && file_.At(at) == ' ' && IsDigit(file_.At(at + 1)));
    row.generation = TakeNumber(at);
    Require(at == position + 16 && file_.At(at) == ' ' && EndsRow(file_.At(at + 2), file_.At(at + 3)));
    row.used = file_.At(at + 1) == 'n';
    Require(row.used || file_.At(at + 1) == 'f');
    return row;
}

std::int64_t PlainTables::Find(const PdfReference& reference) {
    if (const auto found = found_.objects.find(reference.ObjectNumber()); found != found_.objects.end()) {
        Require(found->second.generation == reference.GenerationNumber());
        return found->second.offset;
    }
    const auto number = static_cast<std::int64_t>(reference.ObjectNumber());
    for (const Subsection& subsection : subsections_) {
        if (number < subsection.first || number >= subsection.first + subsection.count) continue;
        const Row row = RowAt(subsection.rows + (number - subsection.first) * kRow);
        Require(row.used && row.generation == reference.GenerationNumber() && row.offset > 0);
        return row.offset;
    }
    RefusePdf(ePdfError_NoObject, "The cross-references lack an object.");
}

void PlainTables::ReadObject(std::int64_t offset, PdfObject& object) {
    std::int64_t position = offset;
    Require(IsDigit(file_.At(offset)));
    Require(TakeNumber(position) == static_cast<std::int64_t>(object.Reference().ObjectNumber()));
    Require(TakeNumber(position) == object.Reference().GenerationNumber() && TakeWord(position, "obj"));
    position = ReadValue(position, object);
    if (decryption_) decryption_->DecryptStrings(object);
    Require(TakeWord(position, "endobj") || (object.IsDictionary() && TakeWord(position, "stream")));
}

/// The extent of the value is found first, so that the tokenizer never meets one that
/// is too deep or too large for it.
std::int64_t PlainTables::ReadValue(std::int64_t position, PdfVariant& value) {
    SyntaxTracker tracker;
    std::int64_t end = position;
    while (!tracker.ValueEnded()) {
        const int byte = file_.At(end++);
        Require(byte >= 0 && ++text_ < kText);
        tracker.Consume(static_cast<unsigned char>(byte));
        Require(tracker.Depth() <= LoadBudget::kDeepest &&
                tracker.Values() <= LoadBudget::kValuesOfOneObject &&
                copies_ + tracker.CopyCost() <= LoadBudget::kCopiesOfOneObject);
    }
    copies_ += tracker.CopyCost();
    if (!tokenizer_) tokenizer_ = std::make_unique<Tokenizer>(file_);
    // A number may turn out to be the first of a reference.
    tokenizer_->Read(position, end + kReferenceText, value);
    // Behind a number the tokenizer keeps what it has seen of the next words.
    if (!value.IsDictionary() && !value.IsArray()) tokenizer_.reset();
    return end;
}

void PlainTables::SkipWhite(std::int64_t& position) {
    const std::int64_t start = position;
    while (IsWhite(file_.At(position)))
        Require(++position - start < kWhite);
}

std::int64_t PlainTables::TakeNumber(std::int64_t& position) {
    SkipWhite(position);
    Require(IsDigit(file_.At(position)));
    std::int64_t number = 0;
    for (int byte = file_.At(position); IsDigit(byte); byte = file_.At(++position)) {
        number = number * 10 + (byte - '0');
        Require(number <= kLargest);
    }
    return number;
}

bool PlainTables::TakeWord(std::int64_t& position, std::string_view word) {
    SkipWhite(position);
    std::int64_t at = position;
    for (const char byte : word)
        if (file_.At(at++) != byte) return false;
    position = at;
    return true;
}

}  // namespace VellumLib

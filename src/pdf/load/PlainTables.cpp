#include "load/PlainTables.h"

#include "load/FileEnd.h"
#include "load/LoadBudget.h"

#include <algorithm>
#include <set>
#include <string>
#include <utility>

namespace VellumLib {

namespace {

using namespace PoDoFo;

constexpr std::int64_t kRow = 20;
constexpr std::size_t kSections = 50;
// A look-up goes through all of them.
constexpr std::size_t kSubsections = 4'096;
constexpr std::string_view kTrailerWord = "trailer";

void Require(bool held) {
    RequirePlain(held);
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

}  // namespace

PlainTables::PlainTables(FileWindow& file, const std::optional<std::string>& password)
    : file_(file), values_(file) {
    constexpr std::string_view kHeader = "%PDF-1.";
    std::int64_t behind = 0;
    Require(file_.At(0) == '%' && values_.TakeWord(behind, kHeader));
    Require(file_.At(behind) >= '0' && file_.At(behind) <= '7');
    std::set<std::int64_t> seen;
    const FileEnd end(file_);
    std::int64_t start = end.TakeStart(values_);
    last_trailer_ = end.LastPlaceOf(kTrailerWord);
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
    if (password) decryption_ = Decryption::Unlock(*this, *password);
}

PlainTables::PlainTables(FileWindow& file, FoundObjects found)
    : file_(file), values_(file), found_(std::move(found)) {
    Require(!found_.encrypted && !found_.objects.empty());
    for (auto at = found_.trailers.rbegin(); at != found_.trailers.rend() && !trailer_.IsDictionary(); ++at) {
        PdfVariant trailer;
        try {
            values_.ReadValue(*at, trailer);
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

/// Notes where the rows are, and gives the trailer.
PdfVariant PlainTables::ReadSection(std::int64_t start) {
    std::int64_t position = start;
    Require(values_.TakeWord(position, "xref"));
    while (!values_.TakeWord(position, kTrailerWord)) {
        const std::int64_t first = values_.TakeNumber(position);
        const std::int64_t count = values_.TakeNumber(position);
        values_.SkipWhite(position);
        Require(first <= LoadBudget::kObjectNumbers && count <= (file_.Size() - position) / kRow);
        // A table that takes object 0 for one in use counts its objects wrong.
        Require(first != 0 || count == 0 || !RowAt(position).used);
        Require(subsections_.size() < kSubsections);
        subsections_.push_back({first, count, position});
        position += count * kRow;
    }
    if (position - static_cast<std::int64_t>(kTrailerWord.size()) == last_trailer_) last_trailer_ = -1;
    PdfVariant trailer;
    values_.ReadValue(position, trailer);
    Require(trailer.IsDictionary());
    return trailer;
}

PlainTables::Row PlainTables::RowAt(std::int64_t position) {
    std::int64_t at = position;
    Row row{};
    row.offset = values_.TakeNumber(at);
    Require(at == position + 10 && file_.At(at) == ' ' && IsDigit(file_.At(at + 1)));
    row.generation = values_.TakeNumber(at);
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
    std::int64_t position = values_.ReadObject(offset, object.Reference(), object);
    if (decryption_) decryption_->DecryptStrings(object);
    Require(values_.TakeWord(position, "endobj") ||
            (object.IsDictionary() && values_.TakeWord(position, "stream")));
}

}  // namespace VellumLib

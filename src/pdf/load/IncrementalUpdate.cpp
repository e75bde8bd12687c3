#include "load/IncrementalUpdate.h"

#include "load/DictionaryText.h"
#include "load/LoadBudget.h"

#include <QByteArray>
#include <QCryptographicHash>

#include <iterator>
#include <string_view>
#include <utility>
#include <vector>

namespace VellumLib {

namespace {

using namespace PoDoFo;

constexpr std::uint64_t kLargestInTable = 9'999'999'999;

std::string Hex(const QByteArray& bytes) {
    std::string text("<");
    return text.append(bytes.toHex().constData()).append(">");
}

/// Ranges of numbers that follow one another, as (first, count).
template <class Map>
std::vector<std::pair<std::uint64_t, std::uint64_t>> Ranges(const Map& entries) {
    std::vector<std::pair<std::uint64_t, std::uint64_t>> ranges;
    for (const auto& [number, entry] : entries) {
        if (ranges.empty() || ranges.back().first + ranges.back().second != number)
            ranges.emplace_back(number, 0);
        ++ranges.back().second;
    }
    return ranges;
}

std::string Digits(std::uint64_t number, std::size_t count) {
    std::string digits = std::to_string(number);
    if (digits.size() < count) digits.insert(0, count - digits.size(), '0');
    return digits;
}

void AppendBytes(std::string& text, std::uint64_t number, int width) {
    for (int shift = 8 * (width - 1); shift >= 0; shift -= 8)
        text.push_back(static_cast<char>(number >> shift));
}

}  // namespace

IncrementalUpdate::IncrementalUpdate(CrossReferences& references, FileWindow& file)
    : references_(references), file_(file), next_(references.FirstFreeNumber()) {
    if (references.IsEncrypted()) RefusePdf(ePdfError_InvalidPassword, "The PDF file is encrypted.");
}

PdfReference IncrementalUpdate::NewObject() {
    return PdfReference(static_cast<pdf_objnum>(next_++), 0);
}

void IncrementalUpdate::Put(const PdfReference& reference, std::string body) {
    bodies_[reference] = std::move(body);
}

std::string IncrementalUpdate::Tail() {
    const auto size = static_cast<std::uint64_t>(file_.Size());
    const int last = file_.At(file_.Size() - 1);
    std::string tail = last == '\n' || last == '\r' ? "" : "\n";
    for (const auto& [reference, body] : bodies_) {
        entries_[reference.ObjectNumber()] = {size + tail.size(), reference.GenerationNumber()};
        tail += std::to_string(reference.ObjectNumber()) + " " +
                std::to_string(reference.GenerationNumber()) + " obj\n";
        tail.append(body).append("\nendobj\n");
    }
    const std::uint64_t start = size + tail.size();
    if (references_.EndsInStream()) {
        AppendStream(tail);
    } else {
        if (start > kLargestInTable)
            RefusePdf(ePdfError_ValueOutOfRange, "The file is too long for its table of cross-references.");
        AppendTable(tail);
    }
    tail.append("startxref\n").append(std::to_string(start)).append("\n%%EOF\n");
    return tail;
}

/// The entries of the newest trailer, which the new one keeps. The second part of "ID" is one
/// of this content.
std::string IncrementalUpdate::TrailerEntries(const std::string& objects) const {
    DictionaryText trailer(references_.TrailerText());
    for (const char* key : {"Prev", "XRefStm", "Type", "W", "Index", "Length", "Filter", "DecodeParms", "F",
                            "FFilter", "FDecodeParms", "DL"})
        trailer.Remove(key);
    trailer.Set("Size", std::to_string(next_));
    trailer.Set("Prev", std::to_string(references_.NewestSection()));
    const PdfObject* const id = references_.Trailer().GetKey("ID");
    const bool has_parts = id && id->IsArray() && id->GetArray().size() == 2 &&
                           (id->GetArray()[0].IsString() || id->GetArray()[0].IsHexString());
    if (!has_parts) return trailer.Text();
    const PdfString& first = id->GetArray()[0].GetString();
    const QByteArray kept(first.GetString(), static_cast<int>(first.GetLength()));
    const QByteArray content =
        QByteArray::fromStdString(objects) + kept + QByteArray::number(static_cast<qlonglong>(file_.Size()));
    const QByteArray own = QCryptographicHash::hash(content, QCryptographicHash::Md5);
    trailer.Set("ID", std::string("[ ").append(Hex(kept)).append(" ").append(Hex(own)).append(" ]"));
    return trailer.Text();
}

void IncrementalUpdate::AppendTable(std::string& tail) const {
    const std::string trailer = TrailerEntries(tail);
    tail += "xref\n";
    for (const auto& [first, count] : Ranges(entries_)) {
        tail += std::to_string(first) + " " + std::to_string(count) + "\n";
        for (std::uint64_t number = first; number < first + count; ++number) {
            const Entry& entry = entries_.at(number);
            tail += Digits(entry.place, 10) + " " + Digits(entry.generation, 5) + " n \n";
        }
    }
    tail += "trailer\n" + trailer + "\n";
}

void IncrementalUpdate::AppendStream(std::string& tail) {
    constexpr int kPlace = 8;
    const PdfReference own = NewObject();
    entries_[own.ObjectNumber()] = {static_cast<std::uint64_t>(file_.Size()) + tail.size(), 0};
    std::string rows;
    std::string index = "[";
    for (const auto& [first, count] : Ranges(entries_))
        index.append(" ").append(std::to_string(first)).append(" ").append(std::to_string(count));
    for (const auto& [number, entry] : entries_) {
        rows.push_back(1);
        AppendBytes(rows, entry.place, kPlace);
        AppendBytes(rows, entry.generation, 2);
    }
    DictionaryText dictionary(TrailerEntries(tail));
    dictionary.Set("Type", "/XRef");
    dictionary.Set("W", std::string("[ 1 ").append(std::to_string(kPlace)).append(" 2 ]"));
    dictionary.Set("Index", index + " ]");
    dictionary.Set("Length", std::to_string(rows.size()));
    tail += std::to_string(own.ObjectNumber()) + " 0 obj\n" + dictionary.Text() + "\nstream\n" + rows +
            "\nendstream\nendobj\n";
}

}  // namespace VellumLib

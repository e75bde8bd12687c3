#include "load/GuardedReader.h"

#include "load/StreamInspection.h"

#include <podofo/base/PdfDefines.h>

#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>

namespace VellumLib {

namespace {

constexpr std::int64_t kTableEntry = 20;
constexpr std::size_t kLongestNumber = 20;
constexpr std::int64_t kFarthestEndMarker = std::int64_t{1024} * 1024;

// As the parser reads a number: a sign may stand before it, anything behind it.
std::int64_t Number(std::string_view word) {
    std::int64_t value = -1;
    if (!word.empty() && word.front() == '+') word.remove_prefix(1);
    std::from_chars(word.data(), word.data() + word.size(), value);
    return value;
}

}  // namespace

GuardedReader::GuardedReader(std::unique_ptr<FileWindow> file)
    : held_(std::move(file)), file_(*held_), budget_(file_.Size()) {
    tracker_.KeepDictionaries(true);
}

template <typename Step>
void GuardedReader::Guard(Step step) {
    if (!loading_) return step();
    try {
        step();
    } catch (const PoDoFo::PdfError& error) {
        refusal_ = error;
        throw;
    }
}

int GuardedReader::Get() {
    const int byte = file_.At(position_);
    if (byte < 0) {
        at_end_ = true;
        return byte;
    }
    ++position_;
    tracker_.Consume(static_cast<unsigned char>(byte));
    CheckObject();
    if (loading_ && tracker_.TakeDictionaryClosed()) Guard([this] { TakeDictionary(); });
    return byte;
}

void GuardedReader::CheckObject() {
    if (tracker_.Depth() <= budget_.Deepest() && budget_.OneObject().Allow(tracker_) &&
        budget_.HasRoomFor(tracker_.Values()))
        return;
    Guard([this] {
        if (!budget_.HasRoomFor(tracker_.Values())) SettleValues();
        if (tracker_.Depth() > budget_.Deepest())
            RefusePdf(PoDoFo::ePdfError_BrokenFile, "An object is nested too deep.");
        RefusePdf(PoDoFo::ePdfError_OutOfMemory, "An object is too large.");
    });
}

// The parser steps past the head of an object, or the word that begins a
// stream, and asks where it is.
std::int64_t GuardedReader::Tell() {
    if (!loading_) return position_;
    Guard([this] {
        const std::string_view word = tracker_.Word(0);
        if (word == "obj")
            TakeObjectHead();
        else if (word.substr(0, 6) == "stream" && !dictionary_.empty())
            NoteStream();
    });
    return position_;
}

// The parser keeps an object under the number in its head, and of two under one number it
// takes any, though the cross-references may name the other.
void GuardedReader::TakeObjectHead() {
    const std::int64_t number = std::max<std::int64_t>(Number(tracker_.Word(2)), 0);
    budget_.InsertObject(static_cast<std::uint64_t>(number));
    if (heads_.emplace(number, position_).first->second != position_)
        RefusePdf(PoDoFo::ePdfError_BrokenFile, "The cross-references lead to two objects with the number " +
                                                    std::to_string(number) +
                                                    "; mend the file, as with qpdf.");
    tracker_.ForgetWords();
}

void GuardedReader::NoteStream() {
    if (dictionary_cut_) RefusePdf(PoDoFo::ePdfError_BrokenFile, "The dictionary of a stream is too long.");
    streams_[DataStart(position_)] = std::move(dictionary_);
    dictionary_.clear();
}

// Blanks behind the word, then one line end.
std::int64_t GuardedReader::DataStart(std::int64_t position) {
    while (file_.At(position) == ' ')
        ++position;
    const int end = file_.At(position);
    if (end == '\r' && file_.At(position + 1) == '\n') return position + 2;
    const bool white = end == '\r' || end == '\n' || end == '\t' || end == '\f' || end == 0;
    return white ? position + 1 : position;
}

void GuardedReader::TakeDictionary() {
    const bool is_trailer = tracker_.Word(0) == "trailer";
    dictionary_ = tracker_.DictionaryText();
    dictionary_cut_ = tracker_.DictionaryCut();
    if (is_trailer) {
        if (dictionary_cut_) RefusePdf(PoDoFo::ePdfError_BrokenFile, "The trailer is too long.");
        budget_.AddSection();
    }
    if (!dictionary_cut_ && AnnouncesEncryption(dictionary_, is_trailer))
        RefusePdf(PoDoFo::ePdfError_InvalidPassword, "A password is required to read this PDF file.");
}

void GuardedReader::SettleValues() {
    budget_.AddValues(tracker_.Values(), tracker_.CopyCost());
    tracker_.Restart();
}

void GuardedReader::Seek(std::int64_t offset, std::ios_base::seekdir from) {
    if (refusal_) throw PoDoFo::PdfError(*refusal_);
    const std::int64_t base = from == std::ios_base::beg   ? 0
                              : from == std::ios_base::cur ? position_
                                                           : file_.Size();
    std::int64_t target = 0;
    if (__builtin_add_overflow(base, offset, &target) || target < 0)
        RefusePdf(PoDoFo::ePdfError_InvalidDeviceOperation, "Failed to seek to given position in the file");
    at_end_ = false;
    // While a stream is read the parser cannot be stopped cleanly, so it is
    // before that.
    if (loading_) InspectStreamAt(target);
    // The words before a place that the parser only confirms still count there.
    if (target == position_) return;
    position_ = target;
    table_next_ = -1;
    Guard([this] { SettleValues(); });
}

void GuardedReader::InspectStreamAt(std::int64_t start) {
    const auto stream = streams_.find(start);
    if (stream == streams_.end()) return;
    Guard([&] { InspectStream(file_, stream->second, start, budget_); });
    streams_.erase(stream);
}

std::size_t GuardedReader::Read(char* target, std::int64_t count) {
    if (count < 0) return 0;
    const std::int64_t start = position_;
    const std::size_t got = file_.Read(start, target, static_cast<std::size_t>(count));
    position_ += static_cast<std::int64_t>(got);
    at_end_ = static_cast<std::int64_t>(got) < count;
    Guard([&] { TakeRead(start, target, count, got); });
    return got;
}

void GuardedReader::TakeRead(std::int64_t start, const char* data, std::int64_t count, std::size_t got) {
    if (loading_ && count == kTableEntry)
        TakeTableEntry(start, data, got);
    else
        SettleValues();
    budget_.AddStreamBytes(got);
}

// A subsection of a table begins with two numbers; its lines are then read one
// by one.
void GuardedReader::TakeTableEntry(std::int64_t start, const char* data, std::size_t size) {
    if (start != table_next_) {
        const std::string_view first = tracker_.Word(1);
        if (first.size() > kLongestNumber)
            RefusePdf(PoDoFo::ePdfError_BrokenFile, "A number of the cross-references is too long.");
        table_number_ = Number(first);
    }
    table_next_ = start + kTableEntry;
    SettleValues();
    const bool in_use = std::string_view(data, size).find('n') != std::string_view::npos;
    if (in_use && table_number_ >= 0) budget_.AnnounceObject(static_cast<std::uint64_t>(table_number_));
    ++table_number_;
}

void GuardedReader::EndLoading() {
    loading_ = false;
    tracker_.KeepDictionaries(false);
    budget_.EndLoading();
    streams_.clear();
    heads_.clear();
    dictionary_.clear();
}

bool GuardedReader::HasText(std::int64_t position, std::string_view text) {
    for (const char byte : text)
        if (file_.At(position++) != byte) return false;
    return true;
}

bool GuardedReader::HasEndMarker() {
    constexpr std::string_view kMarker = "%%EOF";
    const std::int64_t last = file_.Size() - static_cast<std::int64_t>(kMarker.size());
    const std::int64_t first = std::max<std::int64_t>(0, last - kFarthestEndMarker);
    for (std::int64_t at = last; at >= first; --at)
        if (HasText(at, kMarker)) return true;
    return false;
}

}  // namespace VellumLib

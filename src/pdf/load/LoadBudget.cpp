#include "load/LoadBudget.h"

#include <algorithm>

namespace VellumLib {

namespace {

using PoDoFo::EPdfError;

constexpr std::uint64_t kMebi = std::uint64_t{1024} * 1024;
// Prices as measured: a parser object with its tokenizer, a parsed object, and the
// room that a list of objects has taken when it was copied into its owner.
constexpr std::uint64_t kParserObject = 1'300;
constexpr std::uint64_t kCompressedObject = 700;
constexpr std::uint64_t kMemory = 192 * kMebi;
constexpr std::uint64_t kMemoryPerByte = 3;
constexpr std::uint64_t kCopies = 6'000'000;
constexpr std::uint64_t kOneDecoded = 16 * kMebi;
constexpr std::uint64_t kDecoded = 48 * kMebi;
constexpr std::uint64_t kShifted = 1'000'000'000;
constexpr std::uint64_t kCompared = 800'000'000;
constexpr std::uint64_t kObjectStreams = 20'000;

void Require(bool held, EPdfError code, const char* text) {
    if (!held) RefusePdf(code, text);
}

}  // namespace

void RefusePdf(EPdfError code, const std::string& text) {
    throw PoDoFo::PdfError(code, "GuardedLoad", 0, text);
}

void LoadBudget::AddMemory(std::uint64_t bytes) {
    memory_ += bytes;
    Require(memory_ <= kMemory + kMemoryPerByte * file_size_, PoDoFo::ePdfError_OutOfMemory,
            "The file announces more objects than can be held.");
}

void LoadBudget::AddSection() {
    Require(++sections_ <= kSections, PoDoFo::ePdfError_BrokenFile,
            "The cross-references have too many sections.");
}

void LoadBudget::AnnounceObject(std::uint64_t number) {
    if (number >= static_cast<std::uint64_t>(kObjectNumbers)) return;
    if (number >= announced_.size()) announced_.resize(number + 1);
    if (announced_[number]) return;
    announced_[number] = true;
    AddMemory(kParserObject);
}

void LoadBudget::AnnounceCompressed(std::uint64_t stream) {
    most_in_a_stream_ = std::max(most_in_a_stream_, ++compressed_[stream]);
}

void LoadBudget::InsertObject(std::uint64_t number) {
    const auto entry = static_cast<std::uint32_t>(number);
    if (inserted_.empty() || inserted_.back() <= entry) return inserted_.push_back(entry);
    const auto place = std::lower_bound(inserted_.begin(), inserted_.end(), entry);
    shifted_ += static_cast<std::uint64_t>(inserted_.end() - place);
    Require(shifted_ <= kShifted, PoDoFo::ePdfError_BrokenFile, "The objects are out of order.");
    inserted_.insert(place, entry);
}

void LoadBudget::OpenObjectStream(std::uint64_t count) {
    Require(++object_streams_ <= kObjectStreams, PoDoFo::ePdfError_OutOfMemory,
            "The file has too many object streams.");
    // Each object is looked up in the list of those that belong to the stream.
    Require(count <= kCompared, PoDoFo::ePdfError_BrokenFile, "An object stream has too many objects.");
    compared_ += count * most_in_a_stream_;
    Require(compared_ <= kCompared, PoDoFo::ePdfError_BrokenFile, "An object stream has too many objects.");
    AddMemory(count * kCompressedObject);
}

void LoadBudget::AddValues(std::uint64_t values, std::uint64_t copies) {
    const bool has_room = HasRoomFor(values);
    values_ += values;
    copies_ += copies;
    Require(has_room && copies_ <= kCopies + 2 * file_size_, PoDoFo::ePdfError_OutOfMemory,
            "The objects hold more values than the file explains.");
}

void LoadBudget::AddStreamBytes(std::uint64_t bytes) {
    stream_bytes_ += bytes;
    Require(stream_bytes_ <= 32 * kMebi + 8 * file_size_, PoDoFo::ePdfError_OutOfMemory,
            "The streams overlap too often.");
}

void LoadBudget::AddDecodedBytes(std::uint64_t bytes) {
    decoded_bytes_ += bytes;
    Require(bytes <= kOneDecoded && decoded_bytes_ <= kDecoded + 2 * file_size_,
            PoDoFo::ePdfError_OutOfMemory, "A stream of cross-references or objects is too large.");
}

std::uint64_t LoadBudget::DecodableBytes() const {
    return std::min(kOneDecoded, kDecoded + 2 * file_size_ - decoded_bytes_) + 1;
}

void LoadBudget::EndLoading() {
    announced_ = {};
    compressed_ = {};
    inserted_ = {};
    sections_ = 0;
}

}  // namespace VellumLib

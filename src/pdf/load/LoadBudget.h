#pragma once

#include "load/SyntaxTracker.h"

#include <podofo/base/PdfError.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace VellumLib {

/// Throws `code` with `text` as its information.
[[noreturn]] void RefusePdf(PoDoFo::EPdfError code, const std::string& text);

/// What one object may cost. Files of measured positions have arrays of any length, so that the
/// limits grow with the file: a number of ten digits explains the memory that it takes, and the
/// zeros of a small file do not.
class ObjectLimits {
public:
    explicit ObjectLimits(std::int64_t file_size)
        : memory_(kMemory + kMemoryPerByte * static_cast<std::uint64_t>(file_size)),
          copies_(kCopies + static_cast<std::uint64_t>(file_size) / 2) {}

    /// Of the object that is tracked, or of all those whose copies are counted.
    bool Allow(const SyntaxTracker& object, std::uint64_t copies_before = 0) const {
        return object.Memory() <= memory_ && copies_before + object.CopyCost() <= copies_;
    }

private:
    static constexpr std::uint64_t kMemory = std::uint64_t{160} << 20;
    static constexpr std::uint64_t kMemoryPerByte = 16;
    static constexpr std::uint64_t kCopies = 3'000'000;

    std::uint64_t memory_;
    std::uint64_t copies_;
};

/// What one document may cost. An object, a value, a shifted entry have a price in
/// memory or in time that is far above their bytes in the file, so each kind is
/// counted where it first shows, and a document that would cost more than its
/// length explains is refused before the parser pays.
class LoadBudget {
public:
    // Deeper nesting is copied once a level, in time that grows with the cube.
    static constexpr int kDeepest = 100;
    // The parser keeps a line for each number up to the largest one.
    static constexpr long kObjectNumbers = 2'000'000;
    // Each section is two steps of a recursion that the parser ends, badly, at 256.
    static constexpr int kSections = 100;
    static constexpr int kRecursion = 120;

    explicit LoadBudget(std::int64_t file_size)
        : objects_(file_size), file_size_(static_cast<std::uint64_t>(file_size)) {}

    const ObjectLimits& OneObject() const { return objects_; }

    void AddSection();
    /// How deep an object may be nested now: while a load goes down from section to
    /// section, the parser's recursion is partly used up.
    int Deepest() const { return std::min(kDeepest, 2 * (kRecursion - sections_)); }
    /// An object that the cross-references announce at a place of its own. Announcing
    /// it again, as each update of a file does, costs nothing.
    void AnnounceObject(std::uint64_t number);
    /// An object that the cross-references announce inside of an object stream.
    void AnnounceCompressed(std::uint64_t stream);
    /// The parser puts object `number` into its sorted list.
    void InsertObject(std::uint64_t number);
    /// An object stream with `count` objects is about to be read.
    void OpenObjectStream(std::uint64_t count);
    /// False if so many values more are too many.
    bool HasRoomFor(std::uint64_t values) const {
        return values_ + values <= kValues + file_size_ / kBytesPerValue;
    }
    void AddValues(std::uint64_t values, std::uint64_t copies);
    void AddStreamBytes(std::uint64_t bytes);
    void AddDecodedBytes(std::uint64_t bytes);
    /// How much one stream of cross-references or objects may still decode to.
    std::uint64_t DecodableBytes() const;
    /// Forgets what only the load itself needs.
    void EndLoading();

private:
    static constexpr std::uint64_t kValues = 1'000'000;
    // With the blank between them, values of files that are no attack are longer on average.
    static constexpr std::uint64_t kBytesPerValue = 5;

    void AddMemory(std::uint64_t bytes);

    ObjectLimits objects_;
    std::uint64_t file_size_;
    std::uint64_t memory_ = 0;
    std::uint64_t values_ = 0;
    std::uint64_t copies_ = 0;
    std::uint64_t stream_bytes_ = 0;
    std::uint64_t decoded_bytes_ = 0;
    std::uint64_t shifted_ = 0;
    std::uint64_t compared_ = 0;
    std::uint64_t object_streams_ = 0;
    std::uint64_t most_in_a_stream_ = 0;
    int sections_ = 0;
    std::vector<bool> announced_;
    std::unordered_map<std::uint64_t, std::uint64_t> compressed_;
    std::vector<std::uint32_t> inserted_;
};

}  // namespace VellumLib

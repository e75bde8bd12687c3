#pragma once

#include <podofo/podofo.h>

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace VellumLib {

/// An entry of a cross-reference stream: 0 for a free object, 1 for one at a place of the file,
/// 2 for one in the object stream of that number.
struct XRefEntry {
    std::uint64_t type;
    std::uint64_t place;
    std::uint64_t detail;  ///< the generation, or the index in the object stream
};

/// The layout of a cross-reference stream: field widths and (first, count) pairs.
struct XRefLayout {
    std::array<std::uint64_t, 3> widths{};
    std::vector<std::int64_t> ranges;

    std::uint64_t EntrySize() const { return widths[0] + widths[1] + widths[2]; }
    /// The entry whose bytes begin at `at`; they are all there.
    XRefEntry EntryAt(const char* at) const;
};

/// Nothing for a layout that cannot be read; a PdfError for one that asks for more entries than
/// `available` bytes hold.
std::optional<XRefLayout> ReadLayout(const PoDoFo::PdfDictionary& dictionary, std::uint64_t available);

}  // namespace VellumLib

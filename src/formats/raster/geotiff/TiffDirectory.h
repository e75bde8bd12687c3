#pragma once

#include "common/files/ByteReader.h"
#include "raster/geotiff/StagedFile.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace MapAnchor {

/// True for a file that begins as a TIFF does, classic or BigTIFF, of either byte order.
bool IsTiff(const StagedFile& file);

/// The bytes that name a TIFF's first directory.
struct TiffPointer {
    std::uint64_t offset = 0;
    std::size_t size = 0;
};

/// An entry of a directory. Its values may be anywhere in the file, or beyond its end.
struct TiffEntry {
    std::uint16_t tag = 0;
    std::uint16_t type = 0;
    std::uint64_t count = 0;
    std::uint64_t start = 0;  ///< offset in the file, whether the entry holds the values or not
    std::size_t size = 0;     ///< of one value
    bool is_within_file = false;

    /// True for the types that a list of strips or tiles may have.
    bool IsWhole() const;
};

/// Reads the directories of a TIFF, which must be one (IsTiff) and must outlive this.
class TiffDirectoryReader {
public:
    explicit TiffDirectoryReader(const StagedFile& tiff);

    ByteOrder Order() const { return order_; }
    TiffPointer Pointer() const { return {layout_.pointer, layout_.pointer}; }
    std::uint64_t FirstDirectory() const;
    /// What a pointer that was read elsewhere leads to.
    std::uint64_t ValueOf(const std::string& pointer) const;

    /// The entries of the directory at `start`, but for those of types that do not exist;
    /// empty when the directory is not whole.
    std::optional<std::vector<TiffEntry>> Entries(std::uint64_t start) const;

    /// Where the directory behind the one at `start` begins; 0 for none.
    std::uint64_t DirectoryAfter(std::uint64_t start) const;

    /// The first value; 0 without one.
    std::uint64_t Number(const TiffEntry& entry) const;
    /// The bytes of the values from `first` to before `end`, in parts of kPart values at most.
    std::string Part(const TiffEntry& entry, std::uint64_t first, std::uint64_t end) const;
    /// The value that `reader` is at, of `size` bytes.
    static std::uint64_t Next(ByteReader& reader, std::size_t size);

    static constexpr std::uint64_t kPart = 65536;

private:
    /// The sizes of the two layouts.
    struct Layout {
        std::size_t pointer;      ///< an offset, and a value within an entry
        std::size_t entry_count;  ///< the number of entries in front of a directory
        std::size_t entry;
    };
    static constexpr Layout kClassic = {4, 2, 12};
    static constexpr Layout kBig = {8, 8, 20};

    std::uint64_t NumberAt(std::uint64_t offset, std::size_t size) const;
    TiffEntry EntryOf(std::string_view bytes, std::uint64_t at) const;

    const StagedFile& file_;
    ByteOrder order_;
    Layout layout_;
};

}  // namespace MapAnchor

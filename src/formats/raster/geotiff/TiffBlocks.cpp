#include "raster/geotiff/TiffBlocks.h"

#include "raster/geotiff/HeaderTags.h"
#include "raster/geotiff/TiffDirectory.h"

#include <algorithm>
#include <limits>
#include <optional>

namespace MapAnchor {
namespace {

using namespace HeaderTags;

constexpr std::uint64_t kSeparatePlanes = 2;

/// What the first directory states of the raster and of its strips or tiles.
struct BlockFacts {
    std::uint64_t width = 0, length = 0, depth = 1;
    std::uint64_t samples = 1, planes = 1;
    std::uint64_t rows = std::numeric_limits<std::uint32_t>::max();
    std::uint64_t tile_width = 0, tile_length = 0;
    std::optional<TiffEntry> offsets, byte_counts;
    bool is_ambiguous = false;  ///< there are two lists of one kind

    void Set(std::uint64_t value, const TiffEntry& list) {
        switch (list.tag) {
            case kImageWidth:
                width = value;
                break;
            case kImageLength:
                length = value;
                break;
            case kImageDepth:
                depth = value;
                break;
            case kSamplesPerPixel:
                samples = value;
                break;
            case kPlanarConfiguration:
                planes = value;
                break;
            case kRowsPerStrip:
                rows = value;
                break;
            case kTileWidth:
                tile_width = value;
                break;
            case kTileLength:
                tile_length = value;
                break;
            case kStripOffsets:
            case kTileOffsets:
                is_ambiguous = is_ambiguous || offsets;
                offsets = list;
                break;
            case kStripByteCounts:
            case kTileByteCounts:
                is_ambiguous = is_ambiguous || byte_counts;
                byte_counts = list;
                break;
            default:
                break;
        }
    }

    /// How many strips or tiles there are; empty where the numbers make no sense.
    std::optional<std::uint64_t> BlockCount() const {
        const auto parts = [](std::uint64_t whole, std::uint64_t part) { return (whole + part - 1) / part; };
        const bool tiled = tile_width != 0 || tile_length != 0;
        constexpr std::uint64_t kMax = std::numeric_limits<std::uint32_t>::max();
        if (width == 0 || length == 0 || width > kMax || length > kMax) return std::nullopt;
        if (tiled ? tile_width == 0 || tile_length == 0 : rows == 0) return std::nullopt;
        std::uint64_t blocks = tiled ? parts(length, tile_length) : parts(length, rows);
        if (tiled) blocks *= parts(width, tile_width);
        const std::uint64_t planes_of_blocks = planes == kSeparatePlanes ? samples : 1;
        if (blocks > kMax / std::max<std::uint64_t>(planes_of_blocks, 1)) return std::nullopt;
        return blocks * planes_of_blocks;
    }
};

/// Bytes from `start` to before `end`; empty while the end is 0.
struct Extent {
    std::uint64_t start = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t end = 0;
};

/// Empty when the first directory is not whole.
std::optional<BlockFacts> ReadFacts(const TiffDirectoryReader& reader) {
    const auto entries = reader.Entries(reader.FirstDirectory());
    if (!entries) return std::nullopt;
    BlockFacts facts;
    for (const TiffEntry& entry : *entries)
        facts.Set(reader.Number(entry), entry);
    return facts;
}

/// The stretch of the file that the blocks take. Both lists must be within the file;
/// without byte counts the end is not known.
Extent ExtentOfBlocks(const TiffDirectoryReader& reader, const BlockFacts& facts) {
    constexpr std::uint64_t kMaxOffset = std::uint64_t{1} << 62;
    Extent extent;
    std::uint64_t count = facts.offsets->count;
    if (facts.byte_counts) count = std::min(count, facts.byte_counts->count);
    for (std::uint64_t first = 0; first < count; first += TiffDirectoryReader::kPart) {
        const std::string offsets = reader.Part(*facts.offsets, first, count);
        const std::string sizes = facts.byte_counts ? reader.Part(*facts.byte_counts, first, count) : "";
        ByteReader offset(offsets, reader.Order());
        ByteReader size(sizes, reader.Order());
        while (offset.Ok() && !offset.AtEnd()) {
            const std::uint64_t start = TiffDirectoryReader::Next(offset, facts.offsets->size);
            const std::uint64_t length =
                facts.byte_counts ? TiffDirectoryReader::Next(size, facts.byte_counts->size) : 1;
            // A block without bytes is one that was never written.
            if (length == 0) continue;
            extent.start = std::min(extent.start, start);
            extent.end = std::max(extent.end, std::min(start, kMaxOffset) + std::min(length, kMaxOffset));
        }
    }
    return extent;
}

std::string FaultOf(const std::optional<TiffEntry>& list, std::uint64_t blocks, const std::string& name) {
    if (!list->is_within_file) return "the file ends before its list of " + name;
    if (!list->IsWhole()) return "its list of " + name + " is not of whole numbers";
    if (list->count >= blocks) return {};
    return "its list of " + name + " has " + std::to_string(list->count) + " entries for " +
           std::to_string(blocks) + " strips or tiles";
}

}  // namespace

std::string FaultOfBlockLists(StagedFile& tiff) {
    const TiffDirectoryReader reader(tiff);
    const std::optional<BlockFacts> facts = ReadFacts(reader);
    if (!facts) return "its first directory is not whole";
    if (facts->depth > 1) return {};
    const std::optional<std::uint64_t> blocks = facts->BlockCount();
    if (!blocks) return "its size and the size of its strips or tiles contradict each other";
    if (!facts->offsets) return "it has no list of strips or tiles";
    if (facts->is_ambiguous) return "it has two lists of strips or tiles";
    std::string fault = FaultOf(facts->offsets, *blocks, "block offsets");
    // libtiff estimates the byte counts where the file has none.
    if (fault.empty() && facts->byte_counts) fault = FaultOf(facts->byte_counts, *blocks, "block sizes");
    if (!fault.empty()) return fault;
    const Extent extent = ExtentOfBlocks(reader, *facts);
    const TiffPointer pointer = reader.Pointer();
    if (extent.start < pointer.offset + pointer.size)
        return "a strip or tile starts within the file's header";
    if (extent.end > tiff.Length())
        return "it is cut short: its last strip or tile ends after the end of the file";
    for (const std::optional<TiffEntry>& list : {facts->offsets, facts->byte_counts})
        if (list) tiff.KeepInMemory(list->start, list->count * list->size);
    return {};
}

}  // namespace MapAnchor

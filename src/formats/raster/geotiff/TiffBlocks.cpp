#include "raster/geotiff/TiffBlocks.h"

#include "common/files/ByteReader.h"
#include "raster/geotiff/HeaderTags.h"

#include <algorithm>
#include <limits>
#include <map>
#include <optional>

namespace MapAnchor {
namespace {

using namespace HeaderTags;

constexpr std::uint64_t kSeparatePlanes = 2;

/// The sizes of the two layouts.
struct Layout {
    std::size_t pointer;      ///< an offset, and a value within an entry
    std::size_t entry_count;  ///< the number of entries in front of a directory
    std::size_t entry;
};
constexpr Layout kClassic = {4, 2, 12};
constexpr Layout kBig = {8, 8, 20};
/// libtiff refuses larger directories.
constexpr std::uint64_t kMaxEntries = 65535;

bool IsBig(const std::string& head) {
    return head[2] == 43 || head[3] == 43;
}

std::uint64_t ReadNumber(ByteReader& reader, std::size_t size) {
    switch (size) {
        case 1:
            return reader.U8();
        case 2:
            return reader.U16();
        case 4:
            return reader.U32();
        default:
            return reader.U64();
    }
}

/// Size of a value of a TIFF type; 0 for a type that does not exist.
std::size_t SizeOfType(std::uint16_t type) {
    constexpr std::size_t kSizes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 0, 0, 8, 8, 8};
    return type < std::size(kSizes) ? kSizes[type] : 0;
}

/// Types of the numbers that a list of strips or tiles may have.
enum Type : std::uint16_t { kShort = 3, kLong = 4, kLong8 = 16, kSignedLong8 = 17 };

/// The values of an entry.
struct List {
    std::uint16_t type = 0;
    std::uint64_t count = 0;
    std::uint64_t start = 0;  ///< offset in the file, whether the entry holds them or not
    std::size_t size = 0;     ///< of one value
    bool is_within_file = false;
};

/// What the first directory states of the raster and of its strips or tiles.
struct BlockFacts {
    std::uint64_t width = 0, length = 0, depth = 1;
    std::uint64_t samples = 1, planes = 1;
    std::uint64_t rows = std::numeric_limits<std::uint32_t>::max();
    std::uint64_t tile_width = 0, tile_length = 0;
    std::optional<List> offsets, byte_counts;
    bool is_ambiguous = false;  ///< there are two lists of one kind

    void Set(std::uint16_t tag, std::uint64_t value, const List& list) {
        switch (tag) {
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

class DirectoryReader {
public:
    explicit DirectoryReader(const StagedFile& file) : file_(file) {
        const std::string head = file.Bytes(0, 16);
        order_ = head[0] == 'I' ? ByteOrder::Little : ByteOrder::Big;
        layout_ = IsBig(head) ? kBig : kClassic;
    }

    TiffPointer Pointer() const { return {layout_.pointer, layout_.pointer}; }

    std::uint64_t FirstDirectory() const { return NumberAt(layout_.pointer, layout_.pointer); }

    /// What a pointer that was read elsewhere leads to.
    std::uint64_t ValueOf(const std::string& pointer) const {
        ByteReader reader(pointer, order_);
        return ReadNumber(reader, layout_.pointer);
    }

    /// Calls `use` with the tag and the values of each entry of the directory at `start`;
    /// false when the directory is not whole.
    template <class Use>
    bool ForEachEntry(std::uint64_t start, Use use) const {
        const std::uint64_t count = NumberAt(start, layout_.entry_count);
        if (start == 0 || count == 0 || count > kMaxEntries) return false;
        const std::string entries =
            file_.Bytes(start + layout_.entry_count, static_cast<std::size_t>(count) * layout_.entry);
        if (entries.size() != count * layout_.entry) return false;
        for (std::size_t at = 0; at < entries.size(); at += layout_.entry)
            ReadEntry(std::string_view(entries).substr(at, layout_.entry), start + layout_.entry_count + at,
                      use);
        return true;
    }

    /// Empty when the first directory is not whole.
    std::optional<BlockFacts> Read() const {
        BlockFacts facts;
        const bool is_whole =
            ForEachEntry(FirstDirectory(), [this, &facts](std::uint16_t tag, const List& list) {
                const bool has_value = list.count > 0 && list.is_within_file;
                facts.Set(tag, has_value ? NumberAt(list.start, list.size) : 0, list);
            });
        return is_whole ? std::optional(facts) : std::nullopt;
    }

    /// The stretch of the file that the blocks take. Both lists must be within the file;
    /// without byte counts the end is not known.
    Extent ExtentOfBlocks(const BlockFacts& facts) const {
        Extent extent;
        std::uint64_t count = facts.offsets->count;
        if (facts.byte_counts) count = std::min(count, facts.byte_counts->count);
        for (std::uint64_t first = 0; first < count; first += kListPart) {
            const std::string offsets = Part(*facts.offsets, first, count);
            const std::string sizes = facts.byte_counts ? Part(*facts.byte_counts, first, count) : "";
            ByteReader offset(offsets, order_);
            ByteReader size(sizes, order_);
            while (!offset.AtEnd()) {
                const std::uint64_t start = ReadNumber(offset, facts.offsets->size);
                const std::uint64_t length =
                    facts.byte_counts ? ReadNumber(size, facts.byte_counts->size) : 1;
                // A block without bytes is one that was never written.
                if (length == 0) continue;
                extent.start = std::min(extent.start, start);
                extent.end = std::max(extent.end, std::min(start, kMaxOffset) + std::min(length, kMaxOffset));
            }
        }
        return extent;
    }

private:
    static constexpr std::uint64_t kListPart = 65536;
    static constexpr std::uint64_t kMaxOffset = std::uint64_t{1} << 62;

    std::string Part(const List& list, std::uint64_t first, std::uint64_t end) const {
        const std::uint64_t count = std::min(kListPart, end - first);
        return file_.Bytes(list.start + first * list.size, static_cast<std::size_t>(count * list.size));
    }

    std::uint64_t NumberAt(std::uint64_t offset, std::size_t size) const {
        const std::string bytes = file_.Bytes(offset, size);
        ByteReader reader(bytes, order_);
        return ReadNumber(reader, size);
    }

    /// `at` is the entry's own offset in the file.
    template <class Use>
    void ReadEntry(std::string_view entry, std::uint64_t at, Use& use) const {
        ByteReader reader(entry, order_);
        const std::uint16_t tag = reader.U16();
        List list;
        list.type = reader.U16();
        list.size = SizeOfType(list.type);
        list.count = ReadNumber(reader, layout_.pointer);
        if (list.size == 0) return;
        const bool is_inside = list.count <= layout_.pointer / list.size;
        list.start = is_inside ? at + entry.size() - layout_.pointer : ReadNumber(reader, layout_.pointer);
        list.is_within_file =
            list.start <= file_.Length() && list.count <= (file_.Length() - list.start) / list.size;
        use(tag, list);
    }

    const StagedFile& file_;
    ByteOrder order_;
    Layout layout_;
};

std::string FaultOf(const std::optional<List>& list, std::uint64_t blocks, const std::string& name) {
    if (!list->is_within_file) return "the file ends before its list of " + name;
    constexpr Type kTypes[] = {kShort, kLong, kLong8, kSignedLong8};
    if (std::find(std::begin(kTypes), std::end(kTypes), list->type) == std::end(kTypes))
        return "its list of " + name + " is not of whole numbers";
    if (list->count >= blocks) return {};
    return "its list of " + name + " has " + std::to_string(list->count) + " entries for " +
           std::to_string(blocks) + " strips or tiles";
}

/// What an update may add, change or remove: the georeferencing (GeoTIFF 1.1, and GDAL's
/// metadata, which hold AREA_OR_POINT) and how a raster without tiles is cut into strips.
bool MayChange(std::uint16_t tag) {
    constexpr std::uint16_t kTags[] = {
        kStripOffsets, kRowsPerStrip, kStripByteCounts, 33550, 33922, 34264, 34735, 34736, 34737, 42112};
    return std::find(std::begin(kTags), std::end(kTags), tag) != std::end(kTags);
}

}  // namespace

bool IsTiff(const StagedFile& file) {
    const std::string head = file.Bytes(0, 16);
    if (head.size() < 8) return false;
    for (const char* mark : {"II*\0", "II+\0", "MM\0*", "MM\0+"})
        if (head.compare(0, 4, mark, 4) == 0) return !IsBig(head) || head.size() == 16;
    return false;
}

TiffPointer PointerOf(const StagedFile& tiff) {
    return DirectoryReader(tiff).Pointer();
}

std::string FaultOfNewDirectory(const StagedFile& tiff, const std::string& old_pointer) {
    const DirectoryReader reader(tiff);
    std::map<std::uint16_t, std::uint64_t> counts;
    if (!reader.ForEachEntry(reader.FirstDirectory(), [&counts](std::uint16_t tag, const List& list) {
            counts.emplace(tag, list.count);
        }))
        return "its new directory would not be whole";
    std::string fault;
    reader.ForEachEntry(reader.ValueOf(old_pointer), [&](std::uint16_t tag, const List& list) {
        const auto found = counts.find(tag);
        if (!MayChange(tag) && (found == counts.end() || found->second != list.count))
            fault = "the update would lose its tag " + std::to_string(tag);
    });
    return fault;
}

std::string FaultOfBlockLists(StagedFile& tiff) {
    const DirectoryReader reader(tiff);
    const std::optional<BlockFacts> facts = reader.Read();
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
    const Extent extent = reader.ExtentOfBlocks(*facts);
    const TiffPointer pointer = reader.Pointer();
    if (extent.start < pointer.offset + pointer.size)
        return "a strip or tile starts within the file's header";
    if (extent.end > tiff.Length())
        return "it is cut short: its last strip or tile ends after the end of the file";
    for (const std::optional<List>& list : {facts->offsets, facts->byte_counts})
        if (list) tiff.KeepInMemory(list->start, list->count * list->size);
    return {};
}

}  // namespace MapAnchor

#include "raster/geotiff/TiffDirectory.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace MapAnchor {
namespace {

/// libtiff refuses larger directories.
constexpr std::uint64_t kMaxEntries = 65535;

bool IsBig(const std::string& head) {
    return head[2] == 43 || head[3] == 43;
}

/// Size of a value of a TIFF type; 0 for a type that does not exist.
std::size_t SizeOfType(std::uint16_t type) {
    constexpr std::size_t kSizes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 0, 0, 8, 8, 8};
    return type < std::size(kSizes) ? kSizes[type] : 0;
}

}  // namespace

bool IsTiff(const StagedFile& file) {
    const std::string head = file.Bytes(0, 16);
    if (head.size() < 8) return false;
    for (const char* mark : {"II*\0", "II+\0", "MM\0*", "MM\0+"})
        if (head.compare(0, 4, mark, 4) == 0) return !IsBig(head) || head.size() == 16;
    return false;
}

bool TiffEntry::IsWhole() const {
    enum : std::uint16_t { kShort = 3, kLong = 4, kLong8 = 16, kSignedLong8 = 17 };
    return type == kShort || type == kLong || type == kLong8 || type == kSignedLong8;
}

TiffDirectoryReader::TiffDirectoryReader(const StagedFile& tiff) : file_(tiff) {
    const std::string head = tiff.Bytes(0, 16);
    order_ = head[0] == 'I' ? ByteOrder::Little : ByteOrder::Big;
    layout_ = IsBig(head) ? kBig : kClassic;
}

std::uint64_t TiffDirectoryReader::Next(ByteReader& reader, std::size_t size) {
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

std::uint64_t TiffDirectoryReader::NumberAt(std::uint64_t offset, std::size_t size) const {
    const std::string bytes = file_.Bytes(offset, size);
    ByteReader reader(bytes, order_);
    return Next(reader, size);
}

std::uint64_t TiffDirectoryReader::FirstDirectory() const {
    return NumberAt(layout_.pointer, layout_.pointer);
}

std::uint64_t TiffDirectoryReader::ValueOf(const std::string& pointer) const {
    ByteReader reader(pointer, order_);
    return Next(reader, layout_.pointer);
}

std::optional<std::vector<TiffEntry>> TiffDirectoryReader::Entries(std::uint64_t start) const {
    const std::uint64_t count = NumberAt(start, layout_.entry_count);
    if (start == 0 || count == 0 || count > kMaxEntries) return std::nullopt;
    const std::string bytes =
        file_.Bytes(start + layout_.entry_count, static_cast<std::size_t>(count) * layout_.entry);
    if (bytes.size() != count * layout_.entry) return std::nullopt;
    std::vector<TiffEntry> entries;
    for (std::size_t at = 0; at < bytes.size(); at += layout_.entry) {
        const TiffEntry entry =
            EntryOf(std::string_view(bytes).substr(at, layout_.entry), start + layout_.entry_count + at);
        if (entry.size != 0) entries.push_back(entry);
    }
    return entries;
}

std::uint64_t TiffDirectoryReader::DirectoryAfter(std::uint64_t start) const {
    const std::uint64_t count = NumberAt(start, layout_.entry_count);
    return count > kMaxEntries
               ? 0
               : NumberAt(start + layout_.entry_count + count * layout_.entry, layout_.pointer);
}

/// `at` is the entry's own offset in the file.
TiffEntry TiffDirectoryReader::EntryOf(std::string_view bytes, std::uint64_t at) const {
    ByteReader reader(bytes, order_);
    TiffEntry entry;
    entry.tag = reader.U16();
    entry.type = reader.U16();
    entry.size = SizeOfType(entry.type);
    entry.count = Next(reader, layout_.pointer);
    if (entry.size == 0) return entry;
    const bool is_inside = entry.count <= layout_.pointer / entry.size;
    entry.start = is_inside ? at + bytes.size() - layout_.pointer : Next(reader, layout_.pointer);
    entry.is_within_file =
        entry.start <= file_.Length() && entry.count <= (file_.Length() - entry.start) / entry.size;
    return entry;
}

std::uint64_t TiffDirectoryReader::Number(const TiffEntry& entry) const {
    return entry.count > 0 && entry.is_within_file ? NumberAt(entry.start, entry.size) : 0;
}

std::string TiffDirectoryReader::Part(const TiffEntry& entry, std::uint64_t first, std::uint64_t end) const {
    const std::uint64_t count = std::min(kPart, end - std::min(first, end));
    return file_.Bytes(entry.start + first * entry.size, static_cast<std::size_t>(count * entry.size));
}

}  // namespace MapAnchor

#include "raster/gdal/TiffTagPlaces.h"

#include "common/files/ByteReader.h"

#include <Tellurion/RandomAccessFile.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace MapAnchor {

using Tellurion::RandomAccessFile;

namespace {

constexpr std::pair<std::uint16_t, const char*> kNames[] = {
    {33550, "ModelPixelScale"}, {33922, "ModelTiepoint"}, {34264, "ModelTransformation"}, {34735, "GeoKeys"}};
constexpr std::uint16_t kKeys = 34735;

/// How the numbers of a directory are stored.
struct Layout {
    ByteOrder order = ByteOrder::Big;
    bool is_big = false;  ///< BigTIFF

    std::uint64_t Word(ByteReader& reader) const { return is_big ? reader.U64() : reader.U32(); }
    std::size_t EntrySize() const { return is_big ? 20 : 12; }
};

/// Where the first directory is; 0 for a file that is not a TIFF.
std::uint64_t FindDirectory(RandomAccessFile& file, Layout& layout) {
    constexpr std::size_t kHeader = 16;
    constexpr std::uint16_t kClassic = 42;
    constexpr std::uint16_t kBig = 43;
    ByteReader reader(file.Read(0, kHeader));
    const std::uint16_t mark = reader.U16();
    layout.order = mark == 0x4949 ? ByteOrder::Little : ByteOrder::Big;
    if (mark != 0x4949 && mark != 0x4D4D) return 0;
    reader.SetOrder(layout.order);
    const std::uint16_t version = reader.U16();
    layout.is_big = version == kBig;
    if (version != kClassic && version != kBig) return 0;
    if (layout.is_big) reader.Skip(4);
    const std::uint64_t offset = layout.Word(reader);
    return reader.Ok() ? offset : 0;
}

std::uint64_t SizeOfType(std::uint16_t type) {
    constexpr std::uint64_t kSizes[] = {1, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8};
    return type < std::size(kSizes) ? kSizes[type] : 8;
}

/// The key that names the system: a projected one before a geographic one.
std::uint16_t SystemKey(RandomAccessFile& file, std::uint64_t offset, std::uint64_t count, ByteOrder order) {
    constexpr std::uint64_t kMaxNumbers = 4096;
    constexpr std::uint16_t kProjected = 3072;
    constexpr std::uint16_t kGeographic = 2048;
    ByteReader reader(file.Read(offset, static_cast<std::size_t>(2 * std::min(count, kMaxNumbers))), order);
    reader.Skip(8);
    bool has_geographic = false;
    while (reader.Remaining() >= 8) {
        const std::uint16_t key = reader.U16();
        reader.Skip(6);
        if (key == kProjected) return key;
        has_geographic = has_geographic || key == kGeographic;
    }
    return has_geographic ? kGeographic : 0;
}

}  // namespace

const TiffTagPlace* TiffTagPlaces::Find(std::uint16_t tag) const {
    const auto found =
        std::find_if(tags.begin(), tags.end(), [tag](const auto& it) { return it.tag == tag; });
    return found == tags.end() ? nullptr : &*found;
}

const char* NameOfTiffTag(std::uint16_t tag) {
    for (const auto& [known, name] : kNames)
        if (known == tag) return name;
    return "";
}

TiffTagPlaces FindTiffTags(const Tellurion::BString& path) {
    constexpr std::uint64_t kMaxEntries = 4096;
    TiffTagPlaces places;
    RandomAccessFile file(path);
    Layout layout;
    const std::uint64_t directory = file.IsOpen() ? FindDirectory(file, layout) : 0;
    if (directory == 0) return places;
    const std::uint64_t size_of_count = layout.is_big ? 8 : 2;
    ByteReader head(file.Read(directory, 8), layout.order);
    const std::uint64_t entries = std::min(layout.is_big ? head.U64() : head.U16(), kMaxEntries);
    const std::uint64_t first = directory + size_of_count;
    const std::string bytes = file.Window(first, static_cast<std::size_t>(entries * layout.EntrySize()));
    ByteReader reader(bytes, layout.order);
    for (std::uint64_t i = 0; i < entries && reader.Remaining() >= layout.EntrySize(); ++i) {
        const std::uint16_t tag = reader.U16();
        const std::uint64_t size = SizeOfType(reader.U16());
        const std::uint64_t count = layout.Word(reader);
        const std::uint64_t in_place = first + reader.Position();
        const std::uint64_t stated = layout.Word(reader);
        if (*NameOfTiffTag(tag) == '\0') continue;
        const bool fits = count <= (layout.is_big ? 8U : 4U) / size;
        places.tags.push_back({tag, fits ? in_place : stated});
        if (tag == kKeys) places.system_key = SystemKey(file, places.tags.back().offset, count, layout.order);
    }
    return places;
}

}  // namespace MapAnchor

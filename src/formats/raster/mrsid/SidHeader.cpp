#include "raster/mrsid/SidHeader.h"

#include "common/files/ByteReader.h"
#include "common/policy/ReadNotes.h"
#include "raster/mrsid/SidRecords.h"

#include <array>
#include <cmath>

namespace MapAnchor {
namespace {

using namespace std::string_view_literals;

constexpr std::size_t kHead = 512;
/// Metadata is a few kilobytes; only where that does not do is more of it read.
constexpr std::size_t kFirstWindow = std::size_t{16} << 10;
constexpr std::size_t kWindow = std::size_t{1} << 20;

constexpr auto kMetadataMark = "\xFF\xD0"sv;
constexpr auto kBlockMark = "\xFF\xD1\x00\x01\x00\x00"sv;
/// The opening record from its check value to the end of its name.
constexpr auto kFirstRecord = "\x00\x00\x00\x1AIMAGE::SOM\x00"sv;
/// Behind the records: their end, and the opening of the chunk that holds six doubles.
constexpr auto kPositionChunk =
    "\xFF\xFF\xFF\xFF\x02\x43\x03\x00\x00\x00\x00\x00\x00\x00\x35\x00\x00\x00\x31\x01"sv;

/// Reads records at `offset`, more of the file where a first look breaks off in them.
SidRecords ReadRecords(const Tellurion::RandomAccessFile& file, std::uint64_t offset) {
    SidRecords records = ParseSidRecords(file.Window(offset, kFirstWindow));
    if (!records.complete && file.Size() - offset > kFirstWindow)
        records = ParseSidRecords(file.Window(offset, kWindow));
    return records;
}

void NoteOrigins(const SidRecords& records, const std::optional<SidPosition>& stated, std::uint64_t offset) {
    ReadNotes* const notes = ReadNotes::Explaining();
    if (!notes) return;
    const std::string place = BytePlace(offset) + " (metadata records)";
    const std::string chunk = BytePlace(offset + records.end) + " (position chunk)";
    if (stated || records.origin_x) notes->AddOrigin("position", {}, stated ? chunk : place);
    if (stated || records.x_resolution) notes->AddOrigin("pixel size", {}, stated ? chunk : place);
    if (records.projected || records.geographic || !records.well_known_text.empty())
        notes->AddOrigin("system", {}, place);
}

/// The fixed head is followed by a table of offsets, and behind it the place of the
/// metadata block, where there is one.
SidRecords ReadSecondGeneration(const Tellurion::RandomAccessFile& file, std::string_view head) {
    constexpr std::uint32_t kMostLevels = 32;
    ByteReader reader(head);
    reader.Skip(11);
    const std::uint32_t levels = reader.U32();
    reader.Skip(8);
    if (levels > kMostLevels || !reader.Skip(4 * (3 * std::uint64_t{levels} + 1))) return {};
    if (reader.Bytes(kMetadataMark.size()) != kMetadataMark) return {};
    const std::uint32_t offset = reader.U32();
    if (!reader.Ok() || file.Window(offset, kBlockMark.size()) != kBlockMark) return {};
    SidRecords records = ReadRecords(file, offset + kBlockMark.size());
    NoteOrigins(records, std::nullopt, offset + kBlockMark.size());
    return records;
}

/// Six doubles in the chunk behind the records: the centres of the first and of the
/// last pixel, and the resolutions with their signs.
std::optional<SidPosition> ReadPositionChunk(const Tellurion::RandomAccessFile& file, std::uint64_t offset) {
    const std::string bytes = file.Window(offset, kPositionChunk.size() + 6 * sizeof(double));
    ByteReader reader(bytes);
    if (reader.Bytes(kPositionChunk.size()) != kPositionChunk) return std::nullopt;
    std::array<double, 6> values{};
    for (double& value : values)
        value = reader.F64();
    if (!reader.Ok()) return std::nullopt;
    for (const double value : values)
        if (!std::isfinite(value)) return std::nullopt;
    return SidPosition{.x = values[0], .y = values[1], .x_resolution = values[4], .y_resolution = values[5]};
}

/// Where the records begin within `count` bytes at `from`.
std::optional<std::uint64_t> FindRecords(const Tellurion::RandomAccessFile& file, std::uint64_t from,
                                         std::size_t count) {
    const std::size_t found = file.Window(from, count).find(kFirstRecord);
    if (found == std::string::npos) return std::nullopt;
    return from + found;
}

/// How chunks are separated is not known for certain, so the records are looked for by
/// their beginning: near the start of the file, then near its end.
std::optional<std::uint64_t> FindRecords(const Tellurion::RandomAccessFile& file) {
    auto found = FindRecords(file, 0, kFirstWindow);
    if (!found && file.Size() > kFirstWindow) found = FindRecords(file, 0, kWindow);
    if (!found && file.Size() > kWindow) found = FindRecords(file, file.Size() - kWindow, kWindow);
    return found;
}

SidPosition PositionOf(const SidRecords& records) {
    if (!records.origin_x || !records.origin_y || !records.x_resolution || !records.y_resolution) return {};
    return {.x = *records.origin_x,
            .y = *records.origin_y,
            .x_resolution = *records.x_resolution,
            .y_resolution = -std::fabs(*records.y_resolution),
            .x_rotation = records.x_rotation.value_or(0.0),
            .y_rotation = records.y_rotation.value_or(0.0)};
}

SidHeader HeaderOf(SidRecords records, const std::optional<SidPosition>& stated) {
    return {.position = stated ? *stated : PositionOf(records),
            .projected = records.projected,
            .geographic = records.geographic,
            .well_known_text = std::move(records.well_known_text)};
}

SidHeader ReadLaterGeneration(const Tellurion::RandomAccessFile& file, bool must_be_complete) {
    const auto offset = FindRecords(file);
    if (!offset) return {};
    SidRecords records = ReadRecords(file, *offset);
    if (must_be_complete && !records.complete) return {};
    const auto stated = records.complete ? ReadPositionChunk(file, *offset + records.end) : std::nullopt;
    NoteOrigins(records, stated, *offset);
    return HeaderOf(std::move(records), stated);
}

}  // namespace

bool IsMrSid(std::string_view head) {
    constexpr std::size_t kLeast = 32;
    if (head.size() < kLeast) return false;
    std::string name(head.substr(0, 4));
    for (char& letter : name)
        letter = static_cast<char>(letter | 0x20);
    return name == "msid";
}

SidHeader ReadSidHeader(const Tellurion::RandomAccessFile& file) {
    const std::string head = file.Window(0, kHead);
    constexpr std::size_t kGeneration = 4;
    const int generation = head.size() > kGeneration ? static_cast<unsigned char>(head[kGeneration]) : 0;
    if (generation <= 2) return HeaderOf(ReadSecondGeneration(file, head), std::nullopt);
    return ReadLaterGeneration(file, generation > 3);
}

}  // namespace MapAnchor

#include "raster/mrsid/SidRecords.h"

#include "common/files/ByteReader.h"

#include <cmath>

namespace MapAnchor {
namespace {

constexpr int kMostRecords = 4096;
constexpr std::size_t kLongestName = 255;
constexpr std::uint32_t kMostDimensions = 8;

enum Type : std::uint32_t { kU16 = 2, kText = 5, kF64 = 7 };

/// Bytes of one element of a type; 0 for a text, which states its own length, and
/// empty for a type that is not known.
std::optional<std::uint64_t> SizeOfType(std::uint32_t type) {
    switch (type) {
        case 1:
        case 8:
            return 1;
        case kU16:
        case 9:
            return 2;
        case 3:
        case 6:
        case 10:
            return 4;
        case kF64:
            return 8;
        case kText:
            return 0;
        default:
            return std::nullopt;
    }
}

struct Record {
    std::string_view name;
    std::uint32_t type = 0;
    std::uint32_t count = 0;
    std::string_view data;  ///< of a text the first of its strings
};

/// The product of the dimensions must be the number of elements.
bool TakeDimensions(ByteReader& reader, std::uint32_t dimensions, std::uint32_t count) {
    std::uint64_t product = 1;
    for (; dimensions > 0; --dimensions) {
        product *= reader.U32();
        if (product > count) return false;
    }
    return reader.Ok() && product == count;
}

bool TakeTexts(ByteReader& reader, Record& record) {
    record.data = reader.TextToNul();
    for (std::uint32_t left = record.count; left > 1 && reader.Ok(); --left)
        reader.TextToNul();
    return reader.Ok();
}

bool TakeRecord(ByteReader& reader, Record& record) {
    const std::uint32_t check = reader.U32();
    record.name = reader.TextToNul();
    record.type = reader.U32();
    record.count = reader.U32();
    const std::uint32_t dimensions = reader.U32();
    if (!reader.Ok() || record.name.size() > kLongestName || dimensions > kMostDimensions) return false;
    if (check != record.name.size() + 12 + std::size_t{4} * dimensions) return false;
    const auto size = SizeOfType(record.type);
    if (!size || !TakeDimensions(reader, dimensions, record.count)) return false;
    if (record.type == kText) return record.count > 0 && TakeTexts(reader, record);
    record.data = reader.Bytes(*size * record.count);
    return reader.Ok();
}

std::optional<double> Finite(double value) {
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

std::optional<double> Number(const Record& record) {
    if (record.type != kF64 || record.count != 1) return std::nullopt;
    return Finite(ByteReader(record.data).F64());
}

std::optional<std::uint16_t> Short(const Record& record) {
    if (record.type != kU16 || record.count != 1) return std::nullopt;
    return ByteReader(record.data).U16();
}

void Take(const Record& record, SidRecords& out) {
    const auto is = [&](std::string_view name) { return record.name == name; };
    if (is("IMAGE::XY_ORIGIN") && record.type == kF64 && record.count == 2) {
        ByteReader reader(record.data);
        out.origin_x = Finite(reader.F64());
        out.origin_y = Finite(reader.F64());
    }
    if (is("IMAGE::X_RESOLUTION")) out.x_resolution = Number(record);
    if (is("IMAGE::Y_RESOLUTION")) out.y_resolution = Number(record);
    if (is("IMAGE::X_ROTATION")) out.x_rotation = Number(record);
    if (is("IMAGE::Y_ROTATION")) out.y_rotation = Number(record);
    if (is("GEOTIFF_NUM::3072::ProjectedCSTypeGeoKey")) out.projected = Short(record);
    if (is("GEOTIFF_NUM::2048::GeographicTypeGeoKey")) out.geographic = Short(record);
    if (is("IMAGE::WKT") && record.type == kText) out.well_known_text = record.data;
}

}  // namespace

SidRecords ParseSidRecords(std::string_view bytes) {
    SidRecords out;
    ByteReader reader(bytes);
    Record record;
    for (int left = kMostRecords; left > 0 && TakeRecord(reader, record); --left) {
        Take(record, out);
        if (record.name != "IMAGE::EOM") continue;
        out.complete = true;
        out.end = reader.Position();
        break;
    }
    return out;
}

}  // namespace MapAnchor

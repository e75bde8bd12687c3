#include "raster/geotiff/GeoTiffTags.h"

#include <algorithm>
#include <cmath>

namespace MapAnchor {
namespace {

enum Tag : std::uint16_t {
    kModelPixelScale = 0x830E,
    kModelTiePoint = 0x8482,
    kModelTransformation = 0x85D8,
    kGeoKeyDirectory = 0x87AF,
    kGeoAsciiParams = 0x87B1,
};
enum Key : std::uint16_t {
    kModelType = 1024,
    kRasterType = 1025,
    kGeographicType = 2048,
    kProjectedType = 3072,
};
constexpr std::uint16_t kModelProjected = 1;
constexpr std::uint16_t kRasterPixelIsPoint = 2;
constexpr std::uint16_t kUserDefined = 32767;

/// What is longer says nothing of one raster's place.
constexpr std::size_t kMostValues = 4096;

std::vector<double> Doubles(std::string_view data, ByteOrder order) {
    ByteReader reader(data, order);
    std::vector<double> values(std::min(data.size() / sizeof(double), kMostValues));
    std::generate(values.begin(), values.end(), [&] { return reader.F64(); });
    return values;
}

std::vector<std::uint16_t> Shorts(std::string_view data, ByteOrder order) {
    ByteReader reader(data, order);
    std::vector<std::uint16_t> values(std::min(data.size() / sizeof(std::uint16_t), kMostValues));
    std::generate(values.begin(), values.end(), [&] { return reader.U16(); });
    return values;
}

struct KeyEntry {
    std::uint16_t location = 0;
    std::uint16_t count = 0;
    std::uint16_t value = 0;
};

/// Entries of four shorts follow a header of four, whose last is their number.
std::optional<KeyEntry> FindKey(const std::vector<std::uint16_t>& directory, std::uint16_t key) {
    if (directory.size() < 4) return std::nullopt;
    const std::size_t count = std::min<std::size_t>(directory[3], directory.size() / 4 - 1);
    for (std::size_t at = 4; at < 4 * (count + 1); at += 4)
        if (directory[at] == key) return KeyEntry{directory[at + 1], directory[at + 2], directory[at + 3]};
    return std::nullopt;
}

std::optional<AffineTerms> StatedAffine(const GeoTiffTags& tags) {
    const auto& scale = tags.pixel_scale;
    const auto& tie = tags.tie_points;
    if (scale.size() >= 2 && scale[0] != 0.0 && scale[1] != 0.0) {
        if (tie.size() < 6) return std::nullopt;
        // Some writers give the height a sign; it is a size all the same.
        const double down = -std::fabs(scale[1]);
        return AffineTerms{scale[0], 0.0, tie[3] - tie[0] * scale[0], 0.0, down, tie[4] - tie[1] * down};
    }
    const auto& m = tags.matrix;
    if (m.size() != 16) return std::nullopt;
    return AffineTerms{m[0], m[1], m[3], m[4], m[5], m[7]};
}

bool IsFinite(const AffineTerms& t) {
    return std::isfinite(t.a + t.b + t.c) && std::isfinite(t.d + t.e + t.f);
}

/// Size of one value of a TIFF type; 0 for a type that no wanted tag has.
std::size_t SizeOfType(std::uint16_t type) {
    switch (type) {
        case 2:
            return 1;
        case 3:
            return 2;
        case 12:
            return 8;
        default:
            return 0;
    }
}

}  // namespace

/// Of a tag that comes again the first is taken, as elsewhere; to copy each would let a
/// small file cost much.
void GeoTiffTags::Set(std::uint16_t tag, std::string_view data, ByteOrder order) {
    switch (tag) {
        case kModelPixelScale:
            if (pixel_scale.empty()) pixel_scale = Doubles(data, order);
            break;
        case kModelTiePoint:
            if (tie_points.empty()) tie_points = Doubles(data, order);
            break;
        case kModelTransformation:
            if (matrix.empty()) matrix = Doubles(data, order);
            break;
        case kGeoKeyDirectory:
            if (directory.empty()) directory = Shorts(data, order);
            break;
        case kGeoAsciiParams:
            if (ascii.empty()) ascii = data;
            break;
        default:
            break;
    }
}

std::optional<AffineTerms> GeoTiffTags::CornerAffine() const {
    std::optional<AffineTerms> terms = StatedAffine(*this);
    if (!terms) return terms;
    if (ShortKey(kRasterType) == kRasterPixelIsPoint) {
        terms->c -= (terms->a + terms->b) * 0.5;
        terms->f -= (terms->d + terms->e) * 0.5;
    }
    return IsFinite(*terms) ? terms : std::nullopt;
}

std::optional<std::uint16_t> GeoTiffTags::ShortKey(std::uint16_t key) const {
    const auto entry = FindKey(directory, key);
    if (!entry || entry->location != 0 || entry->count != 1) return std::nullopt;
    return entry->value;
}

std::string_view GeoTiffTags::TextKey(std::uint16_t key) const {
    const auto entry = FindKey(directory, key);
    if (!entry || entry->location != kGeoAsciiParams || entry->value > ascii.size()) return {};
    return std::string_view(ascii).substr(entry->value, entry->count);
}

std::optional<std::uint16_t> GeoTiffTags::ProjectedCode() const {
    const auto code = ShortKey(kProjectedType);
    return code && *code != 0 ? code : std::nullopt;
}

std::optional<std::uint16_t> GeoTiffTags::GeographicCode() const {
    if (ShortKey(kModelType) == kModelProjected && !ProjectedCode()) return std::nullopt;
    const auto code = ShortKey(kGeographicType);
    return code && *code != 0 ? code : std::nullopt;
}

int GeoTiffTags::SystemCode() const {
    auto code = ProjectedCode();
    if (!code) code = GeographicCode();
    return code && *code != kUserDefined ? *code : 0;
}

std::optional<GeoTiffTags> ParseTiffTags(std::string_view tiff) {
    const bool little = tiff.starts_with("II");
    if (!little && !tiff.starts_with("MM")) return std::nullopt;
    const ByteOrder order = little ? ByteOrder::Little : ByteOrder::Big;
    ByteReader reader(tiff, order);
    reader.Skip(2);
    if (reader.U16() != 42 || !reader.Seek(reader.U32())) return std::nullopt;
    GeoTiffTags tags;
    constexpr std::size_t kEntrySize = 12;
    for (std::uint16_t left = reader.U16(); left > 0 && reader.Remaining() >= kEntrySize; --left) {
        const std::uint16_t tag = reader.U16();
        const std::size_t size = SizeOfType(reader.U16());
        const std::uint64_t length = std::uint64_t{reader.U32()} * size;
        ByteReader value(tiff, order);
        // A value of up to four bytes is stored in place of its offset.
        value.Seek(length <= 4 ? reader.Position() : reader.U32());
        const std::string_view data = value.Bytes(length);
        if (value.Ok() && size != 0) tags.Set(tag, data, order);
        if (length <= 4) reader.Skip(4);
    }
    return tags;
}

}  // namespace MapAnchor

#include "raster/geotiff/UpdatedDirectory.h"

#include "raster/geotiff/GeoTiffTags.h"
#include "raster/geotiff/HeaderTags.h"
#include "raster/geotiff/TiffDirectory.h"

#include <unistd.h>
#include <algorithm>
#include <map>
#include <optional>
#include <vector>

namespace MapAnchor {

using namespace HeaderTags;

namespace {

bool IsOfPlace(std::uint16_t tag) {
    return RoleOf(tag) == Role::Transform || tag == kGeoKeyDirectory || tag == kGeoDoubleParams ||
           tag == kGeoAsciiParams;
}

/// What an update may add, change or remove: the georeferencing (GeoTIFF 1.1, and GDAL's
/// metadata, which hold AREA_OR_POINT) and how a raster without tiles is cut into strips.
bool MayChange(std::uint16_t tag) {
    return IsOfPlace(tag) || tag == kGdalMetadata || tag == kStripOffsets || tag == kRowsPerStrip ||
           tag == kStripByteCounts;
}

/// The numbers are the same, of whatever size they are stored in.
bool AreSameNumbers(const std::string& a, const std::string& b, const TiffEntry& old,
                    const TiffEntry& updated, ByteOrder order) {
    ByteReader of_a(a, order);
    ByteReader of_b(b, order);
    while (of_a.Ok() && of_b.Ok() && !of_a.AtEnd() && !of_b.AtEnd())
        if (TiffDirectoryReader::Next(of_a, old.size) != TiffDirectoryReader::Next(of_b, updated.size))
            return false;
    return of_a.Ok() && of_b.Ok() && of_a.AtEnd() && of_b.AtEnd();
}

bool HaveSameValues(const TiffDirectoryReader& reader, const TiffEntry& old, const TiffEntry& updated) {
    if (old.count != updated.count || !old.is_within_file || !updated.is_within_file) return false;
    if (old.type != updated.type && !(old.IsWhole() && updated.IsWhole())) return false;
    for (std::uint64_t first = 0; first < old.count; first += TiffDirectoryReader::kPart) {
        const std::string a = reader.Part(old, first, old.count);
        const std::string b = reader.Part(updated, first, old.count);
        if (old.type == updated.type ? a != b : !AreSameNumbers(a, b, old, updated, reader.Order()))
            return false;
    }
    return true;
}

using Entries = std::vector<TiffEntry>;

/// Twice or out of order, it depends on the reader what counts.
bool AreInOrder(const Entries& entries) {
    return std::is_sorted(entries.begin(), entries.end(),
                          [](const TiffEntry& a, const TiffEntry& b) { return a.tag <= b.tag; });
}

bool KeepAllElse(const TiffDirectoryReader& reader, Entries old, Entries updated) {
    for (Entries* entries : {&old, &updated}) {
        if (!AreInOrder(*entries)) return false;
        std::erase_if(*entries, [](const TiffEntry& entry) { return IsOfPlace(entry.tag); });
    }
    return std::equal(old.begin(), old.end(), updated.begin(), updated.end(),
                      [&reader](const TiffEntry& a, const TiffEntry& b) {
                          return a.tag == b.tag && HaveSameValues(reader, a, b);
                      });
}

/// The place that a directory states in the plain way: by a scale and one point, or by a matrix.
std::optional<RasterState> PlaceIn(const TiffDirectoryReader& reader, const Entries& entries) {
    constexpr std::uint16_t kDouble = 12;
    constexpr std::uint16_t kRasterType = 1025;
    constexpr std::uint16_t kPixelIsPoint = 2;
    GeoTiffTags tags;
    for (const TiffEntry& entry : entries) {
        const bool is_transform = RoleOf(entry.tag) == Role::Transform;
        if (!is_transform && entry.tag != kGeoKeyDirectory) continue;
        if (!entry.is_within_file || (is_transform && (entry.type != kDouble || entry.count > 16)))
            return std::nullopt;
        tags.Set(entry.tag, reader.Part(entry, 0, entry.count), reader.Order());
    }
    const bool by_scale = tags.pixel_scale.size() == 3 && tags.pixel_scale[1] > 0 &&
                          tags.tie_points.size() == 6 && tags.matrix.empty();
    const bool by_matrix = tags.matrix.size() == 16 && tags.pixel_scale.empty() && tags.tie_points.empty();
    const std::optional<AffineTerms> terms = by_scale || by_matrix ? tags.CornerAffine() : std::nullopt;
    if (!terms) return std::nullopt;
    RasterState place;
    place.transform = {terms->c, terms->a, terms->b, terms->f, terms->d, terms->e};
    place.registration = tags.ShortKey(kRasterType) == kPixelIsPoint ? "Point" : "Area";
    return place;
}

}  // namespace

std::string PointerOnDisk(const StagedFile& tiff) {
    const TiffPointer pointer = TiffDirectoryReader(tiff).Pointer();
    std::string bytes(pointer.size, '\0');
    const ssize_t read =
        ::pread(tiff.Descriptor(), bytes.data(), bytes.size(), static_cast<off_t>(pointer.offset));
    return read == static_cast<ssize_t>(bytes.size()) ? bytes : std::string();
}

std::string FaultOfNewDirectory(const StagedFile& tiff, const std::string& old_pointer) {
    const TiffDirectoryReader reader(tiff);
    const auto updated = reader.Entries(reader.FirstDirectory());
    if (!updated) return "its new directory would not be whole";
    std::map<std::uint16_t, std::uint64_t> counts;
    for (const TiffEntry& entry : *updated)
        counts.emplace(entry.tag, entry.count);
    std::string fault;
    for (const TiffEntry& entry : reader.Entries(reader.ValueOf(old_pointer)).value_or(Entries())) {
        const auto found = counts.find(entry.tag);
        if (!MayChange(entry.tag) && (found == counts.end() || found->second != entry.count))
            fault = "the update would lose its tag " + std::to_string(entry.tag);
    }
    return fault;
}

bool ShowsWanted(const StagedFile& tiff, const RasterState& wanted) {
    if (!IsTiff(tiff) || !wanted.transform || wanted.point_count != 0) return false;
    const TiffDirectoryReader reader(tiff);
    const std::string old_pointer = PointerOnDisk(tiff);
    const std::uint64_t old_start = old_pointer.empty() ? 0 : reader.ValueOf(old_pointer);
    const std::uint64_t start = reader.FirstDirectory();
    const auto old = reader.Entries(old_start);
    const auto updated = reader.Entries(start);
    if (!old || !updated || reader.DirectoryAfter(old_start) != reader.DirectoryAfter(start)) return false;
    auto found = PlaceIn(reader, *updated);
    if (!found || !KeepAllElse(reader, *old, *updated)) return false;
    found->layout = wanted.layout;
    return (wanted.registration != "Point" || found->registration == "Point") &&
           DifferenceOf(wanted, *found).empty();
}

}  // namespace MapAnchor

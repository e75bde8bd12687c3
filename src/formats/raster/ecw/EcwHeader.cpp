#include "raster/ecw/EcwHeader.h"

#include "common/files/ByteReader.h"
#include "common/policy/ReadNotes.h"
#include "raster/geotiff/GeoTiffTags.h"
#include "raster/jp2/BoxFile.h"
#include "raster/jp2/Jp2Reference.h"

#include <cmath>

namespace MapAnchor {

using Tellurion::BString;

namespace {

using namespace std::string_view_literals;

constexpr std::size_t kVersion2Size = 89;
constexpr std::size_t kNameSize = 16;
constexpr auto kVersion3Box =
    "\x00\x00\x00\x10"
    "ecw \x0A\x0D\x87\x0A\x00\x00\x00\x03"sv;
constexpr std::uint16_t kCitation = 1026;
constexpr std::uint16_t kLinearUnits = 3076;
constexpr const char* kRaw = "RAW";

/// The fixed header of version 2: counts big endian, doubles little endian.
struct Version2 {
    std::uint32_t columns = 0;
    std::uint32_t rows = 0;
    std::uint16_t bands = 0;
    std::uint16_t block_width = 0;
    std::uint16_t block_height = 0;
    EcwHeader header;
};

std::optional<Version2> ParseVersion2(std::string_view head) {
    if (head.size() < kVersion2Size) return std::nullopt;
    ByteReader reader(head);
    Version2 out;
    if (reader.U8() != 'e' || reader.U8() != 2) return std::nullopt;
    reader.Seek(6);
    out.columns = reader.U32();
    out.rows = reader.U32();
    out.bands = reader.U16();
    reader.Skip(2);
    out.block_width = reader.U16();
    out.block_height = reader.U16();
    reader.Skip(2);
    out.header.units = reader.U8();
    reader.SetOrder(ByteOrder::Little);
    out.header.increment_x = reader.F64();
    out.header.increment_y = reader.F64();
    out.header.origin_x = reader.F64();
    out.header.origin_y = reader.F64();
    out.header.datum = reader.Text(kNameSize);
    out.header.projection = reader.Text(kNameSize);
    return out;
}

/// The letter e begins many a text; counts that no image has tell those.
bool IsVersion2(std::string_view head) {
    constexpr int kUnitsEnd = 16;
    const auto parsed = ParseVersion2(head);
    return parsed && parsed->bands != 0 && parsed->block_width != 0 && parsed->block_height != 0 &&
           parsed->header.units < kUnitsEnd;
}

bool IsFinite(const EcwHeader& header) {
    return std::isfinite(header.increment_x) && std::isfinite(header.increment_y) &&
           std::isfinite(header.origin_x) && std::isfinite(header.origin_y);
}

/// Where version 2 has its fields.
void NoteVersion2() {
    constexpr std::uint64_t kIncrements = 25;
    constexpr std::uint64_t kOrigin = 41;
    constexpr std::uint64_t kNames = 57;
    ReadNotes* const notes = ReadNotes::Explaining();
    if (!notes) return;
    notes->AddOrigin("pixel size", {}, BytePlace(kIncrements));
    notes->AddOrigin("position", {}, BytePlace(kOrigin));
    notes->AddOrigin("system", {}, BytePlace(kNames));
}

void NoteBox(const Box& box) {
    ReadNotes* const notes = ReadNotes::Explaining();
    if (!notes) return;
    for (const char* value : {"pixel size", "position", "system"})
        notes->AddOrigin(value, {}, BytePlace(box.offset) + " (box \"gtif\")");
}

std::optional<EcwHeader> ReadVersion2(std::string_view head) {
    auto parsed = ParseVersion2(head);
    if (!parsed || parsed->columns == 0 || parsed->rows == 0 || !IsFinite(parsed->header))
        return std::nullopt;
    NoteVersion2();
    return std::move(parsed->header);
}

/// The value behind a label, up to the end of its line.
std::string LabelledText(std::string_view text, std::string_view label) {
    const std::size_t at = text.find(label);
    if (at == std::string_view::npos) return {};
    text.remove_prefix(at + label.size());
    text = text.substr(0, text.find_first_of("\r\n|\0"sv));
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    text.remove_prefix(first);
    return std::string(text.substr(0, text.find_last_not_of(" \t") + 1));
}

void SetBoth(EcwHeader& header, const std::string& name) {
    header.datum = header.projection = name;
}

/// "projection, datum" in brackets. Only a file with RAW in both places was at hand:
/// which of the two comes first is taken from how the format speaks elsewhere.
void TakeBracket(std::string_view citation, EcwHeader& header) {
    const std::size_t open = citation.find('(');
    const std::size_t comma = citation.find(',', open);
    const std::size_t close = citation.find(')', comma);
    if (open == std::string_view::npos || comma == std::string_view::npos || close == std::string_view::npos)
        return;
    header.projection = LabelledText(citation.substr(open, comma - open), "(");
    header.datum = LabelledText(citation.substr(comma, close - comma), ",");
}

/// A code is exact, a name is looked up; so the code goes first, as the same name twice,
/// which is how headers of this family put it.
void TakeNames(const GeoTiffTags& tags, int system, EcwHeader& header) {
    SetBoth(header, kRaw);
    if (system != 0) return SetBoth(header, "EPSG:" + std::to_string(system));
    const std::string_view citation = tags.TextKey(kCitation);
    const std::string projection = LabelledText(citation, "szProjection:");
    const std::string datum = LabelledText(citation, "szDatum:");
    if (!projection.empty() || !datum.empty()) {
        header.projection = projection;
        header.datum = datum;
    } else if (citation.find("Ermapper projection") != std::string_view::npos) {
        TakeBracket(citation, header);
    }
}

int UnitsOf(const GeoTiffTags& tags) {
    constexpr int kMetres = 1;
    constexpr int kDegrees = 2;
    constexpr int kFeet = 3;
    constexpr std::uint16_t kFoot = 9002;
    constexpr std::uint16_t kSurveyFoot = 9003;
    if (!tags.ProjectedCode() && tags.GeographicCode()) return kDegrees;
    const auto unit = tags.ShortKey(kLinearUnits);
    return unit == kFoot || unit == kSurveyFoot ? kFeet : kMetres;
}

/// A rotated image, or one whose rows go north, cannot be described by this header. It
/// stays without a position, and the next reader may tell it.
void TakeAffine(const std::optional<AffineTerms>& corner, EcwHeader& header) {
    if (!corner || corner->b != 0.0 || corner->d != 0.0 || corner->e >= 0.0) return SetBoth(header, kRaw);
    header.increment_x = corner->a;
    header.increment_y = -corner->e;
    header.origin_x = corner->c;
    header.origin_y = corner->f;
}

/// Entries of a big endian tag and length, and little endian data.
GeoTiffTags ParseEcwTags(std::string_view content) {
    GeoTiffTags tags;
    ByteReader reader(content);
    reader.Skip(5);
    while (reader.Ok() && !reader.AtEnd()) {
        const std::uint16_t tag = reader.U16();
        const std::string_view data = reader.Bytes(reader.U32());
        if (reader.Ok()) tags.Set(tag, data, ByteOrder::Little);
    }
    return tags;
}

std::optional<EcwHeader> ReadVersion3(Tellurion::RandomAccessFile& file) {
    constexpr std::size_t kLongestContent = std::size_t{1} << 20;
    EcwHeader header;
    BoxWalk walk(file);
    Box box;
    while (walk.Next(box)) {
        if (box.type != "gtif") continue;
        NoteBox(box);
        const GeoTiffTags tags = ParseEcwTags(walk.Content(box, kLongestContent));
        header.units = UnitsOf(tags);
        TakeNames(tags, tags.SystemCode(), header);
        TakeAffine(tags.CornerAffine(), header);
        break;
    }
    return header;
}

EcwHeader ReadJpeg2000(Tellurion::RandomAccessFile& file, const BString& path) {
    const Jp2Reference reference = ReadJp2Reference(file, path);
    EcwHeader header;
    header.units = UnitsOf(reference.tags);
    TakeNames(reference.tags, reference.system, header);
    TakeAffine(reference.corner, header);
    return header;
}

}  // namespace

EcwKind TellEcwKind(std::string_view head) {
    if (head.starts_with(kVersion3Box)) return EcwKind::Version3;
    if (IsJpeg2000(head)) return EcwKind::Jpeg2000;
    return IsVersion2(head) ? EcwKind::Version2 : EcwKind::Unknown;
}

std::optional<EcwHeader> ReadEcwHeader(Tellurion::RandomAccessFile& file, std::string_view head, EcwKind kind,
                                       const BString& path) {
    switch (kind) {
        case EcwKind::Version2:
            return ReadVersion2(head);
        case EcwKind::Version3:
            return ReadVersion3(file);
        case EcwKind::Jpeg2000:
            return ReadJpeg2000(file, path);
        case EcwKind::Unknown:
            break;
    }
    return std::nullopt;
}

}  // namespace MapAnchor

#include "raster/jp2/Jp2Reference.h"

#include "common/policy/ReadNotes.h"
#include "raster/jp2/BoxFile.h"
#include "raster/jp2/Jp2ByGdal.h"

#include <Tellurion/BFileUtilities.h>

#include <string>
#include <string_view>

namespace MapAnchor {

using Tellurion::BFileUtilities;
using Tellurion::BString;

namespace {

using namespace std::string_view_literals;

constexpr auto kSignatureBox = "\x00\x00\x00\x0CjP  \x0D\x0A\x87\x0A"sv;
constexpr auto kCodeStream = "\xFF\x4F\xFF\x51"sv;
constexpr auto kGeoTiffUuid = "\xB1\x4B\xF8\xBD\x08\x3D\x4B\x43\xA5\xAE\x8C\xD7\xD5\xA6\xCE\x03"sv;
constexpr std::size_t kLongestContent = std::size_t{1} << 20;

void NoteBox(const Box& box, const GeoTiffTags& tags) {
    ReadNotes* const notes = ReadNotes::Explaining();
    if (!notes) return;
    const std::string place = BytePlace(box.offset) + " (GeoTIFF box)";
    notes->origins.clear();
    for (const char* value : {"pixel size", "position"})
        notes->AddOrigin(value, {}, place);
    if (tags.SystemCode() != 0) notes->AddOrigin("system", {}, place);
}

/// Some writers leave a second GeoTIFF box that places nothing; of the first two the
/// one that names a system counts, else the one that has a position.
GeoTiffTags FindGeoTiff(Tellurion::RandomAccessFile& file) {
    GeoTiffTags best;
    BoxWalk walk(file);
    Box box;
    for (int seen = 0; seen < 2 && walk.Next(box);) {
        if (box.type != "uuid") continue;
        const std::string_view content = walk.Content(box, kLongestContent);
        if (!content.starts_with(kGeoTiffUuid)) continue;
        ++seen;
        auto tags = ParseTiffTags(content.substr(kGeoTiffUuid.size()));
        if (!tags) continue;
        const bool placed = tags->CornerAffine().has_value();
        const bool is_better = placed && (tags->SystemCode() != 0 || !best.CornerAffine());
        if (is_better) NoteBox(box, *tags);
        if (placed && tags->SystemCode() != 0) return *std::move(tags);
        if (is_better) best = *std::move(tags);
    }
    return best;
}

bool IsSettled(const Jp2Reference& reference) {
    const bool names_system = !reference.tags.directory.empty();
    return reference.corner && (reference.system != 0 || !names_system);
}

}  // namespace

bool IsJpeg2000(std::string_view head) {
    if (head.starts_with(kCodeStream)) return true;
    if (!head.starts_with(kSignatureBox)) return false;
    ByteReader next(head.substr(kSignatureBox.size()));
    next.Skip(4);
    return next.Bytes(4) == "ftyp";
}

Jp2Reference ReadJp2Reference(Tellurion::RandomAccessFile& file, const BString& path) {
    Jp2Reference out;
    out.tags = FindGeoTiff(file);
    out.corner = out.tags.CornerAffine();
    out.projected = out.tags.ProjectedCode();
    out.geographic = out.tags.GeographicCode();
    out.system = out.tags.SystemCode();
    const bool overruled = BFileUtilities::Exists(path + BString(".aux.xml"));
    if (overruled || !IsSettled(out)) AskGdalForJp2(path, overruled, out);
    return out;
}

}  // namespace MapAnchor

#include "raster/jp2/Jp2Reference.h"

#include "common/policy/ReadNotes.h"
#include "raster/gdal/GdalOrigins.h"
#include "raster/gdal/GdalRaster.h"
#include "raster/jp2/BoxFile.h"

#include <Tellurion/BFileUtilities.h>
#include <Tellurion/QuietGdal.h>

#include <ogr_spatialref.h>

#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <limits>
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

/// Where GDAL finds something, it does not say in which box.
void NoteGdal(const GDALDataset& raster, std::initializer_list<const char*> values) {
    ReadNotes* const notes = ReadNotes::Explaining();
    if (!notes) return;
    for (const char* value : values) {
        std::erase_if(notes->origins,
                      [&](const auto& origin) { return std::string_view(origin.value) == value; });
        notes->AddOrigin(value, {}, GdalPlace(raster));
    }
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

int EpsgCodeOf(const OGRSpatialReference& system) {
    const char* const authority = system.GetAuthorityName(nullptr);
    if (!authority || std::strcmp(authority, "EPSG") != 0) return 0;
    const char* const code = system.GetAuthorityCode(nullptr);
    return code ? std::atoi(code) : 0;
}

bool IsSystemOf(const OGRSpatialReference& system, int code) {
    const char* const options[] = {"IGNORE_DATA_AXIS_TO_SRS_AXIS_MAPPING=YES", nullptr};
    OGRSpatialReference stated;
    return stated.importFromEPSG(code) == OGRERR_NONE && system.IsSame(&stated, options);
}

void ForgetSystem(Jp2Reference& out) {
    out.system = 0;
    out.projected.reset();
    out.geographic.reset();
}

/// A system that no code names still takes the place of another one.
void TakeSystem(const OGRSpatialReference& system, Jp2Reference& out) {
    if (!system.IsProjected() && !system.IsGeographic()) return;
    const int code = EpsgCodeOf(system);
    if (code <= 0) {
        if (out.system == 0 || IsSystemOf(system, out.system)) return;
        out.tags.ascii.clear();
        return ForgetSystem(out);
    }
    ForgetSystem(out);
    out.system = code;
    if (code > std::numeric_limits<std::uint16_t>::max()) return;
    (system.IsProjected() ? out.projected : out.geographic) = static_cast<std::uint16_t>(code);
}

void AskGdal(const BString& path, bool overrules, Jp2Reference& out) {
    const Tellurion::QuietGdal quiet;
    const GdalRaster raster = OpenRaster(path);
    if (!raster) return;
    double gt[6] = {};
    if ((overrules || !out.corner) && raster->GetGeoTransform(gt) == CE_None) {
        out.corner = AffineTerms{gt[1], gt[2], gt[0], gt[4], gt[5], gt[3]};
        NoteGdal(*raster, {"pixel size", "position"});
    }
    const OGRSpatialReference* const system = raster->GetSpatialRef();
    if (!system || (!overrules && out.system != 0)) return;
    TakeSystem(*system, out);
    NoteGdal(*raster, {"system"});
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
    if (overruled || !IsSettled(out)) AskGdal(path, overruled, out);
    return out;
}

}  // namespace MapAnchor

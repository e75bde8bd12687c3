#include "raster/gdal/GdalOrigins.h"

#include "common/policy/ReadNotes.h"
#include "raster/gdal/TiffTagPlaces.h"

#include <gdal_priv.h>

namespace MapAnchor {

using Tellurion::BString;

namespace {

constexpr std::uint16_t kPixelScale = 33550;
constexpr std::uint16_t kTiePoints = 33922;
constexpr std::uint16_t kMatrix = 34264;
constexpr std::uint16_t kKeys = 34735;

std::string TagPlace(const TiffTagPlaces& tags, std::uint16_t tag) {
    const TiffTagPlace* const place = tags.Find(tag);
    if (!place) return {};
    return "tag " + std::to_string(tag) + " (" + NameOfTiffTag(tag) + "), " + BytePlace(place->offset);
}

std::string SystemPlace(const TiffTagPlaces& tags) {
    std::string place = TagPlace(tags, kKeys);
    if (!place.empty() && tags.system_key != 0) place += ", key " + std::to_string(tags.system_key);
    return place;
}

std::string Either(const std::string& first, const std::string& second) {
    return first.empty() ? second : first;
}

}  // namespace

std::string GdalPlace(const GDALDataset& raster) {
    const GDALDriver* const driver = const_cast<GDALDataset&>(raster).GetDriver();
    return driver ? "driver " + std::string(driver->GetDescription()) + " of GDAL" : "GDAL";
}

void NoteGdalOrigins(const GDALDataset& raster, const GdalReference& stated, const BString& file) {
    ReadNotes* const notes = ReadNotes::Explaining();
    if (!notes) return;
    const TiffTagPlaces tags = FindTiffTags(file);
    const std::string gdal = GdalPlace(raster);
    const std::string tie_points = TagPlace(tags, kTiePoints);
    if (stated.point_count > 0) notes->AddOrigin("points", file, Either(tie_points, gdal));
    if (stated.terms) {
        const std::string matrix = TagPlace(tags, kMatrix);
        const std::string scale = Either(TagPlace(tags, kPixelScale), matrix);
        notes->AddOrigin("pixel size", file, Either(scale, gdal));
        if (stated.terms->b != 0.0 || stated.terms->d != 0.0)
            notes->AddOrigin("rotation", file, Either(matrix, gdal));
        notes->AddOrigin("position", file, Either(scale == matrix ? matrix : tie_points, gdal));
    }
    if (!stated.well_known_texts.empty()) notes->AddOrigin("system", file, Either(SystemPlace(tags), gdal));
    if (stated.vertical_unit) notes->AddOrigin("heights", file, gdal);
    notes->AddOrigin("size", file, gdal);
}

}  // namespace MapAnchor

#include "raster/mrsid/LizardTech.h"

#include "raster/jp2/Jp2Reference.h"

#include <cstring>
#include <string_view>

namespace LizardTech {

using MapAnchor::AffineTerms;
using MapAnchor::SidHeader;
using MapAnchor::SidPosition;
using Tellurion::BString;
using Tellurion::RandomAccessFile;

namespace {

/// Half a pixel inward, by the columns' step and by the rows'.
SidPosition CentreOf(const AffineTerms& corner) {
    return {.x = corner.c + (corner.a + corner.b) * 0.5,
            .y = corner.f + (corner.d + corner.e) * 0.5,
            .x_resolution = corner.a,
            .y_resolution = corner.e,
            .x_rotation = corner.b,
            .y_rotation = corner.d};
}

std::optional<LTIMetadataRecord> RecordOf(const std::optional<std::uint16_t>& number) {
    return number ? std::optional<LTIMetadataRecord>(*number) : std::nullopt;
}

}  // namespace

void LTIGeoCoord::get(double& x, double& y, double& xRes, double& yRes, double& xRot, double& yRot) const {
    x = position_.x;
    y = position_.y;
    xRes = position_.x_resolution;
    yRes = position_.y_resolution;
    xRot = position_.x_rotation;
    yRot = position_.y_rotation;
}

const void* LTIMetadataRecord::getScalarData() const {
    return is_text_ ? static_cast<const void*>(text_.c_str()) : &number_;
}

LTIMetadataDatabase::LTIMetadataDatabase(SidHeader header)
    : projected_(RecordOf(header.projected)), geographic_(RecordOf(header.geographic)) {
    if (!header.well_known_text.empty()) text_.emplace(std::move(header.well_known_text));
}

const LTIMetadataRecord* LTIMetadataDatabase::Find(const char* key) const {
    const auto record = [](const auto& held) { return held ? &*held : nullptr; };
    const std::string_view name(key);
    if (name == "GEOTIFF_NUM::3072::ProjectedCSTypeGeoKey") return record(projected_);
    if (name == "GEOTIFF_NUM::2048::GeographicTypeGeoKey") return record(geographic_);
    if (name == "IMAGE::WKT") return record(text_);
    return nullptr;
}

LT_STATUS LTIMetadataDatabase::get(const char* key, const LTIMetadataRecord*& record) const {
    const LTIMetadataRecord* const found = Find(key);
    if (!found) return kFailed;
    record = found;
    return kOk;
}

void LTIImageReader::Take(SidHeader header) {
    geo_coord_ = LTIGeoCoord(header.position);
    metadata_ = LTIMetadataDatabase(std::move(header));
}

LT_STATUS MrSIDImageReader::initialize(const LTFileSpec& file, bool, MrSIDMemoryUsage, MrSIDStreamUsage) {
    Tellurion::RandomAccessFile source;
    if (!source.Open(BString(file.Path())) || !MapAnchor::IsMrSid(source.Window(0, 32))) return kFailed;
    Take(MapAnchor::ReadSidHeader(source));
    return kOk;
}

LT_STATUS J2KImageReader::initialize(const LTFileSpec& file, bool, float, bool, int) {
    Tellurion::RandomAccessFile source;
    const BString path(file.Path());
    if (!source.Open(path) || !MapAnchor::IsJpeg2000(source.Window(0, 32))) return kFailed;
    const MapAnchor::Jp2Reference reference = MapAnchor::ReadJp2Reference(source, path);
    SidHeader header;
    header.projected = reference.projected;
    header.geographic = reference.geographic;
    if (reference.corner) header.position = CentreOf(*reference.corner);
    Take(std::move(header));
    return kOk;
}

}  // namespace LizardTech

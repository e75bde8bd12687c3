#include "raster/jp2/Jp2ByGdal.h"

#include "common/policy/ReadNotes.h"
#include "raster/gdal/GdalOrigins.h"
#include "raster/gdal/GdalRaster.h"

#include <Tellurion/QuietGdal.h>

#include <ogr_spatialref.h>

#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <string_view>

namespace MapAnchor {
namespace {

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

}  // namespace

void AskGdalForJp2(const Tellurion::BString& path, bool overrules, Jp2Reference& out) {
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

}  // namespace MapAnchor

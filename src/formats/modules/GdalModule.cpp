#include "modules/GdalModule.h"

#include "crs/OgrTexts.h"
#include "raster/gdal/AuxiliaryReference.h"
#include "raster/gdal/GdalRaster.h"
#include "raster/jp2/Jp2ByGdal.h"

namespace MapAnchor {
namespace {

constexpr GdalModule kFunctions = {
    .ogr = {.wkt_of_arc_info = Tellurion::WktOfArcInfo,
            .wkt_of_er_mapper_name = Tellurion::WktOfErMapperName,
            .make_proj_context = [] { Tellurion::MakeProjContextOfGdal(); }},
    .read_auxiliary_reference = ReadAuxiliaryReference,
    .refused_driver = GdalDrivers::RefusedFor,
    .allow_drivers = GdalDrivers::Allow,
    .allowed_names = GdalDrivers::AllowedNames,
    .enter_scope = &GdalDrivers::Scope::Enter,
    .leave_scope = &GdalDrivers::Scope::Leave,
    .has_driver = HasGdalDriver,
    .has_settings = HasGdalSettings,
    .read_raster_size = ReadRasterSize,
    .read_reference = ReadGdalReference,
    .make_quiet_errors = MakeQuietErrors,
    .read_by_gdal_alone = ReadByGdalAlone,
    .read_raster_by_gdal_alone = ReadRasterByGdalAlone,
    .list_virtual = VirtualFiles::List,
    .read_virtual = VirtualFiles::Read,
    .kind_of_virtual = VirtualFiles::KindOf,
    .write_by_name = BRefGeoTIFF::Write,
    .write_by_type = BRefGeoTIFF::Write,
    .ask_for_jp2 = AskGdalForJp2,
    .make_thumbnail = MakeThumbnail,
    .text_of_aux_xml = TextOfAuxXml,
    .text_of_vrt = TextOfVrt,
    .parse_kml = ParseKml,
};

constexpr Tellurion::ModuleTable kTable = {MAPANCHOR_MODULE_VERSION, &kFunctions};

}  // namespace
}  // namespace MapAnchor

extern "C" MAPANCHOR_EXPORT const Tellurion::ModuleTable* mapanchor_module();

const Tellurion::ModuleTable* mapanchor_module() {
    return &MapAnchor::kTable;
}

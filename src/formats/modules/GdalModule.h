#pragma once

#include "common/policy/ReferenceFormat.h"
#include "raster/gdal/GdalDrivers.h"
#include "raster/gdal/GdalReference.h"
#include "raster/gdal/GdalSettings.h"
#include "raster/gdal/QuietErrors.h"
#include "raster/gdal/SecondReading.h"
#include "raster/gdal/Thumbnail.h"
#include "raster/gdal/VirtualFiles.h"
#include "raster/geotiff/BRefGeoTIFF.h"
#include "raster/jp2/Jp2Reference.h"
#include "sidecar/auxxml/AuxXmlText.h"
#include "sidecar/kml/GroundOverlay.h"
#include "sidecar/vrt/VrtText.h"

#include <MapAnchor/Export.h>
#include <Tellurion/OgrModule.h>

namespace MapAnchor {

/// The functions of the module "gdal", which are declared in the headers of raster/gdal,
/// raster/geotiff, raster/jp2 and of the sidecars in XML. Where modules are loaded at need,
/// GdalForwarders.cpp defines each of them once more, for the library, as a call through this table; the
/// module fills the table in GdalModule.cpp.
struct GdalModule {
    using BString = Tellurion::BString;

    Tellurion::OgrModule ogr;  ///< first, see there
    std::optional<GdalReference> (*read_auxiliary_reference)(const BString&);
    std::string (*refused_driver)(const BString&);
    void (*allow_drivers)(const BString&);
    BString (*allowed_names)();
    void (GdalDrivers::Scope::*enter_scope)(const Tellurion::BParamList&);
    void (GdalDrivers::Scope::*leave_scope)();
    bool (*has_driver)(const char*);
    bool (*has_settings)();
    bool (*read_raster_size)(const BString&, long&, long&);
    std::optional<GdalReference> (*read_reference)(const BString&, RasterKinds, Sidecars);
    std::unique_ptr<QuietErrors> (*make_quiet_errors)();
    std::optional<SecondReading> (*read_by_gdal_alone)(const ReferenceFormat&, const BString&, std::string&);
    std::optional<SecondReading> (*read_raster_by_gdal_alone)(const BString&, std::string&);
    std::vector<std::string> (*list_virtual)(const std::string&, int);
    std::optional<std::string> (*read_virtual)(const BString&, std::size_t);
    VirtualFiles::Kind (*kind_of_virtual)(const BString&);
    bool (*write_by_name)(const BString&, const Tellurion::BGeoReference&, const Tellurion::BParamList*);
    void (*write_by_type)(const BString&, const unsigned int&, const Tellurion::BGeoReference&,
                          const Tellurion::BParamList*);
    void (*ask_for_jp2)(const BString&, bool, Jp2Reference&);
    std::optional<Thumbnail> (*make_thumbnail)(const BString&, int, int, std::string&);
    std::string (*text_of_aux_xml)(const BString&, const Tellurion::BGeoReference&);
    std::string (*text_of_vrt)(const BString&, const Tellurion::BGeoReference&, const BString&);
    bool (*parse_kml)(const BString&, GroundOverlay&, std::string&);
};

}  // namespace MapAnchor

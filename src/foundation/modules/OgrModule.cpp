#include "modules/OgrModule.h"

#include "crs/OgrTexts.h"

#include <dlfcn.h>

/// What libTellurion calls where GDAL is in a module of its own.
namespace Tellurion {
namespace {

const OgrModule& Ogr() {
    return *static_cast<const OgrModule*>(ModuleOfGdal().Functions());
}

}  // namespace

Module& ModuleOfGdal() {
    static auto* const module = new Module("gdal", "GeoTIFF and what else GDAL reads", MAPANCHOR_BELOW_GDAL);
    return *module;
}

std::string WktOfArcInfo(const std::vector<std::string>& lines) {
    return Ogr().wkt_of_arc_info(lines);
}

std::string WktOfErMapperName(const std::string& name) {
    return ModuleOfGdal().IsThere() ? Ogr().wkt_of_er_mapper_name(name) : std::string();
}

bool MakeProjContextOfGdal() {
    if (const void* const loaded = ModuleOfGdal().FunctionsIfLoaded()) {
        static_cast<const OgrModule*>(loaded)->make_proj_context();
        return true;
    }
    // GDAL may be a library of the host.
    void* const of_host = dlsym(RTLD_DEFAULT, "OSRGetPROJEnableNetwork");
    if (!of_host) return false;
    static_cast<void>(reinterpret_cast<int (*)()>(of_host)());
    return true;
}

}  // namespace Tellurion

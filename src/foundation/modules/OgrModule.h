#pragma once

#include <Tellurion/Module.h>

#include <string>
#include <vector>

namespace Tellurion {

/// The part of the module "gdal" that this library calls; see crs/OgrTexts.h.
struct OgrModule {
    std::string (*wkt_of_arc_info)(const std::vector<std::string>& lines);
    std::string (*wkt_of_er_mapper_name)(const std::string& name);
    /// Makes GDAL's own PROJ context of this thread.
    void (*make_proj_context)();
};

/// The module that links GDAL. Its table begins with an OgrModule.
TELLURION_EXPORT Module& ModuleOfGdal();

}  // namespace Tellurion

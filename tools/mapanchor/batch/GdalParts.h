#pragma once

#include "batch/Index.h"
#include "render/AntimeridianCut.h"

namespace Tool {

/// What the tool does by GDAL's geometries and vector drivers, which is in a module of its own
/// where the library has modules: most commands need none of it. The module exports one C
/// function, mapanchor_tool_parts, that returns this.
struct GdalParts {
    const char* version;  ///< first in every release
    std::optional<Footprint> (*cut_at_antimeridian)(const std::vector<Position>&);
    bool (*contains)(const Footprint&, const Footprint&);
    std::unique_ptr<Index> (*make_index)(const std::string&, bool);
};

}  // namespace Tool

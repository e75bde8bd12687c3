#pragma once

#include "render/JsonRenderer.h"

#include <MapAnchor/BReferenceSources.h>

namespace Tool {

/// The sources of a raster; `result` is what their reading says.
Json SourcesJson(const MapAnchor::BReferenceSources& sources, const ReadResult& result);

}  // namespace Tool

#pragma once

#include "render/Footprint.h"
#include "render/JsonRenderer.h"

namespace Tool {

/// One input as a GeoJSON feature, its footprint as the geometry. A failure is a feature
/// without a geometry.
Json FeatureJson(const ReadResult& result, const std::optional<Footprint>& footprint);

/// A polygon, or a multipolygon for an area that was cut; null for none.
Json GeometryJson(const std::optional<Footprint>& footprint);
/// West, south, east, north.
Json BoxJson(const Footprint& footprint);

}  // namespace Tool

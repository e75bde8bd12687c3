#pragma once

#include "render/Footprint.h"

namespace Tool {

/// The area inside a closed line whose longitudes may run past 180 degrees, cut where
/// they do. Empty when the line crosses itself or has no area.
std::optional<Footprint> CutAtAntimeridian(const std::vector<Position>& line);

}  // namespace Tool

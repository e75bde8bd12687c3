#pragma once

#include "render/Feature.h"

namespace Tool {

/// One input as an item of a SpatioTemporal Asset Catalog, with the fields of its
/// projection extension. The time is the file's, since a reference has none.
Json StacItem(const ReadResult& result, const std::optional<Footprint>& footprint);

}  // namespace Tool

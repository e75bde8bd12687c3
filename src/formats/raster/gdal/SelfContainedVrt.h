#pragma once

#include <string>

namespace MapAnchor {

/// True for the text of a virtual raster that describes itself alone, such as one that only
/// places a raster: it has no source, mask or overview and no class of its own, and so names
/// no file. Of a virtual raster with sources this cannot be said without following them.
bool IsSelfContainedVrt(const std::string& text);

}  // namespace MapAnchor

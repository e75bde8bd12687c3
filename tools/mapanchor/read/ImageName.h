#pragma once

#include <string>

namespace Tool {

/// The raster's name as the target has it: a path from its place in kinds that a program opens with
/// the raster, the name alone in others.
std::string ImageNameFor(const std::string& target, const std::string& raster);

}  // namespace Tool

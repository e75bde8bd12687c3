#pragma once

#include "import/CLGIProjection.h"

#include <functional>
#include <string>

class OGRSpatialReference;

namespace VellumLib {

/// The text of a parameter of the dialect; empty when the file lacks it.
using LGIParameterText = std::function<const std::string&(LGIParameter number)>;

/// Sets the projection of that number and its parameters. Returns OGR's name for it,
/// empty for a number that is not mapped: then nothing is set.
std::string SetLGIProjection(OGRSpatialReference& srs, std::int32_t id, const LGIParameterText& text);

}  // namespace VellumLib

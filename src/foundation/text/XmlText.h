#pragma once

#include <MapAnchor/Internal.h>

#include <string>
#include <string_view>

namespace MapAnchor {

/// The text without what no XML document may have, such as control characters: question marks
/// are in their place.
MAPANCHOR_INTERNAL std::string XmlCharacters(std::string_view utf8);
/// The same as the text of an element or of an attribute in double quotes.
MAPANCHOR_INTERNAL std::string XmlEscaped(std::string_view utf8);

}  // namespace MapAnchor

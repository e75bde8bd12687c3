#pragma once

#include <Tellurion/Export.h>

#include <string>
#include <string_view>

namespace Tellurion {

/// The text without what no XML document may have, such as control characters: question marks
/// are in their place.
TELLURION_EXPORT std::string XmlCharacters(std::string_view utf8);
/// The same as the text of an element or of an attribute in double quotes, in XML, SVG and HTML.
TELLURION_EXPORT std::string XmlEscaped(std::string_view utf8);

}  // namespace Tellurion

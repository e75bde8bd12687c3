#pragma once

#include <Tellurion/BString.h>
#include <Tellurion/Export.h>

#include <string>
#include <string_view>

namespace Tellurion {

/// The text of a line of a file: UTF-8 or, where it is none, Windows-1252.
TELLURION_EXPORT BString DecodeLine(std::string_view bytes);

/// True when every byte is ASCII: then DecodeLine changes nothing.
TELLURION_EXPORT bool IsAscii(std::string_view bytes);

/// The Windows-1252 form. A character that it cannot hold becomes "?" and sets `lossy`.
TELLURION_EXPORT std::string EncodeWindows1252(const BString& text, bool& lossy);

}  // namespace Tellurion

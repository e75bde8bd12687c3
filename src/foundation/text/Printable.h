#pragma once

#include <Tellurion/Export.h>

#include <string>
#include <string_view>

namespace Tellurion {

/// Texts of files and names of files are data: they must not steer a terminal, begin a log
/// line of their own or break a document that they are written into.

/// `text` as a part of one line of UTF-8. Line ends, other control characters and escape
/// sequences, what turns the direction of reading, separators of lines and paragraphs,
/// noncharacters and bytes that are not UTF-8 become escapes such as "\n", "\u202e" and,
/// for a byte, "\xe9". Everything else stays, tabs and backslashes too, so that a printable
/// text is returned as it is.
TELLURION_EXPORT std::string Printable(std::string_view text);

/// A JSON text in UTF-8 with the same characters as "\u" escapes, which means the same; the
/// line ends between its parts stay.
TELLURION_EXPORT std::string PrintableJson(std::string_view json);

/// True when every byte belongs to a valid UTF-8 sequence.
TELLURION_EXPORT bool IsUtf8(std::string_view bytes);

}  // namespace Tellurion

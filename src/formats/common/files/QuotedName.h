#pragma once

#include <Tellurion/BString.h>

#include <cstddef>
#include <string_view>

namespace MapAnchor {

/// `name` as it can stand between double quotes on a line: quotes become apostrophes,
/// line ends and NULs blanks, and what goes beyond `most` bytes of UTF-8 is cut at a
/// character's end. A name that changes is logged with `source`. Written as it is it
/// would make the whole file unreadable.
Tellurion::BString QuotedName(const Tellurion::BString& name, std::size_t most, const char* source);

/// The end of the last whole character within the first `most` bytes of a text in UTF-8.
std::size_t EndOfCharacter(std::string_view text, std::size_t most);

}  // namespace MapAnchor

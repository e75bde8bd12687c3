#pragma once

#include <Tellurion/BString.h>

#include <cstddef>

namespace MapAnchor {

/// `name` as it can stand between double quotes on a line: quotes become apostrophes,
/// line ends and NULs blanks, and what goes beyond `most` bytes of UTF-8 is cut at a
/// character's end. A name that changes is logged with `source`. Written as it is it
/// would make the whole file unreadable.
Tellurion::BString QuotedName(const Tellurion::BString& name, std::size_t most, const char* source);

}  // namespace MapAnchor

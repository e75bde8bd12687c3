#pragma once

#include <Tellurion/BString.h>

namespace MapAnchor {

/// The failure of a reference file that cannot be opened; a BFileAccessException.
[[noreturn]] void ThrowUnreadable(const char* source, const Tellurion::BString& file);

}  // namespace MapAnchor

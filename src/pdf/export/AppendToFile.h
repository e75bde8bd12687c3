#pragma once

#include <Tellurion/BString.h>

#include <cstdint>
#include <string_view>

namespace MapAnchor {

/// Appends to a PDF that has `size` bytes, and syncs it. The room is reserved first, and all is
/// written in one step, so that a full disk or a kill leaves the old file or the new one; after
/// any other failure the old end is restored. A file that cannot be written but replaced is
/// replaced by a longer copy, as BFileReplacement does it.
///
/// Throws a BGeoReferenceWriteException with the system's reason, and a BFileAccessException for
/// a file that cannot be opened or has another size by now.
void AppendToFile(const Tellurion::BString& file, std::uint64_t size, std::string_view tail);

}  // namespace MapAnchor

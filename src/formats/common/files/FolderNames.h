#pragma once

#include <optional>
#include <string>
#include <vector>

namespace MapAnchor {

/// The names in a folder that begin with a stem, letters of any case, in order; empty for a
/// folder that cannot be listed, or that is so long that single files are cheaper to look for.
///
/// Rasters are read folder by folder, so each thread keeps its latest listing, and uses it
/// until the folder changes. A long folder is listed only when many of its files were asked for.
std::optional<std::vector<std::string>> NamesBeginningWith(const std::string& stem,
                                                           const std::string& folder);

}  // namespace MapAnchor

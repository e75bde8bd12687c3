#pragma once

#include <Tellurion/BFileUtilities.h>
#include <Tellurion/BString.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

/// Files that only GDAL's file layer can open, such as "/vsizip/maps.zip/a.tfw".
namespace MapAnchor::VirtualFiles {

/// True for a name that begins with a prefix of that layer, and that is not a plain file.
inline bool IsName(const Tellurion::BString& file) {
    return file.GetUnits().starts_with(u"/vsi") && !Tellurion::BFileUtilities::IsRegularFile(file);
}

enum class Kind { None, File, Folder };
Kind KindOf(const Tellurion::BString& file);

/// The whole content; empty for a file that is longer than `limit` or cannot be read.
std::optional<std::string> Read(const Tellurion::BString& file, std::size_t limit);

/// The names in a folder, at most `limit` of them.
std::vector<std::string> List(const std::string& folder, int limit);

}  // namespace MapAnchor::VirtualFiles

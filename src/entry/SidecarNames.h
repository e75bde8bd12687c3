#pragma once

#include <Tellurion/BString.h>

#include <vector>

namespace MapAnchor {

/// A file beside a raster that may state its place.
struct SidecarName {
    const char* kind;  ///< "aux.xml", "WLD", "TAB", "ERS", "RSF", "PRJ" or "POINTS"
    Tellurion::BString file;
};

/// The files that are there, in the order of their kinds, with extensions in any case of
/// letters. Costs one listing of the folder or, where that is long, a dozen looks at names.
std::vector<SidecarName> FindSidecars(const Tellurion::BString& raster);

/// The raster beside a sidecar, found in the same way; empty when there is none.
Tellurion::BString FindRasterBeside(const Tellurion::BString& sidecar);

/// True for the name of a text file beside a raster, such as a world file.
bool IsSidecarName(const Tellurion::BString& file);

/// True for an extension that names a raster, with its dot and in lower case.
bool IsRasterExtension(const Tellurion::BString& extension);

}  // namespace MapAnchor

#pragma once

#include <Tellurion/BString.h>

#include <cstdint>
#include <vector>

namespace MapAnchor {

/// Where the values of a tag begin in its file.
struct TiffTagPlace {
    std::uint16_t tag = 0;
    std::uint64_t offset = 0;
};

/// The tags of a TIFF's first directory that state its place.
struct TiffTagPlaces {
    std::vector<TiffTagPlace> tags;
    std::uint16_t system_key = 0;  ///< the geo key that names the system; 0 for none

    const TiffTagPlace* Find(std::uint16_t tag) const;
};

/// Of a classic TIFF or a BigTIFF; empty for any other file.
TiffTagPlaces FindTiffTags(const Tellurion::BString& file);

/// Such as "ModelTiepoint".
const char* NameOfTiffTag(std::uint16_t tag);

}  // namespace MapAnchor

#pragma once

#include "common/files/ByteReader.h"
#include "common/storing/Affine.h"

#include <MapAnchor/Internal.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace MapAnchor {

/// The GeoTIFF tags that other formats carry in a box of theirs, as stored.
struct MAPANCHOR_INTERNAL GeoTiffTags {
    std::vector<double> pixel_scale;
    std::vector<double> tie_points;
    std::vector<double> matrix;
    std::vector<std::uint16_t> directory;
    std::string ascii;

    /// Takes a tag's values; a tag that says nothing of the place is passed over.
    void Set(std::uint16_t tag, std::string_view data, ByteOrder order);

    /// The affine from the outer corner of the top left pixel, also where the file
    /// states its positions as those of pixel centres. Empty without one, and where a
    /// number is not finite.
    std::optional<AffineTerms> CornerAffine() const;

    /// The value of a key that is stored in the directory itself.
    std::optional<std::uint16_t> ShortKey(std::uint16_t key) const;
    /// The text of a key that is stored among the ASCII parameters.
    std::string_view TextKey(std::uint16_t key) const;

    /// EPSG codes as stored, 32767 (user-defined) included. A projected model without
    /// a code has none, whatever it says of its base.
    std::optional<std::uint16_t> ProjectedCode() const;
    std::optional<std::uint16_t> GeographicCode() const;
    /// The EPSG code of the whole system; 0 where the file states none.
    int SystemCode() const;
};

/// The tags of a whole TIFF in memory; empty for what is none. Values beyond its end
/// count as absent.
std::optional<GeoTiffTags> ParseTiffTags(std::string_view tiff);

}  // namespace MapAnchor

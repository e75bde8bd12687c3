#pragma once

#include <Tellurion/RandomAccessFile.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace MapAnchor {

/// The place of an image: the centre of its top left pixel, and what a step by a column
/// and by a row adds. All zeros for an image without a position.
struct SidPosition {
    double x = 0.0;
    double y = 0.0;
    double x_resolution = 0.0;
    double y_resolution = 0.0;  ///< negative where rows go south
    double x_rotation = 0.0;    ///< what a row adds to x
    double y_rotation = 0.0;    ///< what a column adds to y
};

/// What the header of a MrSID file says of its place.
struct SidHeader {
    SidPosition position;
    std::optional<std::uint16_t> projected;   ///< the GeoTIFF key 3072, as stored
    std::optional<std::uint16_t> geographic;  ///< the GeoTIFF key 2048, as stored
    std::string well_known_text;              ///< of newer encoders; empty without it
};

/// True for the first bytes of a MrSID file, of at least 32.
bool IsMrSid(std::string_view head);

/// Reads a file that IsMrSid holds for one; generations 2 and 3, and what follows them
/// as far as its records are laid out alike. What cannot be made sense of counts as
/// absent.
SidHeader ReadSidHeader(const Tellurion::RandomAccessFile& file);

}  // namespace MapAnchor

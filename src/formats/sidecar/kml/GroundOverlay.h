#pragma once

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BString.h>

#include <array>
#include <string>

namespace MapAnchor {

/// Where a KML file puts a picture: its corners in degrees of WGS 84, from the top left one clockwise.
struct GroundOverlay {
    struct Corner {
        double longitude = 0.0;
        double latitude = 0.0;
    };
    std::array<Corner, 4> corners = {};
    bool is_box = false;  ///< along meridians and parallels, north above
};

/// The corners of a raster of that size. Throws a BException where they have no position.
GroundOverlay OverlayOf(const Tellurion::BGeoReference& reference, long width, long height);

/// How far from its place the picture is drawn inside, in pixels, at most, though its corners are
/// where they are; not a number where that is not known.
double InteriorError(const GroundOverlay& overlay, const Tellurion::BGeoReference& reference, long width,
                     long height);

std::string FormatKml(const GroundOverlay& overlay, const std::string& name, const std::string& image);

/// The first overlay in a file; `fault` says why there is none.
bool ParseKml(const Tellurion::BString& file, GroundOverlay& overlay, std::string& fault);

}  // namespace MapAnchor

#pragma once

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BString.h>

namespace MapAnchor {

struct ReferenceFormat;

/// A KML file that lays a raster over the globe: a LatLonBox for one along meridians and parallels,
/// a gx:LatLonQuad for others. Both need the raster's size; failures are reported by exception.
class BRefKml {
public:
    /// Four corners in longitude and latitude, as an affine or, of a quadrangle, a projective fit.
    static void Read(const Tellurion::BString& file, Tellurion::BGeoReference& reference, long width,
                     long height);
    /// What the overlay cannot follow inside is a diagnostic.
    static void Write(const Tellurion::BString& file, const Tellurion::BGeoReference& reference, long width,
                      long height, const Tellurion::BString& imageName);

    static ReferenceFormat Format();
};

}  // namespace MapAnchor

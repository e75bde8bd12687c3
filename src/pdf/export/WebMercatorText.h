#pragma once

#include <Tellurion/BString.h>

namespace MapAnchor {

/// Web Mercator in the form that PDF viewers compute rightly: a Mercator on a sphere
/// with the ellipsoid's major axis, in place of one with an auxiliary sphere. Any
/// other text comes back as it is.
Tellurion::BString RewriteWebMercator(Tellurion::BString wkt);

}  // namespace MapAnchor

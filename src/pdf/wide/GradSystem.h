#pragma once

#include <Tellurion/BCoordSys.h>
#include <Tellurion/BString.h>

#include <string>

namespace MapAnchor {

constexpr double kDegreesOfGrad = 0.9;

/// A system whose geographic base counts in grads: then so do positions, for who writes such.
inline bool CountsInGrads(const Tellurion::BCoordSys& system) {
    Tellurion::BString text = system.ToWholeWKT();
    return text.ToLower().StdStr().find("unit[\"grad\"") != std::string::npos;
}

}  // namespace MapAnchor

#pragma once

#include <Tellurion/BCoordSys.h>

#include <string>

namespace Tool {

/// The two objects of JSON about a coordinate system, each as text on one line.
struct SystemTexts {
    std::string in_wkt;  ///< empty for a system that has no well-known text
    std::string described;
};

/// Kept for each system of a thread, since the files of an archive share a few of them.
const SystemTexts& SystemTextsOf(const Tellurion::BCoordSys& system);

}  // namespace Tool

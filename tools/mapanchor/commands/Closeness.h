#pragma once

#include <Tellurion/BGeoReference.h>

#include <optional>
#include <string>

namespace Tool {

/// How far two references of one raster lie apart at its worst corner.
struct Closeness {
    double pixels = 0.0;  ///< of the first one
    double metres = 0.0;  ///< on the ground
};

/// Empty when one of the two has no transform or no system, or a corner has no place in
/// it; `fault` says which.
std::optional<Closeness> CompareAtCorners(const Tellurion::BGeoReference& meant,
                                          const Tellurion::BGeoReference& found, long width, long height,
                                          std::string& fault);

}  // namespace Tool

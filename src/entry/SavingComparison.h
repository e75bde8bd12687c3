#pragma once

#include <MapAnchor/BSavingOptions.h>
#include <Tellurion/BControlPoint.h>
#include <Tellurion/BGeoReference.h>

#include <string>
#include <vector>

namespace MapAnchor {

/// What a kind of file holds of a reference that was saved.
struct PartsHeld {
    bool system = false;
    bool whole_system = false;  ///< with its vertical part
    bool points = false;
    bool disabled_points = false;  ///< they are written, with their mark or without
    bool vertical_unit = false;
};

/// A difference between what was meant and what was found.
struct SavedDifference {
    const char* id;
    std::string text;
};

/// What was found in place of a reference. A plain value.
struct SavedComparison {
    double pixels;  ///< the largest distance; not a number where nothing could be compared
    double metres;
    bool is_same_system = false;
    double system_metres;
    bool is_turned = false;  ///< longitudes are whole turns around the earth apart
    std::vector<SavedDifference> differences = {};
};

/// What a reader found: a reference, whose points may have fractions of pixels.
struct FoundReference {
    const Tellurion::BGeoReference& reference;
    std::vector<Tellurion::BControlPoint> points;
    bool centre_anchored = false;
};

/// Compares at the corners and the centre of a raster of that size, and point by point. An
/// unknown size, 0 by 0, is that of the points or 1000 by 1000 pixels.
SavedComparison CompareSaved(const Tellurion::BGeoReference& meant, const FoundReference& found,
                             const PartsHeld& held, const BSavingOptions& options);

}  // namespace MapAnchor

#pragma once

#include "raster/mrsid/SidHeader.h"

#include <string_view>

namespace MapAnchor {

/// What a walk over metadata records found, and how it ended.
struct SidRecords {
    std::optional<double> origin_x;
    std::optional<double> origin_y;
    std::optional<double> x_resolution;
    std::optional<double> y_resolution;  ///< a size: positive, whichever way rows go
    std::optional<double> x_rotation;
    std::optional<double> y_rotation;
    std::optional<std::uint16_t> projected;
    std::optional<std::uint16_t> geographic;
    std::string well_known_text;

    /// The closing record was reached, every one before it made sense.
    bool complete = false;
    std::size_t end = 0;  ///< behind the closing record
};

/// Walks the records from the start of `bytes`. A record that makes no sense ends the
/// walk; what came before it counts.
SidRecords ParseSidRecords(std::string_view bytes);

}  // namespace MapAnchor

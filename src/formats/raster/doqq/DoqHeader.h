#pragma once

#include <Tellurion/RandomAccessFile.h>
#include "common/storing/Affine.h"

#include <cstdint>
#include <string>

namespace MapAnchor {

/// What the header of a digital orthophoto quadrangle says of its position. The
/// header is spread over the first lines of the image, so where its later fields
/// stand depends on the length of a line. A field outside the file is blank: 0.
struct DoqHeader {
    long line_length = 0;
    std::string zone;  ///< the digits of the UTM zone
    double x = 0.0;    ///< of the origin, in metres
    double y = 0.0;
    double x_size = 0.0;  ///< of a pixel
    double y_size = 0.0;

    std::int64_t position_at = 0;  ///< where the origin and the pixel size are written
    std::int64_t pixel_size_at = 0;
    static constexpr std::int64_t kZoneAt = 198;
    static constexpr std::int64_t kDatumAt = 167;
    long datum = 0;  ///< 1 NAD27, 2 WGS72, 3 WGS84, 4 NAD83; kept for the record

    /// The origin as the file states it, without a shift; rows go down.
    AffineTerms ToAffine() const { return {x_size, 0.0, x, 0.0, -y_size, y}; }
};

/// Reads the fields that are needed, nothing between them.
DoqHeader ParseDoqHeader(Tellurion::RandomAccessFile& file);

}  // namespace MapAnchor

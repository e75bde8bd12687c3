#pragma once

#include <Tellurion/RandomAccessFile.h>
#include "common/storing/Affine.h"

#include <cstdint>

namespace MapAnchor {

/// The corners of an RPF frame, in degrees; they are outer corners.
struct CadrgCoverage {
    double nw_latitude = 0.0;
    double nw_longitude = 0.0;
    double sw_latitude = 0.0;
    double sw_longitude = 0.0;
    double ne_latitude = 0.0;
    double ne_longitude = 0.0;
    double se_latitude = 0.0;
    double se_longitude = 0.0;
    double latitude_interval = 0.0;  ///< degrees a pixel
    double longitude_interval = 0.0;

    /// The north-west and south-east corners lie on the globe; the others are not asked.
    bool IsOnGlobe() const;
    bool HasExtent() const;
    /// The affine whose column 0, row 0 is the centre of the top left pixel.
    AffineTerms ToAffine() const;
};

/// A frame as far as its sections lead to its coverage. `fault` names the first step
/// that failed; the coverage holds only when there is none.
struct CadrgFrame {
    enum class Fault {
        None,
        EndOfHeader,      ///< the header section leads outside the file
        LocationSection,  ///< it is outside the file
        ComponentTable,   ///< it starts outside the file
        TableSize,        ///< the table is too large, or the file ends within it
        NoCoverage,       ///< no record of the coverage, or it is outside the file
    };

    Fault fault = Fault::None;
    CadrgCoverage coverage;
    std::uint64_t coverage_at = 0;  ///< where its bytes begin in the file
};

/// Walks from the header section to the coverage. Reads those sections alone.
CadrgFrame ParseCadrgFrame(Tellurion::RandomAccessFile& file);

}  // namespace MapAnchor

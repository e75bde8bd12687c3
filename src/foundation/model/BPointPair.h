#pragma once

#include <Tellurion/BPoint.h>
#include <Tellurion/BString.h>
#include <Tellurion/Export.h>

#include <cstdint>

namespace Tellurion {

/// One control point: a whole pixel and its position in the reference's coordinate
/// system. Where in the pixel the position is depends on the format.
class TELLURION_EXPORT BPointPair {
public:
    BPointPair() = default;
    BPointPair(long column, long row, double worldX, double worldY, double worldZ, BString name,
               bool enabled);  ///< of all
    BPointPair(const BPointPair&) = default;
    BPointPair(BPointPair&&) noexcept = default;  ///< leaves the name empty
    BPointPair& operator=(const BPointPair&) = default;
    BPointPair& operator=(BPointPair&&) noexcept = default;  ///< leaves the name empty
    virtual ~BPointPair();

    BString Name;             ///< may be empty
    std::int32_t Column = 0;  ///< values beyond 32 bits are clamped on construction
    std::int32_t Row = 0;     ///< from the top
    BPoint World;             ///< in the units of the coordinate system
    bool Enabled = true;      ///< a disabled point is kept but takes no part in a fit
};

}  // namespace Tellurion

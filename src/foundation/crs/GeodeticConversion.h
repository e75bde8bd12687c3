#pragma once

#include "crs/ProjObjects.h"

#include <Tellurion/BPoint.h>

namespace Tellurion {

/// Between the coordinates of a system and longitude and latitude in degrees on its
/// own datum and prime meridian. For one thread at a time.
class GeodeticConversion {
public:
    /// Of a geographic or projected system of two axes.
    explicit GeodeticConversion(PJ* crs);

    /// False where there is no value; `point` is unchanged then.
    bool ToGeodetic(BPoint& point) const;
    bool FromGeodetic(BPoint& point) const;

private:
    bool Apply(PJ_DIRECTION direction, BPoint& point) const;

    /// From the base's longitude and latitude, in its own angular unit; none for a
    /// system that is geodetic itself.
    Proj::Object operation_;
    double degrees_per_unit_ = 0.0;  ///< of the geodetic side; 0 when there is no way
};

}  // namespace Tellurion

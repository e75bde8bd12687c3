#pragma once

#include <Tellurion/Export.h>

namespace Tellurion {

/// A position of three doubles. In a coordinate system x is the easting or the
/// longitude, y the northing or the latitude; in a raster x is the column, y the row.
class TELLURION_EXPORT BPoint {
public:
    BPoint() = default;
    /** Of all. */ BPoint(double xValue, double yValue, double zValue) : x(xValue), y(yValue), z(zValue) {}
    BPoint(const BPoint&) = default;
    BPoint& operator=(const BPoint&) = default;
    virtual ~BPoint();

    double x = 0.0;  ///< easting, longitude or column
    double y = 0.0;  ///< northing, latitude or row
    double z = 0.0;  ///< height
};

}  // namespace Tellurion

#pragma once

#include "read/Conversion.h"

namespace Tool {

constexpr double kEarthRadius = 6371.0088;  ///< in kilometres
constexpr double kDegree = 3.14159265358979323846 / 180.0;

/// The stereographic projection of a sphere of radius 1, true to scale in its centre, for maps
/// of any place, the poles too.
class Stereographic {
public:
    /// Around a longitude and latitude.
    explicit Stereographic(const Position& centre);

    /// Eastwards and northwards from the centre. What is near the opposite of the centre is
    /// moved away from there, to a circle.
    Position Forward(const Position& place) const;
    /// The longitude, within half a turn of the centre's, and latitude.
    Position Inverse(const Position& at) const;
    /// The angle from the centre, in degrees.
    double AngleTo(const Position& place) const;

private:
    double CosineTo(const Position& place) const;

    Position centre_;
    double sin_;
    double cos_;
};

}  // namespace Tool

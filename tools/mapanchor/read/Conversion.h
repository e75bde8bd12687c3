#pragma once

#include <Tellurion/BCoordSys.h>

#include <optional>

namespace Tool {

/// A place on a plane or on the Earth: easting and northing, or longitude and latitude.
struct Position {
    double x = 0.0;
    double y = 0.0;
};

/// Converts positions from one coordinate system to another, across datums.
class Conversion {
public:
    Conversion(const Tellurion::BCoordSys& from, const Tellurion::BCoordSys& to);

    /// False when there is no way from the one system to the other.
    bool IsPossible() const { return possible_; }
    /// Empty for a position that has no counterpart.
    std::optional<Position> Convert(const Position& position) const;

private:
    Tellurion::BCoordSys from_;
    Tellurion::BCoordSys to_;
    bool possible_;
};

}  // namespace Tool

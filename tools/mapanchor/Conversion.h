#pragma once

#include <Tellurion/BCoordSys.h>

#include <memory>
#include <optional>
#include <string>

class OGRCoordinateTransformation;

/// A place on a plane or on the Earth: easting and northing, or longitude and latitude.
struct Position {
    double x = 0.0;
    double y = 0.0;
};

/// Takes positions from one coordinate system to another, across datums.
class Conversion {
public:
    Conversion(const Tellurion::BCoordSys& from, const Tellurion::BCoordSys& to);
    ~Conversion();
    Conversion(Conversion&&) noexcept;
    Conversion& operator=(Conversion&&) noexcept;

    /// False when no way leads from the one system to the other.
    bool IsPossible() const { return transformation_ != nullptr; }
    /// Empty for a position that has no counterpart.
    std::optional<Position> Convert(const Position& position) const;

private:
    std::unique_ptr<OGRCoordinateTransformation> transformation_;
};

/// True when the two are one system in other words.
bool HasSameDefinition(const Tellurion::BCoordSys& a, const Tellurion::BCoordSys& b);

/// The newer well-known text of a system; empty when it has none.
std::string WellKnownText2(const Tellurion::BCoordSys& system);

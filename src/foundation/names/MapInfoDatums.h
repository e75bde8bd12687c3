#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace Tellurion {

/// A MapInfo ellipsoid by its number.
struct MapInfoEllipsoid {
    int number;
    const char* name;
    double semi_major;          ///< in metres
    double inverse_flattening;  ///< 0 for a sphere
};

/// Null for an unknown number.
const MapInfoEllipsoid* FindMapInfoEllipsoid(int number);
/// The ellipsoid of those figures; null when MapInfo has no such ellipsoid.
const MapInfoEllipsoid* FindMapInfoEllipsoid(double semi_major, double inverse_flattening);

/// The numbers of clauses whose datum is spelled out: an ellipsoid and three parameters
/// of a shift, or seven and a prime meridian.
constexpr int kMapInfoShift = 999;
constexpr int kMapInfoShiftAndRotation = 9999;

/// Metres, arc seconds in the sense of a coordinate frame rotation, parts per million.
using MapInfoShift = std::array<double, 7>;

/// A datum of a clause: a number, or ellipsoid, shift and prime meridian.
struct MapInfoDatum {
    int number = 0;
    int ellipsoid = 0;
    double prime_meridian = 0.0;  ///< degrees east of Greenwich
    MapInfoShift shift{};
    int epsg = 0;            ///< of the geodetic system; 0 where that is open
    bool preferred = false;  ///< of several datums of one system the one to write
    std::string_view title;  ///< of a number without an EPSG system

    bool IsSpelledOut() const { return number == kMapInfoShift || number == kMapInfoShiftAndRotation; }
    /// How many parameters a clause has behind the number.
    int CountParameters() const {
        return number == kMapInfoShift ? 4 : number == kMapInfoShiftAndRotation ? 9 : 0;
    }
    std::vector<double> Parameters() const;
};

/// The datum of a number and the parameters behind it; `ellipsoid` is -1 for an unknown
/// number or ellipsoid.
MapInfoDatum ReadMapInfoDatum(int number, const std::vector<double>& parameters);

/// The datum to write for an EPSG geodetic system; null when the table lacks the system, with
/// `ellipsoid` -1 where every clause would move it.
const MapInfoDatum* FindMapInfoDatum(int epsg);

/// The datum of a shift: number 999 where three parameters are enough, else 9999.
MapInfoDatum MakeMapInfoDatum(int ellipsoid, double prime_meridian, const MapInfoShift& shift);

}  // namespace Tellurion

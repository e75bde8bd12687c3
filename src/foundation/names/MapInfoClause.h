#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Tellurion {

class BFile;

/// How a clause goes from the coordinates of its projection to its own: both in the same
/// unit, and along the axes.
struct MapInfoAffine {
    double scale_x = 1.0;
    double scale_y = 1.0;
    double shift_x = 0.0;
    double shift_y = 0.0;

    bool operator==(const MapInfoAffine&) const = default;
};

/// What a clause says. Angles are in degrees, lengths in its unit.
struct MapInfoTerms {
    int type = 0;  ///< of the projection; 0 for NonEarth
    int datum = 0;
    std::vector<double> datum_parameters;
    std::string_view unit;           ///< MapInfo's name; empty for longitude and latitude
    std::vector<double> parameters;  ///< of the projection
    /// The grid is that of the projection, stretched and moved; 1 and zeros without.
    MapInfoAffine affine;
};

/// The clause in one line, without the word CoordSys. No number has an exponent.
std::string FormatMapInfo(const MapInfoTerms& terms);

/// A unit of length.
struct MapInfoUnit {
    int code;
    const char* name;
    const char* long_name;
    double metres;
};
/// Null for an unknown name or length.
const MapInfoUnit* FindMapInfoUnit(std::string_view name);
const MapInfoUnit* FindMapInfoUnit(double metres);

/// The CoordSys clause of a MapInfo text, read to its last word.
struct MapInfoClause {
    bool found = false;
    /// Why it cannot be understood; empty for a clause that can.
    std::string fault;
    /// Projection type, datum, unit and parameters, checked for what they need.
    MapInfoTerms terms;
};

/// Looks for the clause in the lines of an open file; any number of points may stand
/// before it.
MapInfoClause ReadMapInfoClause(BFile& file);

/// Reads a clause from the text behind the word CoordSys; what follows it is ignored.
MapInfoClause ParseMapInfoClause(std::string_view text);

}  // namespace Tellurion

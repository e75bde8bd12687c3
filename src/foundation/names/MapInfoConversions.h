#pragma once

#include "names/MapInfoClause.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Tellurion {

/// The order in which EPSG's methods have their parameters: PROJ identifies a method by it.
struct ParameterOrder {
    bool operator()(int first, int second) const;
};

/// A method and its parameters by EPSG number. Angles are in degrees, lengths in metres.
struct MapInfoConversion {
    std::string method;
    int method_epsg = 0;  ///< 0 for a method that EPSG does not have
    std::map<int, double, ParameterOrder> parameters;
    bool defined_in_grads = false;
};

struct MapInfoFigure {
    double semi_major = 0.0;
    double inverse_flattening = 0.0;
};

/// The name of a parameter; null for a number that no projection of MapInfo has.
const char* NameOfParameter(int epsg);
bool IsLengthParameter(int epsg);
bool IsScaleParameter(int epsg);

/// The conversion of a clause, with `unit` metres for one unit; nothing for a projection
/// that is not known, or whose affine transform leaves none. Of several methods that are
/// the same it is the one of national systems: a Lambert conic whose origin is midway has
/// one parallel and a scale, as has a Mercator projection with an odd parallel; a polar
/// stereographic projection has the parallel of true scale where that is in whole seconds.
std::optional<MapInfoConversion> ReadMapInfoConversion(const MapInfoTerms& terms, double unit,
                                                       const MapInfoFigure& figure);

/// Sets the projection of a clause; false where no projection of MapInfo is the same.
bool WriteMapInfoConversion(const MapInfoConversion& conversion, double unit, const MapInfoFigure& figure,
                            MapInfoTerms& terms);

}  // namespace Tellurion

#include "import/CLGIProjection.h"

namespace VellumLib {

const LGIProjectionMap& LGIProjections() {
    static const LGIProjectionMap projections = {
        {"GEODETIC", {"Geodetic", -1, {}}},
        {"GEOGRAPHIC", {"Geographic", -1, {}}},
        {"MG", {"Military Grid Reference System (MGRS)", -1, {}}},
        {"UT", {"Universal Transverse Mercator (UTM)", 76, {kZone, kHemisphere}}},
        {"SPCS", {"State Plane", 84, {kZone}}},
        {"AC",
         {"Albers Equal Area Conic",
          2,
          {kOriginLatitude, kCentralMeridian, kStandardParallelOne, kStandardParallelTwo, kFalseEasting,
           kFalseNorthing}}},
        {"AL",
         {"Azimuthal Equidistant", 4, {kOriginLatitude, kCentralMeridian, kFalseEasting, kFalseNorthing}}},
        {"BF", {"Bonne", 8, {kOriginLatitude, kCentralMeridian, kFalseEasting, kFalseNorthing}}},
        {"CS", {"Cassini", 9, {kOriginLatitude, kCentralMeridian, kFalseEasting, kFalseNorthing}}},
        {"LI",
         {"Cylindrical Equal Area", 21, {kOriginLatitude, kCentralMeridian, kFalseEasting, kFalseNorthing}}},
        {"EF", {"Eckert IV", 17, {kCentralMeridian, kFalseEasting, kFalseNorthing}}},
        {"ED", {"Eckert VI", 19, {kCentralMeridian, kFalseEasting, kFalseNorthing}}},
        {"CP",
         {"Equidistant Cylindrical",
          23,
          {kStandardParallel, kCentralMeridian, kFalseEasting, kFalseNorthing}}},
        {"GN", {"Gnomonic", 28, {kOriginLatitude, kCentralMeridian, kFalseEasting, kFalseNorthing}}},
        {"LE",
         {"Lambert Conformal Conic",
          41,
          {kCentralMeridian, kStandardParallelOne, kStandardParallelTwo, kFalseEasting, kFalseNorthing}}},
        {"MC",
         {"Mercator", 46, {kOriginLatitude, kCentralMeridian, kScaleFactor, kFalseEasting, kFalseNorthing}}},
        {"MH", {"Miller Cylindrical", 48, {kCentralMeridian, kFalseEasting, kFalseNorthing}}},
        {"MP", {"Mollweide", 49, {kCentralMeridian, kFalseEasting, kFalseNorthing}}},
        {"NT", {"New Zealand Map Grid", 50, {kOriginLatitude, kCentralMeridian}}},
        {"OD", {"Orthographic", 53, {kOriginLatitude, kCentralMeridian, kFalseEasting, kFalseNorthing}}},
        {"PG",
         {"Polar Stereographic",
          57,
          {kLatitudeOfTrueScale, kLongitudeDownFromPole, kFalseEasting, kFalseNorthing}}},
        {"PH", {"Polyconic", 59, {kOriginLatitude, kCentralMeridian, kFalseEasting, kFalseNorthing}}},
        {"SA", {"Sinusoidal", 63, {kCentralMeridian, kFalseEasting, kFalseNorthing}}},
        {"SD", {"Stereographic", 65, {kOriginLatitude, kCentralMeridian, kFalseEasting, kFalseNorthing}}},
        {"TC",
         {"Transverse Mercator",
          70,
          {kOriginLatitude, kCentralMeridian, kScaleFactor, kFalseEasting, kFalseNorthing}}},
        {"VA", {"Van der Grinten", 77, {kCentralMeridian, kFalseEasting, kFalseNorthing}}},
    };
    return projections;
}

const std::map<int, std::string>& LGIParameterKeys() {
    static const std::map<int, std::string> keys = {
        {kProjectionType, "ProjectionType"},
        {kType, "Type"},
        {kUnits, "Units"},
        {kDatum, "Datum"},
        {kCentralMeridian, "CentralMeridian"},
        {kFalseEasting, "FalseEasting"},
        {kFalseNorthing, "FalseNorthing"},
        {kHeight, "Height"},
        {kHemisphere, "Hemisphere"},
        {kLatitudeOne, "LatitudeOne"},
        {kLatitudeTwo, "LatitudeTwo"},
        {kLatitudeOfTrueScale, "LatitudeOfTrueScale"},
        {kLongitudeOne, "LongitudeOne"},
        {kLongitudeTwo, "LongitudeTwo"},
        {kLongitudeDownFromPole, "LongitudeDownFromPole"},
        {kOrientation, "Orientation"},
        {kOriginHeight, "OriginHeight"},
        {kOriginLatitude, "OriginLatitude"},
        {kOriginLongitude, "OriginLongitude"},
        {kScaleFactor, "ScaleFactor"},
        {kStandardParallel, "StandardParallel"},
        {kStandardParallelOne, "StandardParallelOne"},
        {kStandardParallelTwo, "StandardParallelTwo"},
        {kZone, "Zone"},
    };
    return keys;
}

}  // namespace VellumLib

#include "names/MapInfoConversions.h"

#include "crs/ConformalMath.h"
#include "names/MapInfoForms.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>
#include <utility>

namespace Tellurion {
namespace {

using namespace MapInfo;

constexpr double kWholeRange = 90.0;

double Get(const MapInfoConversion& conversion, int parameter) {
    const auto found = conversion.parameters.find(parameter);
    return found == conversion.parameters.end() ? 0.0 : found->second;
}

bool Near(double a, double b, double tolerance) {
    return std::abs(a - b) <= tolerance;
}

/// Numbers that people chose, and not those that follow from others.
bool IsWhole(double value, double tolerance) {
    return Near(value, std::round(value), tolerance);
}
bool IsWholeSeconds(double degrees) {
    return IsWhole(degrees * 3600.0, 1e-5);
}
bool IsWholeGrads(double degrees) {
    return IsWhole(degrees / 0.9, 1e-9);
}

double Eccentricity(const MapInfoFigure& figure) {
    if (figure.inverse_flattening == 0.0) return 0.0;
    const double flattening = 1.0 / figure.inverse_flattening;
    return std::sqrt(flattening * (2.0 - flattening));
}

/// The conic of one parallel where the origin is on it.
void PreferOneParallel(MapInfoConversion& conversion, const MapInfoFigure& figure) {
    constexpr double kSameOrigin = 1e-7;  // a centimetre; parallels are rounded
    const double first = Get(conversion, kParallel1);
    const double second = Get(conversion, kParallel2);
    if (first != second && IsWholeSeconds(first) && IsWholeSeconds(second)) return;
    const ConformalConic conic = ConicOfTwo(first, second, Eccentricity(figure));
    const double origin = Get(conversion, kFalseLatitude);
    const double meridian = Get(conversion, kFalseLongitude);
    if (!std::isfinite(conic.latitude) || !Near(conic.latitude, origin, kSameOrigin)) return;
    conversion = {"Lambert Conic Conformal (1SP)",
                  kLambert1,
                  {{kLatitude, origin},
                   {kLongitude, meridian},
                   {kScale, conic.scale},
                   {kEasting, Get(conversion, kFalseEasting)},
                   {kNorthing, Get(conversion, kFalseNorthing)}},
                  IsWholeGrads(origin) && IsWholeGrads(meridian) &&
                      !(IsWhole(origin, 1e-9) && IsWhole(meridian, 1e-9))};
}

/// The one with a scale at the equator where the parallel is odd.
void PreferEquator(MapInfoConversion& conversion, const MapInfoFigure& figure) {
    const double parallel = Get(conversion, kParallel1);
    if (IsWholeSeconds(parallel)) return;
    conversion.method = "Mercator (variant A)";
    conversion.method_epsg = kMercatorA;
    conversion.parameters.erase(kParallel1);
    conversion.parameters[kLatitude] = 0.0;
    conversion.parameters[kScale] = ParallelRadius(std::abs(parallel), Eccentricity(figure));
}

/// The polar variants, which PROJ computes without the detour over a sphere.
void PreferPolar(MapInfoConversion& conversion, const MapInfoFigure& figure) {
    constexpr double kPole = 90.0;
    const double latitude = Get(conversion, kLatitude);
    if (!Near(std::abs(latitude), kPole, 1e-9)) return;
    conversion.method = "Polar Stereographic (variant A)";
    conversion.method_epsg = kPolarA;
    const double parallel = PolarParallel(Get(conversion, kScale), Eccentricity(figure));
    if (!IsWholeSeconds(parallel) || !(parallel < kPole)) return;
    const double whole = std::round(parallel * 3600.0) / 3600.0;
    conversion = {"Polar Stereographic (variant B)",
                  kPolarB,
                  {{kTrueParallel, std::copysign(whole, latitude)},
                   {kOriginLongitude, Get(conversion, kLongitude)},
                   {kEasting, Get(conversion, kEasting)},
                   {kNorthing, Get(conversion, kNorthing)}}};
}

/// The same projection by a method that MapInfo has, where there is one.
MapInfoConversion AsTwoParallels(const MapInfoConversion& c, const MapInfoFigure& figure) {
    const double eccentricity = Eccentricity(figure);
    const bool one = c.method_epsg == kLambert1;
    ConformalConic conic{Get(c, kLatitude), Get(c, kScale)};
    if (!one) {
        conic = ConicOfTwo(Get(c, kParallel1), Get(c, kParallel2), eccentricity);
        conic.scale *= Get(c, kEllipsoidScale);
    }
    const std::array<double, 2> parallels = ParallelsOf(conic, eccentricity);
    return {"",
            kLambert2,
            {{kFalseLatitude, Get(c, one ? kLatitude : kFalseLatitude)},
             {kFalseLongitude, Get(c, one ? kLongitude : kFalseLongitude)},
             {kParallel1, parallels[0]},
             {kParallel2, parallels[1]},
             {kFalseEasting, Get(c, one ? kEasting : kFalseEasting)},
             {kFalseNorthing, Get(c, one ? kNorthing : kFalseNorthing)}}};
}

MapInfoConversion AsStereographic(const MapInfoConversion& c, const MapInfoFigure& figure) {
    const double eccentricity = Eccentricity(figure);
    MapInfoConversion result{"Stereographic", 0, c.parameters};
    if (c.method_epsg == kPolarA) return result;
    const double parallel = Get(c, kTrueParallel);
    double northing = Get(c, kNorthing);
    if (c.method_epsg == kPolarC)
        northing = Get(c, kFalseNorthing) +
                   std::copysign(figure.semi_major * ParallelRadius(parallel, eccentricity), parallel);
    result.parameters = {{kLatitude, std::copysign(90.0, parallel)},
                         {kLongitude, Get(c, kOriginLongitude)},
                         {kScale, PolarScale(std::abs(parallel), eccentricity)},
                         {kEasting, Get(c, c.method_epsg == kPolarC ? kFalseEasting : kEasting)},
                         {kNorthing, northing}};
    return result;
}

/// A Mercator projection with a scale below 1 has that of 1 at a parallel.
MapInfoConversion AsRegionalMercator(const MapInfoConversion& c, const MapInfoFigure& figure) {
    return {"",
            9805,
            {{kLongitude, Get(c, kLongitude)},
             {kParallel1, MercatorParallel(Get(c, kScale), Eccentricity(figure))},
             {kEasting, Get(c, kEasting)},
             {kNorthing, Get(c, kNorthing)}}};
}

MapInfoConversion Simplify(const MapInfoConversion& conversion, const MapInfoFigure& figure) {
    switch (conversion.method_epsg) {
        case kLambert1:
        case kLambertMichigan:
            return AsTwoParallels(conversion, figure);
        case kPolarA:
        case kPolarB:
        case kPolarC:
            return AsStereographic(conversion, figure);
        case kMercatorA:
            if (Get(conversion, kLatitude) == 0.0 && Get(conversion, kScale) < 1.0)
                return AsRegionalMercator(conversion, figure);
            return conversion;
        default:
            return conversion;
    }
}

/// The parameter of an easting or a northing, whichever of its names the method has.
double* FindOffset(MapInfoConversion& conversion, std::initializer_list<int> names) {
    for (const int name : names)
        if (const auto found = conversion.parameters.find(name); found != conversion.parameters.end())
            return &found->second;
    return nullptr;
}
double* FindEasting(MapInfoConversion& conversion) {
    return FindOffset(conversion, {kEasting, kFalseEasting, kCentreEasting});
}
double* FindNorthing(MapInfoConversion& conversion) {
    return FindOffset(conversion, {kNorthing, kFalseNorthing, kCentreNorthing});
}

/// False where the result is no projection of its own.
bool ApplyAffine(MapInfoConversion& conversion, const MapInfoAffine& affine, double unit) {
    double* easting = FindEasting(conversion);
    double* northing = FindNorthing(conversion);
    if (!easting || !northing) return false;
    *easting = affine.scale_x * *easting + affine.shift_x * unit;
    *northing = affine.scale_y * *northing + affine.shift_y * unit;
    if (affine.scale_x == 1.0) return true;
    const auto scale = conversion.parameters.find(kScale);
    if (scale == conversion.parameters.end()) return false;
    if (affine.scale_x > 0.0) {
        scale->second *= affine.scale_x;
        return true;
    }
    if (affine.scale_x != -1.0 || conversion.method_epsg != kTransverseMercator) return false;
    conversion.method = "Transverse Mercator (South Orientated)";
    conversion.method_epsg = kTransverseMercatorSouth;
    return true;
}

/// A projection without its false origin, and the affine transform that puts it there.
MapInfoAffine ExtractOffsets(MapInfoConversion& conversion, double unit) {
    MapInfoAffine affine;
    if (double* easting = FindEasting(conversion)) affine.shift_x = std::exchange(*easting, 0.0) / unit;
    if (double* northing = FindNorthing(conversion)) affine.shift_y = std::exchange(*northing, 0.0) / unit;
    return affine;
}

/// What only an affine transform can state of a conversion goes there: a scale of more than 1
/// on the parallel of a Lambert conic, and westings and southings. The false origin goes
/// with it, so that a reader that ignores the transform is far off, not by a little.
MapInfoAffine SplitAffine(MapInfoConversion& conversion, double unit) {
    MapInfoAffine affine;
    if (conversion.method_epsg == kLambert1 && Get(conversion, kScale) > 1.0) {
        affine = ExtractOffsets(conversion, unit);
        affine.scale_x = affine.scale_y = std::exchange(conversion.parameters[kScale], 1.0);
    } else if (conversion.method_epsg == kTransverseMercatorSouth) {
        affine = ExtractOffsets(conversion, unit);
        affine.scale_x = affine.scale_y = -1.0;
        conversion.method_epsg = kTransverseMercator;
    }
    return affine;
}

bool HasMethod(const Form& form, const MapInfoConversion& conversion) {
    return form.method_epsg == conversion.method_epsg &&
           (form.method_epsg != 0 || conversion.method == form.method);
}

bool IsImplied(const Form& form, const MapInfoConversion& conversion) {
    return std::ranges::all_of(form.implied, [&](const Implied& implied) {
        return implied.parameter == 0 || Near(Get(conversion, implied.parameter), implied.value, 1e-12);
    });
}

}  // namespace

std::optional<MapInfoConversion> ReadMapInfoConversion(const MapInfoTerms& terms, double unit,
                                                       const MapInfoFigure& figure) {
    const auto* form = FindForm([&](const Form& entry) { return entry.type == terms.type; });
    if (!form) return std::nullopt;
    MapInfoConversion conversion{form->method, form->method_epsg, {}};
    for (std::size_t i = 0; i < form->parameters.size() && form->parameters[i] != 0; ++i) {
        if (i == terms.parameters.size()) return std::nullopt;
        conversion.parameters[form->parameters[i]] =
            terms.parameters[i] * (IsLengthParameter(form->parameters[i]) ? unit : 1.0);
    }
    for (const Implied& implied : form->implied)
        if (implied.parameter != 0) conversion.parameters[implied.parameter] = implied.value;
    if (terms.type == 3) PreferOneParallel(conversion, figure);
    if (terms.type == 20) PreferPolar(conversion, figure);
    if (terms.type == 26) PreferEquator(conversion, figure);
    if (terms.type == 33 && Get(conversion, kLatitude) == 0.0) conversion.parameters.erase(kLatitude);
    // The grid is rectified by the azimuth: the clause has no angle of its own for that.
    if (terms.type == 7) conversion.parameters[kSkewAngle] = Get(conversion, kAzimuth);
    if (terms.affine != MapInfoAffine() && !ApplyAffine(conversion, terms.affine, unit)) return std::nullopt;
    return conversion;
}

bool WriteMapInfoConversion(const MapInfoConversion& conversion, double unit, const MapInfoFigure& figure,
                            MapInfoTerms& terms) {
    MapInfoConversion base = conversion;
    terms.affine = SplitAffine(base, unit);
    MapInfoConversion simple = Simplify(base, figure);
    const auto* form = FindForm([&](const Form& entry) { return HasMethod(entry, simple); });
    if (!form) return false;
    // A false origin for which the clause has no place.
    if (!IsImplied(*form, simple)) terms.affine = ExtractOffsets(simple, unit);
    // Readers differ on the scale of type 32, and on what the latitude of type 33 is.
    if (!IsImplied(*form, simple) || form->type == 32) return false;
    if (form->type == 33 && Get(simple, kLatitude) != 0.0) return false;
    if (form->type == 7 && !Near(Get(simple, kSkewAngle), Get(simple, kAzimuth), 1e-9)) return false;
    terms.type = form->type;
    for (const int parameter : form->parameters)
        if (parameter != 0)
            terms.parameters.push_back(Get(simple, parameter) / (IsLengthParameter(parameter) ? unit : 1.0));
    if (terms.type == 29 || terms.type == 28) {
        if (Near(std::abs(Get(simple, kLatitude)), 90.0, 1e-9)) terms.type = terms.type == 29 ? 4 : 5;
        terms.parameters.push_back(kWholeRange);
    }
    return std::ranges::all_of(terms.parameters, [](double value) { return std::isfinite(value); });
}

}  // namespace Tellurion

#include "names/MapInfoWriter.h"

#include "crs/DefinitionCaches.h"
#include "crs/Identification.h"
#include "crs/SystemTransformation.h"
#include "names/MapInfoConversions.h"
#include "names/MapInfoDatums.h"
#include "names/MapInfoSystem.h"

#include <Tellurion/BLinearUnit.h>
#include <Tellurion/BUnit.h>
#include <Tellurion/Numbers.h>

#include <proj_experimental.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <numbers>
#include <optional>
#include <vector>

namespace Tellurion {
namespace {

constexpr double kDegrees = 180.0 / std::numbers::pi;
constexpr int kGrs80 = 0;
constexpr int kGrs80Datum = 33;
constexpr int kKkj = 1016;
constexpr int kWebMercator = 3857;
constexpr int kWgs84 = 4326;
constexpr int kLatitudeLongitude = 1;
constexpr int kTransverseMercator = 8;
constexpr int kTransverseMercatorOfKkj = 24;

/// Fifteen digits: what a conversion from another unit adds behind them is noise.
double Rounded(double value) {
    std::array<char, 40> buffer;
    const auto [end, error] =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::general, 15);
    return error == std::errc() ? ParseDouble({buffer.data(), end}) : value;
}

/// What the clause writes of a geodetic system.
struct Figure {
    MapInfoFigure ellipsoid;
    double prime_meridian = 0.0;  ///< in degrees
};

bool ReadFigure(PJ* crs, Figure& figure) {
    PJ_CONTEXT* context = Proj::ThreadContext();
    const Proj::Object ellipsoid(proj_get_ellipsoid(context, crs));
    const Proj::Object meridian(proj_get_prime_meridian(context, crs));
    double factor = 0.0;
    if (!ellipsoid || !meridian ||
        !proj_ellipsoid_get_parameters(context, ellipsoid.get(), &figure.ellipsoid.semi_major, nullptr,
                                       nullptr, &figure.ellipsoid.inverse_flattening) ||
        !proj_prime_meridian_get_parameters(context, meridian.get(), &figure.prime_meridian, &factor,
                                            nullptr))
        return false;
    figure.prime_meridian = Rounded(figure.prime_meridian * factor * kDegrees);
    return true;
}

/// The shift to WGS 84 of a system that is bound to it; zeros without one.
MapInfoShift ShiftOf(PJ* bound) {
    MapInfoShift shift{};
    PJ_CONTEXT* context = Proj::ThreadContext();
    const Proj::Object operation(bound ? proj_crs_get_coordoperation(context, bound) : nullptr);
    if (!operation || !proj_coordoperation_get_towgs84_values(context, operation.get(), shift.data(), 7, 0))
        return {};
    for (std::size_t i = 3; i < 6; ++i)
        shift[i] = 0.0 - shift[i];
    // Nine decimals: the scale has lost digits on the way through its unit.
    for (double& value : shift)
        value = std::round(value * 1e9) / 1e9;
    return shift;
}

/// The shift that a system states of its own, or else the one that PROJ knows for its datum where
/// there is no doubt about it: datums are newer than the table. Zeros without one.
MapInfoShift FindShift(const CoordSysDefinition& system, PJ* horizontal) {
    PJ_CONTEXT* context = Proj::ThreadContext();
    const std::string text = system.Wkt().StdStr();
    if (text.find("TOWGS84[") != std::string::npos) {
        const Proj::Object bound(proj_create_from_wkt(context, text.c_str(), nullptr, nullptr, nullptr));
        return ShiftOf(bound.get());
    }
    if (system.GeodeticEpsgNumber() == 0) return {};
    const Proj::Object bound(proj_crs_create_bound_crs_to_WGS84(context, horizontal, nullptr));
    const bool is_bound = bound && proj_get_type(bound.get()) == PJ_TYPE_BOUND_CRS;
    return is_bound ? ShiftOf(bound.get()) : MapInfoShift{};
}

std::optional<MapInfoDatum> DatumOf(const CoordSysDefinition& system, PJ* horizontal, const Figure& figure) {
    if (const MapInfoDatum* known = FindMapInfoDatum(system.GeodeticEpsgNumber()))
        return known->ellipsoid >= 0 ? std::optional(*known) : std::nullopt;
    const MapInfoEllipsoid* ellipsoid =
        FindMapInfoEllipsoid(figure.ellipsoid.semi_major, figure.ellipsoid.inverse_flattening);
    if (!ellipsoid) return std::nullopt;
    const MapInfoShift shift = FindShift(system, horizontal);
    MapInfoDatum datum = MakeMapInfoDatum(ellipsoid->number, figure.prime_meridian, shift);
    // Without a shift that is known: a number that means no more than this ellipsoid.
    if (ellipsoid->number == kGrs80 && datum.number == kMapInfoShift && shift == MapInfoShift{})
        datum.number = kGrs80Datum;
    return datum;
}

MapInfoConversion ReadConversion(PJ* crs) {
    PJ_CONTEXT* context = Proj::ThreadContext();
    MapInfoConversion result;
    const Proj::Object conversion(proj_crs_get_coordoperation(context, crs));
    const char* method = nullptr;
    const char* code = nullptr;
    if (!conversion ||
        !proj_coordoperation_get_method_info(context, conversion.get(), &method, nullptr, &code))
        return result;
    result.method = method ? method : "";
    result.method_epsg = Proj::ParseCode(code);
    const int count = proj_coordoperation_get_param_count(context, conversion.get());
    for (int i = 0; i < count; ++i) {
        const char* number = nullptr;
        double value = 0.0;
        double factor = 1.0;
        proj_coordoperation_get_param(context, conversion.get(), i, nullptr, nullptr, &number, &value,
                                      nullptr, &factor, nullptr, nullptr, nullptr, nullptr);
        const int epsg = Proj::ParseCode(number);
        const bool angle = !IsLengthParameter(epsg) && !IsScaleParameter(epsg);
        result.parameters[epsg] = value * (angle ? factor * kDegrees : factor);
    }
    return result;
}

/// False where no clause has the projection.
bool WriteProjection(PJ* crs, const Figure& figure, MapInfoTerms& terms) {
    Proj::Axis axis;
    Proj::Object owner;
    const MapInfoUnit* unit =
        Proj::GetAxis(crs, 0, axis, owner) ? FindMapInfoUnit(axis.unit_factor) : nullptr;
    if (!unit) return false;
    if (!WriteMapInfoConversion(ReadConversion(crs), unit->metres, figure.ellipsoid, terms)) return false;
    // The zones of KKJ have a type of their own, which MapInfo's users know.
    if (terms.type == kTransverseMercator && terms.datum == kKkj) terms.type = kTransverseMercatorOfKkj;
    terms.unit = unit->name;
    std::ranges::transform(terms.parameters, terms.parameters.begin(), Rounded);
    for (double* value :
         {&terms.affine.scale_x, &terms.affine.scale_y, &terms.affine.shift_x, &terms.affine.shift_y})
        *value = Rounded(*value);
    return true;
}

/// What the clause should be; type 0 where there is none.
MapInfoTerms EarthTermsOf(const CoordSysDefinition& system) {
    MapInfoTerms terms;
    const bool projected = system.GetKind() == CoordSysDefinition::Kind::Projected;
    if (projected && system.EpsgNumber() == kWebMercator) return {10, 157, {}, "m", {0.0}, {}};
    const Proj::Object crs = system.CloneHorizontal();
    Figure figure;
    if (!ReadFigure(crs.get(), figure)) return terms;
    const auto datum = DatumOf(system, crs.get(), figure);
    if (!datum) return terms;
    terms.datum = datum->number;
    terms.datum_parameters = datum->Parameters();
    if (!projected)
        terms.type = kLatitudeLongitude;
    else if (!WriteProjection(crs.get(), figure, terms))
        return {};
    return terms;
}

/// Whether a clause is read as the system for which it was made.
bool IsReadBack(const MapInfoTerms& terms, const CoordSysDefinition& system) {
    const CoordSysDefinition::Ptr read = FindByMapInfo(terms);
    if (!read || read->GetKind() != system.GetKind()) return false;
    return IsSamePlacement(read->CloneHorizontal().get(), system.CloneHorizontal().get());
}

/// Whether the datum of a clause leads to where PROJ places it on WGS 84: some datums are turned
/// too far for seven parameters, or have no such shift at all.
bool LeadsToSamePlace(const MapInfoTerms& terms, const CoordSysDefinition& system) {
    constexpr double kSameOnWgs84 = 10.0 / 111'319.0;  // degrees
    constexpr std::size_t kStep = 9;
    const CoordSysDefinition::Ptr wgs84 = FindByEpsg(kWgs84);
    const CoordSysDefinition::Ptr read = FindByMapInfo(terms);
    if (!wgs84 || !read) return false;
    const SystemTransformation own(system, *wgs84);
    const SystemTransformation others(*read, *wgs84);
    const std::vector<BPoint> places = PlacesOf(system.CloneHorizontal().get());
    for (std::size_t i = 0; i < places.size(); i += kStep) {
        BPoint a = places[i];
        if (!system.FromGeodetic(a)) continue;
        BPoint b = a;
        if (!own.Apply(a) || !others.Apply(b)) continue;
        const double cosine = std::cos(a.y / kDegrees);
        if (std::hypot(std::remainder(a.x - b.x, 360.0) * cosine, a.y - b.y) > kSameOnWgs84) return false;
    }
    return true;
}

/// Datums of MapInfo's own table mean what MapInfo says, and a shift of the text's own is exact.
bool NeedsProofOfDatum(const CoordSysDefinition& system) {
    const int number = system.GeodeticEpsgNumber();
    return number != 0 && !FindMapInfoDatum(number) &&
           system.Wkt().StdStr().find("TOWGS84[") == std::string::npos;
}

std::string NonEarthTextOf(const CoordSysDefinition& system) {
    const BSharedPtr<BUnit> unit = system.HorizontalUnit();
    const auto* linear = dynamic_cast<const BLinearUnit*>(unit.Get());
    const MapInfoUnit* known = linear ? FindMapInfoUnit(1.0 / linear->GetUnitsPerMeter()) : nullptr;
    return known ? FormatMapInfo({0, 0, {}, known->name, {}, {}}) : std::string();
}

}  // namespace

std::string MapInfoTextOf(const CoordSysDefinition& system) {
    if (system.GetKind() == CoordSysDefinition::Kind::Other)
        return system.Wkt().StdStr().starts_with("LOCAL_CS[") ? NonEarthTextOf(system) : std::string();
    const MapInfoTerms terms = EarthTermsOf(system);
    const bool states = terms.type != 0 && IsReadBack(terms, system) &&
                        (!NeedsProofOfDatum(system) || LeadsToSamePlace(terms, system));
    return states ? FormatMapInfo(terms) : std::string();
}

}  // namespace Tellurion

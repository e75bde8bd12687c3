#include "names/MapInfoSystem.h"

#include "crs/DefinitionCaches.h"
#include "names/MapInfoConversions.h"
#include "names/MapInfoDatums.h"

#include <Tellurion/Numbers.h>

#include <proj_experimental.h>

#include <cmath>
#include <iterator>
#include <numbers>
#include <string>
#include <vector>

namespace Tellurion {
namespace {

constexpr double kDegree = std::numbers::pi / 180.0;
constexpr double kDegreesPerGrad = 0.9;
constexpr int kWebMercator = 3857;
/// The datum of WGS 84 on a sphere: with a Mercator projection it is Web Mercator.
constexpr int kWebMercatorDatum = 157;

std::string TitleOf(const MapInfoDatum& datum) {
    if (!datum.IsSpelledOut()) return std::string(datum.title);
    std::string title = "MIF " + std::to_string(datum.number);
    for (const double parameter : datum.Parameters())
        title += ',' + PrintShortest(parameter);
    return title;
}

Proj::Object InDegrees(Proj::Object geodetic) {
    Proj::Axis axis;
    Proj::Object owner;
    if (!geodetic || !Proj::GetAxis(geodetic.get(), 0, axis, owner)) return nullptr;
    if (std::abs(axis.unit_factor - kDegree) < 1e-15) return geodetic;
    PJ_CONTEXT* context = Proj::ThreadContext();
    const Proj::Object altered(
        proj_crs_alter_cs_angular_unit(context, geodetic.get(), "degree", kDegree, "EPSG", "9122"));
    const std::string name = Proj::NameOf(geodetic.get()) + " (degree)";
    return Proj::Object(altered ? proj_alter_name(context, altered.get(), name.c_str()) : nullptr);
}

Proj::Object MakeGeodetic(const MapInfoDatum& datum) {
    if (datum.epsg != 0) {
        const CoordSysDefinition::Ptr known = FindByEpsg(datum.epsg);
        return known ? known->CloneHorizontal() : nullptr;
    }
    PJ_CONTEXT* context = Proj::ThreadContext();
    const MapInfoEllipsoid* ellipsoid = FindMapInfoEllipsoid(datum.ellipsoid);
    const Proj::Object axes(
        proj_create_ellipsoidal_2D_cs(context, PJ_ELLPS2D_LATITUDE_LONGITUDE, nullptr, 0.0));
    const bool greenwich = datum.prime_meridian == 0.0;
    return Proj::Object(proj_create_geographic_crs(
        context, "unnamed", TitleOf(datum).c_str(), ellipsoid->name, ellipsoid->semi_major,
        ellipsoid->inverse_flattening, greenwich ? nullptr : "non-Greenwich", datum.prime_meridian,
        greenwich ? nullptr : "degree", greenwich ? 0.0 : kDegree, axes.get()));
}

Proj::Object MakeConversion(const MapInfoConversion& conversion, const MapInfoUnit& unit) {
    std::vector<PJ_PARAM_DESCRIPTION> descriptions;
    std::vector<std::string> codes;
    codes.reserve(conversion.parameters.size());
    for (const auto& [number, value] : conversion.parameters) {
        codes.push_back(std::to_string(number));
        PJ_PARAM_DESCRIPTION description{};
        description.name = NameOfParameter(number);
        description.auth_name = "EPSG";
        description.code = codes.back().c_str();
        description.value = value;
        description.unit_conv_factor = 1.0;
        description.unit_type = PJ_UT_SCALE;
        if (IsLengthParameter(number)) {
            description.value = value / unit.metres;
            description.unit_name = unit.long_name;
            description.unit_conv_factor = unit.metres;
            description.unit_type = PJ_UT_LINEAR;
        } else if (!IsScaleParameter(number)) {
            const bool grads = conversion.defined_in_grads;
            if (grads) description.value = std::round(value / kDegreesPerGrad);
            description.unit_name = grads ? "grad" : "degree";
            description.unit_conv_factor = grads ? kDegree * kDegreesPerGrad : kDegree;
            description.unit_type = PJ_UT_ANGULAR;
        }
        descriptions.push_back(description);
    }
    const std::string method = std::to_string(conversion.method_epsg);
    const bool numbered = conversion.method_epsg != 0;
    return Proj::Object(proj_create_conversion(Proj::ThreadContext(), "unnamed", nullptr, nullptr,
                                               conversion.method.c_str(), numbered ? "EPSG" : nullptr,
                                               numbered ? method.c_str() : nullptr,
                                               static_cast<int>(descriptions.size()), descriptions.data()));
}

Proj::Object MakeProjected(const MapInfoTerms& terms, PJ* geodetic) {
    PJ_CONTEXT* context = Proj::ThreadContext();
    const MapInfoUnit* unit = FindMapInfoUnit(terms.unit);
    MapInfoFigure figure;
    const Proj::Object ellipsoid(proj_get_ellipsoid(context, geodetic));
    if (!unit || !ellipsoid ||
        !proj_ellipsoid_get_parameters(context, ellipsoid.get(), &figure.semi_major, nullptr, nullptr,
                                       &figure.inverse_flattening))
        return nullptr;
    const auto read = ReadMapInfoConversion(terms, unit->metres, figure);
    const Proj::Object conversion = read ? MakeConversion(*read, *unit) : nullptr;
    if (!conversion) return nullptr;
    const Proj::Object axes(proj_create_cartesian_2D_cs(
        context, terms.affine.scale_x < 0.0 ? PJ_CART2D_WESTING_SOUTHING : PJ_CART2D_EASTING_NORTHING,
        unit->long_name, unit->metres));
    return Proj::Object(
        proj_create_projected_crs(context, "unnamed", geodetic, conversion.get(), axes.get()));
}

/// With the shift to WGS 84 that the clause spells out.
CoordSysDefinition::Ptr WithShift(PJ* crs, const MapInfoDatum& datum) {
    constexpr const char* kParameters[] = {
        R"(PARAMETER["X-axis translation",%,LENGTHUNIT["metre",1],ID["EPSG",8605]],)",
        R"(PARAMETER["Y-axis translation",%,LENGTHUNIT["metre",1],ID["EPSG",8606]],)",
        R"(PARAMETER["Z-axis translation",%,LENGTHUNIT["metre",1],ID["EPSG",8607]],)",
        R"(PARAMETER["X-axis rotation",%,ANGLEUNIT["arc-second",4.84813681109536E-06],ID["EPSG",8608]],)",
        R"(PARAMETER["Y-axis rotation",%,ANGLEUNIT["arc-second",4.84813681109536E-06],ID["EPSG",8609]],)",
        R"(PARAMETER["Z-axis rotation",%,ANGLEUNIT["arc-second",4.84813681109536E-06],ID["EPSG",8610]],)",
        R"(PARAMETER["Scale difference",%,SCALEUNIT["unity",1],ID["EPSG",8611]]]])"};
    const char* text = proj_as_wkt(Proj::ThreadContext(), crs, PJ_WKT2_2019, nullptr);
    const CoordSysDefinition::Ptr target = FindByEpsg(4326);
    if (!text || !target) return nullptr;
    std::string wkt = "BOUNDCRS[SOURCECRS[" + std::string(text) + "],TARGETCRS[";
    const Proj::Object wgs84 = target->CloneHorizontal();
    const char* target_text = proj_as_wkt(Proj::ThreadContext(), wgs84.get(), PJ_WKT2_2019, nullptr);
    wkt += std::string(target_text ? target_text : "") +
           R"(],ABRIDGEDTRANSFORMATION["Transformation to WGS84",)"
           R"wkt(METHOD["Position Vector transformation (geog2D domain)",ID["EPSG",9606]],)wkt";
    for (std::size_t i = 0; i < datum.shift.size(); ++i) {
        // A position vector turns the other way.
        const bool rotation = i >= 3 && i < 6;
        std::string parameter = kParameters[i];
        const double value = rotation ? 0.0 - datum.shift[i] : datum.shift[i];
        wkt += parameter.replace(parameter.find('%'), 1, PrintShortest(i == 6 ? 1.0 + value * 1e-6 : value));
    }
    return CoordSysDefinition::FromWkt(BString(wkt));
}

CoordSysDefinition::Ptr MakeEarth(const MapInfoTerms& terms) {
    if (terms.type == 10 && terms.datum == kWebMercatorDatum && terms.parameters == std::vector{0.0} &&
        terms.unit == "m" && terms.affine == MapInfoAffine())
        return FindByEpsg(kWebMercator);
    const MapInfoDatum datum = ReadMapInfoDatum(terms.datum, terms.datum_parameters);
    if (datum.ellipsoid < 0) return nullptr;
    Proj::Object geodetic = MakeGeodetic(datum);
    if (!geodetic) return nullptr;
    Proj::Object crs =
        terms.type == 1 ? InDegrees(std::move(geodetic)) : MakeProjected(terms, geodetic.get());
    if (crs && datum.IsSpelledOut() && datum.epsg == 0) return WithShift(crs.get(), datum);
    return CoordSysDefinition::Make(std::move(crs));
}

CoordSysDefinition::Ptr MakeNonEarth(const MapInfoTerms& terms) {
    const MapInfoUnit* unit = FindMapInfoUnit(terms.unit);
    if (!unit) return nullptr;
    return CoordSysDefinition::FromWkt(
        BString("LOCAL_CS[\"Nonearth\",UNIT[\"" + std::string(unit->long_name) + "\"," +
                PrintShortest(unit->metres) + "],AXIS[\"Easting\",EAST],AXIS[\"Northing\",NORTH]]"));
}

}  // namespace

CoordSysDefinition::Ptr FindByMapInfo(const MapInfoTerms& terms) {
    return DefinitionCaches::Instance().map_info_clauses.Get(BString(FormatMapInfo(terms)).GetUnits(), [&] {
        return terms.type == 0 ? MakeNonEarth(terms) : MakeEarth(terms);
    });
}

}  // namespace Tellurion

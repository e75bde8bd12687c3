#include "names/ProjectionSource.h"

#include "crs/CoordSysDefinition.h"
#include "crs/Names.h"
#include "crs/UnitTable.h"

#include <proj_experimental.h>

#include <array>
#include <numbers>
#include <string>
#include <string_view>
#include <vector>

namespace GeoCalc::PJ {
namespace {

using Tellurion::BLinearUnit;
using Tellurion::BSharedPtr;
namespace Proj = Tellurion::Proj;

/// What one parameter is called: by its key, by its EPSG codes, and in rows of names.
struct Term {
    const char* key;
    const char* epsg;  ///< codes parted by '|'
    const char* names;
};

constexpr Term kTerms[] = {
    {"LATITUDE_OF_ORIGIN", "8801|8821", "latitude_of_origin|latitude_of_center"},
    {"CENTRAL_MERIDIAN", "8802|8822", "central_meridian|longitude_of_center"},
    {"SCALE_FACTOR", "8805", "scale_factor"},
    {kValFalseEasting, "8806|8826|8816", "false_easting"},
    {kValFalseNorthing, "8807|8827|8817", "false_northing"},
    {"STANDARD_PARALLEL_1", "8823", "standard_parallel_1"},
    {"STANDARD_PARALLEL_2", "8824", "standard_parallel_2"},
};

/// EPSG codes of the methods that rows name; empty for one that has none.
struct Method {
    const char* name;
    const char* epsg;
};

constexpr Method kMethods[] = {
    {"Transverse_Mercator", "9807"},
    {"Lambert_Conformal_Conic_1SP", "9801"},
    {"Lambert_Conformal_Conic_2SP", "9802"},
    {"Albers_Conic_Equal_Area", "9822"},
    {"Cassini_Soldner", "9806"},
    {"Equirectangular", "1028"},
    {"Lambert_Azimuthal_Equal_Area", "9820"},
    {"Mercator_1SP", "9804"},
};

std::string KeyOf(std::string_view name, std::string_view epsg) {
    for (const Term& term : kTerms)
        if (Tellurion::ListHas(term.epsg, epsg) || Tellurion::ListHas(term.names, name)) return term.key;
    return Tellurion::UpperAscii(name);
}

std::string Text(const char* text) {
    return text ? text : "";
}

CParameter::Quantity QuantityOf(std::string_view category) {
    if (category == "angular") return CParameter::Quantity::Angle;
    if (category == "linear") return CParameter::Quantity::Length;
    return CParameter::Quantity::Scale;
}

CParameter ReadParameter(PJ_CONTEXT* context, const ::PJ* conversion, int index,
                         const BSharedPtr<BLinearUnit>& unit) {
    const char* name = nullptr;
    const char* code = nullptr;
    const char* category = nullptr;
    double value = 0.0;
    double factor = 1.0;
    proj_coordoperation_get_param(context, conversion, index, &name, nullptr, &code, &value, nullptr, &factor,
                                  nullptr, nullptr, nullptr, &category);
    CParameter parameter;
    parameter.name = Text(name);
    parameter.epsg = Text(code);
    parameter.key = KeyOf(parameter.name, parameter.epsg);
    parameter.quantity = QuantityOf(Text(category));
    parameter.value = value * factor;
    if (parameter.quantity == CParameter::Quantity::Angle) parameter.value *= 180.0 / std::numbers::pi;
    if (parameter.quantity == CParameter::Quantity::Length) {
        // Told in another unit than the system's, a length is converted.
        const bool same = factor * unit->GetUnitsPerMeter() == 1.0;
        parameter.length = ML::CLinearValue(same ? value : value * factor * unit->GetUnitsPerMeter(), unit);
    }
    return parameter;
}

CParameter ParameterOf(std::string_view name, double value, const BSharedPtr<BLinearUnit>& unit) {
    CParameter parameter;
    parameter.name = name;
    parameter.key = KeyOf(name, "");
    parameter.value = value;
    if (name.starts_with("false_")) {
        parameter.quantity = CParameter::Quantity::Length;
        parameter.length = ML::CLinearValue(value, unit);
    } else if (name != "scale_factor") {
        parameter.quantity = CParameter::Quantity::Angle;
    }
    return parameter;
}

PJ_PARAM_DESCRIPTION Describe(const CParameter& parameter, const std::string& unit_name) {
    PJ_PARAM_DESCRIPTION description{};
    description.name = parameter.name.c_str();
    description.auth_name = parameter.epsg.empty() ? nullptr : "EPSG";
    description.code = parameter.epsg.empty() ? nullptr : parameter.epsg.c_str();
    description.value = parameter.value;
    description.unit_conv_factor = 1.0;
    description.unit_type = PJ_UT_SCALE;
    if (parameter.quantity == CParameter::Quantity::Angle) {
        description.unit_name = "degree";
        description.unit_conv_factor = std::numbers::pi / 180.0;
        description.unit_type = PJ_UT_ANGULAR;
    }
    if (parameter.quantity == CParameter::Quantity::Length) {
        description.value = parameter.length.GetValue();
        description.unit_name = unit_name.c_str();
        description.unit_conv_factor = 1.0 / parameter.length.GetUnits()->GetUnitsPerMeter();
        description.unit_type = PJ_UT_LINEAR;
    }
    return description;
}

}  // namespace

BSharedPtr<BLinearUnit> UnitOf(const Tellurion::CoordSysDefinition& projected) {
    const BSharedPtr<Tellurion::BUnit> unit = projected.HorizontalUnit();
    const auto* linear = dynamic_cast<const BLinearUnit*>(unit.Get());
    return BSharedPtr<BLinearUnit>(linear ? new BLinearUnit(*linear) : new BLinearUnit("unknown", 1.0));
}

CProjection ReadProjection(const Tellurion::CoordSysDefinition& projected) {
    PJ_CONTEXT* context = Proj::ThreadContext();
    const Proj::Object crs = projected.CloneHorizontal();
    const BSharedPtr<BLinearUnit> unit = UnitOf(projected);
    const Proj::Object conversion(proj_crs_get_coordoperation(context, crs.get()));
    if (!conversion) return {};
    const char* method = nullptr;
    const char* code = nullptr;
    proj_coordoperation_get_method_info(context, conversion.get(), &method, nullptr, &code);
    CProjection projection(Text(method), Text(code));
    const int count = proj_coordoperation_get_param_count(context, conversion.get());
    for (int i = 0; i < count; ++i)
        projection.GetParameters().Add(ReadParameter(context, conversion.get(), i, unit));
    return projection;
}

BSharedPtr<BLinearUnit> UnitOf(const DB::ErMapperProjection& row) {
    return Tellurion::UnitTable::LinearFromText("unknown", row.metres_per_unit, 0);
}

CProjection ReadProjection(const DB::ErMapperProjection& row) {
    std::string epsg;
    for (const Method& method : kMethods)
        if (row.method == method.name) epsg = method.epsg;
    CProjection projection{std::string(row.method), epsg};
    const BSharedPtr<BLinearUnit> unit = UnitOf(row);
    for (const auto& [name, value] : row.Parameters())
        projection.GetParameters().Add(ParameterOf(name, value, unit));
    return projection;
}

Proj::Object MakeConversion(const CProjection& projection) {
    const std::vector<CParameter>& parameters = projection.GetParameters().All();
    std::vector<std::string> unit_names;
    unit_names.reserve(parameters.size());
    for (const CParameter& parameter : parameters)
        unit_names.push_back(parameter.length.GetUnits()->GetName().StdStr());
    std::vector<PJ_PARAM_DESCRIPTION> descriptions;
    descriptions.reserve(parameters.size());
    for (std::size_t i = 0; i < parameters.size(); ++i)
        descriptions.push_back(Describe(parameters[i], unit_names[i]));
    const std::string& epsg = projection.GetMethodEpsg();
    return Proj::Object(proj_create_conversion(
        Proj::ThreadContext(), "unnamed", nullptr, nullptr, projection.GetMethod().c_str(),
        epsg.empty() ? nullptr : "EPSG", epsg.empty() ? nullptr : epsg.c_str(),
        static_cast<int>(descriptions.size()), descriptions.data()));
}

}  // namespace GeoCalc::PJ

#include "names/CProjection.h"

#include <Tellurion/Numbers.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace GeoCalc::PJ {
namespace {

/// A number for a method without a code, above all codes: a hash of its letters.
int KindOfName(std::string_view name) {
    std::uint32_t hash = 2166136261U;
    for (const char c : name) {
        const char lower = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        if (lower < 'a' || lower > 'z') continue;
        hash = (hash ^ static_cast<unsigned char>(lower)) * 16777619U;
    }
    return static_cast<int>((hash & 0x3FFFFFFFU) | 0x40000000U);
}

/// The spherical form of a method goes by its ellipsoidal one's number.
int KindOfCode(std::string_view epsg) {
    const int code = static_cast<int>(Tellurion::ParseLong(epsg));
    if (code == 1027) return 9820;
    if (code == 1029) return 1028;
    return code;
}

/// The smaller way round between two angles.
double AngleBetween(double a, double b) {
    return std::abs(std::remainder(a - b, 360.0));
}

/// The two standard parallels are the same in either order.
std::pair<double, double> StandardParallels(const CParameterCollection& parameters) {
    const double first = parameters.GetNumber("STANDARD_PARALLEL_1", 0.0);
    const double second = parameters.GetNumber("STANDARD_PARALLEL_2", 0.0);
    return std::minmax(first, second);
}

bool IsParallel(const CParameter& parameter) {
    return parameter.key == "STANDARD_PARALLEL_1" || parameter.key == "STANDARD_PARALLEL_2";
}

bool HasSameUnit(const ML::CLinearValue& a, const ML::CLinearValue& b) {
    return std::abs(a.GetUnits()->GetUnitsPerMeter() / b.GetUnits()->GetUnitsPerMeter() - 1.0) < 1e-7;
}

}  // namespace

CProjection::CProjection(const std::string& method, const std::string& epsg)
    : method_(method), epsg_(epsg), kind_(epsg.empty() ? KindOfName(method) : KindOfCode(epsg)) {}

bool CProjection::IsNearlyEqual(const CProjection& other) const {
    return Matches(other, {1.5e-6, 2e-3, 1e-8});
}

bool CProjection::IsEqual(const CProjection& other) const {
    return Matches(other, {1e-8, 1e-5, 1e-11});
}

bool CProjection::Matches(const CProjection& other, const Tolerance& tolerance) const {
    return kind_ == other.kind_ && HasNumbersOf(other, tolerance) && other.HasNumbersOf(*this, tolerance);
}

bool CProjection::HasNumbersOf(const CProjection& other, const Tolerance& tolerance) const {
    const auto [low, high] = StandardParallels(parameters_);
    const auto [other_low, other_high] = StandardParallels(other.parameters_);
    if (!(std::abs(low - other_low) < tolerance.degrees && std::abs(high - other_high) < tolerance.degrees))
        return false;
    return std::ranges::all_of(other.parameters_.All(), [&](const CParameter& parameter) {
        return IsParallel(parameter) || HasNumber(parameter, tolerance);
    });
}

bool CProjection::HasNumber(const CParameter& wanted, const Tolerance& tolerance) const {
    const CParameter* own = parameters_.Find(wanted.key);
    switch (wanted.quantity) {
        case CParameter::Quantity::Angle:
            return AngleBetween(wanted.value, own ? own->value : 0.0) < tolerance.degrees;
        case CParameter::Quantity::Length:
            return (!own || HasSameUnit(wanted.length, own->length)) &&
                   std::abs(wanted.length.GetInternal() - (own ? own->length.GetInternal() : 0.0)) <
                       tolerance.metres;
        default:
            return std::abs(wanted.value - (own ? own->value : 1.0)) < tolerance.scale;
    }
}

}  // namespace GeoCalc::PJ

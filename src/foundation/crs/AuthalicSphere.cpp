#include "crs/AuthalicSphere.h"

#include "crs/Identification.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <string_view>

namespace Tellurion {
namespace {

constexpr int kAzimuthal = 9820;
constexpr int kCylindrical = 9835;
constexpr int kAzimuthalOnSphere = 1027;
constexpr int kCylindricalOnSphere = 9834;
constexpr std::string_view kOnSphere = " +R_A";

int MethodOf(PJ* crs) {
    if (proj_get_type(crs) != PJ_TYPE_PROJECTED_CRS) return 0;
    PJ_CONTEXT* context = Proj::ThreadContext();
    const Proj::Object conversion(proj_crs_get_coordoperation(context, crs));
    const char* code = nullptr;
    if (!conversion ||
        !proj_coordoperation_get_method_info(context, conversion.get(), nullptr, nullptr, &code))
        return 0;
    return Proj::ParseCode(code);
}

bool IsSphere(PJ* crs) {
    PJ_CONTEXT* context = Proj::ThreadContext();
    const Proj::Object ellipsoid(proj_get_ellipsoid(context, crs));
    double inverse_flattening = 0.0;
    return ellipsoid &&
           proj_ellipsoid_get_parameters(context, ellipsoid.get(), nullptr, nullptr, nullptr,
                                         &inverse_flattening) &&
           inverse_flattening == 0.0;
}

std::string ProjWordsOf(PJ* crs) {
    const char* words = proj_as_proj_string(Proj::ThreadContext(), crs, PJ_PROJ_4, nullptr);
    std::string text(words ? words : "");
    constexpr std::string_view kType = " +type=crs";
    if (text.ends_with(kType)) text.resize(text.size() - kType.size());
    return text;
}

/// In metres and radians, by their EPSG codes.
std::map<int, double> ParametersOf(PJ* crs) {
    PJ_CONTEXT* context = Proj::ThreadContext();
    const Proj::Object conversion(proj_crs_get_coordoperation(context, crs));
    const int count = conversion ? proj_coordoperation_get_param_count(context, conversion.get()) : 0;
    std::map<int, double> parameters;
    for (int i = 0; i < count; ++i) {
        const char* code = nullptr;
        double value = 0.0;
        double factor = 1.0;
        if (proj_coordoperation_get_param(context, conversion.get(), i, nullptr, nullptr, &code, &value,
                                          nullptr, &factor, nullptr, nullptr, nullptr, nullptr))
            parameters[Proj::ParseCode(code)] = value * factor;
    }
    return parameters;
}

bool HasSameParameters(PJ* first, PJ* second) {
    constexpr double kTolerance = 1e-9;
    return std::ranges::equal(ParametersOf(first), ParametersOf(second), [](const auto& a, const auto& b) {
        return a.first == b.first && std::abs(a.second - b.second) < kTolerance;
    });
}

bool HasSameUnit(PJ* first, PJ* second) {
    Proj::Axis one;
    Proj::Axis other;
    Proj::Object owner;
    Proj::Object other_owner;
    return Proj::GetAxis(first, 0, one, owner) && Proj::GetAxis(second, 0, other, other_owner) &&
           one.unit_factor == other.unit_factor;
}

/// Where the last word of the system goes: before its number, or before its last bracket.
std::size_t EndOfTerms(const std::string& wkt1) {
    const std::size_t number = wkt1.rfind(",AUTHORITY[");
    const bool is_own = number != std::string::npos && wkt1.find(']', number) == wkt1.size() - 2;
    return is_own ? number : wkt1.size() - 1;
}

}  // namespace

bool IsOnAuthalicSphere(PJ* crs) {
    const int method = MethodOf(crs);
    return (method == kAzimuthalOnSphere || method == kCylindricalOnSphere) && !IsSphere(crs);
}

std::string WithAuthalicSphere(std::string steps) {
    if (steps.find(kOnSphere) != std::string::npos) return steps;
    for (const std::string_view projection : {"+proj=laea", "+proj=cea"})
        if (const std::size_t at = steps.find(projection); at != std::string::npos)
            return steps.insert(at + projection.size(), kOnSphere);
    return steps;
}

BString StateAuthalicSphere(PJ* crs, const BString& wkt1) {
    std::string text = wkt1.StdStr();
    if (text.find("EXTENSION[") != std::string::npos) return wkt1;
    if (!text.starts_with("PROJCS[")) return {};
    const std::string words = WithAuthalicSphere(ProjWordsOf(crs));
    return BString(text.insert(EndOfTerms(text), ",EXTENSION[\"PROJ4\",\"" + words + "\"]"));
}

bool IsComputedOnEllipsoid(PJ* crs) {
    return IsOnAuthalicSphere(crs) && ProjWordsOf(crs).find(kOnSphere) == std::string::npos;
}

int NumberOnAuthalicSphere(PJ* read) {
    const int method = MethodOf(read);
    const bool is_like_one = method == kAzimuthal || method == kCylindrical || method == kAzimuthalOnSphere ||
                             method == kCylindricalOnSphere;
    const int number = is_like_one ? Proj::StatedEpsg(read) : 0;
    if (number == 0) return 0;
    const Proj::Object meant(proj_create_from_database(
        Proj::ThreadContext(), "EPSG", std::to_string(number).c_str(), PJ_CATEGORY_CRS, 0, nullptr));
    if (!meant || !IsOnAuthalicSphere(meant.get())) return 0;
    return HasSameDatum(read, meant.get()) && HasSameParameters(read, meant.get()) &&
                   HasSameUnit(read, meant.get())
               ? number
               : 0;
}

}  // namespace Tellurion

#include "crs/AuthalicSphere.h"

#include "crs/Identification.h"

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

Proj::Object Read(const std::string& wkt) {
    return Proj::Object(proj_create_from_wkt(Proj::ThreadContext(), wkt.c_str(), nullptr, nullptr, nullptr));
}

std::string Wkt1Of(PJ* crs) {
    const char* const options[] = {"MULTILINE=NO", nullptr};
    const char* text = proj_as_wkt(Proj::ThreadContext(), crs, PJ_WKT1_GDAL, options);
    return text ? text : "";
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
    if (!text.starts_with("PROJCS[") || text.find("EXTENSION[") != std::string::npos) return {};
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
    const Proj::Object without_sphere = Read(Wkt1Of(meant.get()));
    const bool is_same =
        IsSameSystem(read, meant.get()) || (without_sphere && IsSameSystem(read, without_sphere.get()));
    return is_same ? number : 0;
}

}  // namespace Tellurion

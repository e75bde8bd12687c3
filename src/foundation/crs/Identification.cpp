#include "crs/Identification.h"

#include "crs/GeodeticConversion.h"
#include "crs/LruCache.h"
#include "crs/UtmZones.h"

#include <Tellurion/BString.h>
#include <Tellurion/Numbers.h>

#include <proj_experimental.h>

#include <algorithm>
#include <cmath>
#include <compare>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace Tellurion {
namespace {

// Origins in feet are rounded to a millimetre in the EPSG list, some to a hundredth of a
// foot; another system is metres away.
constexpr double kSamePlace = 2e-3;  // metres

/// Candidates are asked for by name, method and area; a list longer than this holds
/// systems that have no more in common than the method.
constexpr int kMostCandidates = 64;

/// Positions are tried in this many columns and rows.
constexpr int kSteps = 8;

bool IsEquivalent(PJ* first, PJ* second) {
    return proj_is_equivalent_to_with_ctx(Proj::ThreadContext(), first, second,
                                          PJ_COMP_EQUIVALENT_EXCEPT_AXIS_ORDER_GEOGCRS) != 0;
}

struct Area {
    double west = 0.0;
    double south = 0.0;
    double east = 0.0;
    double north = 0.0;

    BPoint At(double across, double up) const {
        return {west + across * (east - west), south + up * (north - south), 0.0};
    }
};

/// Where the system is meant to be used; most of the world when it does not say.
Area AreaOf(PJ* crs) {
    Area area{-180.0, -80.0, 180.0, 80.0};
    Area stated;
    if (!proj_get_area_of_use(Proj::ThreadContext(), crs, &stated.west, &stated.south, &stated.east,
                              &stated.north, nullptr))
        return area;
    if (stated.east < stated.west) stated.east += 360.0;
    return stated;
}

double MetresPerUnit(PJ* crs) {
    Proj::Axis axis;
    Proj::Object owner;
    return Proj::GetAxis(crs, 0, axis, owner) ? axis.unit_factor : 0.0;
}

/// The false easting and northing of a projected system, in metres. Some count a zone's
/// number into the easting: there it is more than an Earth's width.
BPoint FalseOrigin(PJ* crs) {
    PJ_CONTEXT* context = Proj::ThreadContext();
    BPoint origin;
    const Proj::Object conversion(proj_crs_get_coordoperation(context, crs));
    const int count = conversion ? proj_coordoperation_get_param_count(context, conversion.get()) : 0;
    for (int i = 0; i < count; ++i) {
        const char* text = nullptr;
        double value = 0.0;
        double factor = 1.0;
        proj_coordoperation_get_param(context, conversion.get(), i, &text, nullptr, nullptr, &value, nullptr,
                                      &factor, nullptr, nullptr, nullptr, nullptr);
        const std::string_view name(text ? text : "");
        if (name.find("asting") != name.npos) origin.x = value * factor;
        if (name.find("orthing") != name.npos) origin.y = value * factor;
    }
    return origin;
}

bool IsProjected(PJ* crs) {
    return proj_get_type(crs) == PJ_TYPE_PROJECTED_CRS;
}

double MetresPerGridUnit(PJ* crs) {
    constexpr double kEarthRadius = 6378137.0;
    return MetresPerUnit(crs) * (IsProjected(crs) ? 1.0 : kEarthRadius);
}

/// Projects the same positions with both, spread over the area of `second`, and answers the
/// largest distance in metres. Positions count wherever projected grids have a meaning: within
/// an Earth's width. Infinite when they cannot be compared, or as soon as it is over `limit`.
double LargestDistance(PJ* first, PJ* second, double limit) {
    constexpr double kEarth = 2e7;
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    const GeodeticConversion one(first);
    const GeodeticConversion other(second);
    const double metres = MetresPerGridUnit(second);
    const bool projected = IsProjected(second);
    const BPoint origin = projected ? FalseOrigin(second) : BPoint();
    double largest = 0.0;
    int compared = 0;
    for (const BPoint& place : PlacesOf(second)) {
        BPoint a = place;
        BPoint b = place;
        const bool has_a = one.FromGeodetic(a);
        if (has_a != other.FromGeodetic(b)) return kInfinite;
        if (!has_a || (projected && std::hypot(b.x * metres - origin.x, b.y * metres - origin.y) > kEarth))
            continue;
        largest = std::max(largest, std::hypot(a.x - b.x, a.y - b.y) * metres);
        if (!(largest < limit)) return kInfinite;
        ++compared;
    }
    return compared >= 4 ? largest : kInfinite;
}

bool ProjectAlike(PJ* first, PJ* second) {
    return LargestDistance(first, second, kSamePlace) < kSamePlace;
}

bool IsSameProjected(PJ* first, PJ* second) {
    return HasSameDatum(first, second) && ProjectAlike(first, second);
}

bool IsSameCompound(PJ* first, PJ* second) {
    for (int i = 0; i < 2; ++i) {
        const Proj::Object part(proj_crs_get_sub_crs(Proj::ThreadContext(), first, i));
        const Proj::Object other(proj_crs_get_sub_crs(Proj::ThreadContext(), second, i));
        if (!part || !other || !IsSameSystem(part.get(), other.get())) return false;
    }
    return true;
}

struct Figure {
    double semi_major = 0.0;
    double inverse_flattening = 0.0;
    double prime_meridian = 0.0;  ///< in radians

    bool Read(PJ* crs) {
        PJ_CONTEXT* context = Proj::ThreadContext();
        const Proj::Object ellipsoid(proj_get_ellipsoid(context, crs));
        const Proj::Object meridian(proj_get_prime_meridian(context, crs));
        double factor = 0.0;
        if (!ellipsoid || !meridian ||
            !proj_ellipsoid_get_parameters(context, ellipsoid.get(), &semi_major, nullptr, nullptr,
                                           &inverse_flattening) ||
            !proj_prime_meridian_get_parameters(context, meridian.get(), &prime_meridian, &factor, nullptr))
            return false;
        prime_meridian *= factor;
        return true;
    }
};

bool HasSameFigure(PJ* first, PJ* second) {
    Figure one;
    Figure other;
    return one.Read(first) && other.Read(second) && std::abs(one.semi_major - other.semi_major) < 0.05 &&
           std::abs(one.inverse_flattening - other.inverse_flattening) < 1e-5 &&
           std::abs(one.prime_meridian - other.prime_meridian) < 1e-9;
}

/// How good an answer a candidate is, the more the better, part by part.
struct Rank {
    bool current = false;
    int confidence = 0;
    bool usual_axes = false;

    auto operator<=>(const Rank&) const = default;  // NOLINT(modernize-use-nullptr): its 0 is none of ours
};

/// Some systems stand in the list twice, for either order of axes. The one meant by a
/// text that leaves it open has the easting first, and the latitude.
bool HasUsualAxes(PJ* crs) {
    Proj::Axis axis;
    Proj::Object owner;
    if (!Proj::GetAxis(crs, 0, axis, owner)) return false;
    if (!IsProjected(crs)) return std::string_view(axis.direction) == "north";
    return std::string_view(axis.direction) == "east" || std::string_view(axis.name) == "Easting";
}

/// The best of the candidates seen so far, and whether another is as good.
struct Best {
    int number = 0;
    std::string name;
    Rank rank;
    bool alone = false;

    int Answer() const { return alone ? number : 0; }

    void Offer(PJ* candidate, int confidence) {
        const Rank offered{proj_is_deprecated(candidate) == 0, confidence, HasUsualAxes(candidate)};
        const int offered_number = Proj::StatedEpsg(candidate);
        if (offered_number == 0 || (number != 0 && offered < rank)) return;
        alone = number == 0 || rank < offered;
        number = offered_number;
        name = Proj::NameOf(candidate);
        rank = offered;
    }
};

/// The systems that are the same by what they are. With its name the search would try
/// all that resemble it, which takes a hundred times as long.
Best FindByContent(PJ* crs) {
    PJ_CONTEXT* context = Proj::ThreadContext();
    const Proj::Object unnamed(
        proj_get_type(crs) == PJ_TYPE_COMPOUND_CRS ? nullptr : proj_alter_name(context, crs, "unknown"));
    int* numbers = nullptr;
    const Proj::List list(proj_identify(context, unnamed ? unnamed.get() : crs, "EPSG", nullptr, &numbers));
    const Proj::Ints confidences(numbers);
    Best best;
    for (int i = 0; list && i < std::min(proj_list_get_count(list.get()), kMostCandidates); ++i) {
        const Proj::Object candidate(proj_list_get(context, list.get(), i));
        if (candidate && IsSameSystem(crs, candidate.get())) best.Offer(candidate.get(), numbers[i]);
    }
    return best;
}

using Numbers = std::vector<int>;

enum class Names { Equal, Alike };

Numbers ReadNumbersOf(const std::string& name, PJ_TYPE type, Names names) {
    PJ_CONTEXT* context = Proj::ThreadContext();
    const Proj::List list(proj_create_from_name(context, "EPSG", name.c_str(), &type, 1,
                                                names == Names::Alike ? 1 : 0, kMostCandidates, nullptr));
    Numbers numbers;
    for (int i = 0; list && i < proj_list_get_count(list.get()); ++i)
        numbers.push_back(Proj::StatedEpsg(Proj::Object(proj_list_get(context, list.get(), i)).get()));
    return numbers;
}

/// The systems that the database has under this very name, or one that differs in blanks,
/// case and marks.
Numbers NumbersOf(const std::string& name, PJ_TYPE type, Names names) {
    constexpr std::size_t kMostNames = 256;
    static auto* const cache = new LruCache<Numbers>(kMostNames);
    const BString key(std::to_string(type) + (names == Names::Alike ? " ~" : " ") + name);
    return cache->Get(key.GetUnits(), [&] { return ReadNumbersOf(name, type, names); });
}

/// The number that a system of this name should have; 0 where that is open.
int LikelyNumberOf(std::string_view name) {
    constexpr std::string_view kUtm = " / UTM zone ";
    const std::size_t at = name.find(kUtm);
    if (at == name.npos) return 0;
    const auto zone = static_cast<int>(ParseLong(name.substr(at + kUtm.size())));
    return EpsgOfUtmZone(name.substr(0, at), zone, name.back());
}

Proj::Object SystemOfNumber(int number) {
    return Proj::Object(proj_create_from_database(
        Proj::ThreadContext(), "EPSG", std::to_string(number).c_str(), PJ_CATEGORY_CRS, 0, nullptr));
}

Best FindByName(PJ* crs, Names names) {
    Best best;
    const std::string name = Proj::NameOf(crs);
    // So we, PROJ and GDAL call a system that has no name.
    if (name.empty() || name == "unnamed" || name == "unknown") return best;
    if (const int likely = LikelyNumberOf(name)) {
        const Proj::Object candidate = SystemOfNumber(likely);
        if (candidate && Proj::NameOf(candidate.get()) == name && IsSameSystem(crs, candidate.get()))
            best.Offer(candidate.get(), 100);
        if (best.number != 0) return best;
    }
    for (const int number : NumbersOf(name, proj_get_type(crs), names)) {
        const Proj::Object candidate = SystemOfNumber(number);
        if (candidate && IsSameSystem(crs, candidate.get())) best.Offer(candidate.get(), 100);
    }
    return best;
}

}  // namespace

bool IsSameSystem(PJ* first, PJ* second) {
    const PJ_TYPE type = proj_get_type(first);
    if (type != proj_get_type(second)) return false;
    if (type == PJ_TYPE_PROJECTED_CRS) return IsSameProjected(first, second);
    if (type == PJ_TYPE_COMPOUND_CRS) return IsSameCompound(first, second);
    return IsEquivalent(first, second);
}

bool HasSameDatum(PJ* first, PJ* second) {
    if (proj_get_type(first) != proj_get_type(second)) return false;
    if (!IsProjected(first)) return IsEquivalent(first, second);
    const Proj::Object base(proj_get_source_crs(Proj::ThreadContext(), first));
    const Proj::Object other(proj_get_source_crs(Proj::ThreadContext(), second));
    return base && other && IsEquivalent(base.get(), other.get());
}

std::vector<BPoint> PlacesOf(PJ* crs) {
    std::vector<BPoint> places;
    const Area area = AreaOf(crs);
    for (int i = 0; i < kSteps * kSteps; ++i)
        places.push_back(area.At((i % kSteps + 0.5) / kSteps, (i / kSteps + 0.4) / kSteps));
    return places;
}

double LargestDistance(PJ* first, PJ* second) {
    if (proj_get_type(first) != proj_get_type(second) || !HasSameFigure(first, second))
        return std::numeric_limits<double>::infinity();
    return LargestDistance(first, second, std::numeric_limits<double>::infinity());
}

bool IsSamePlacement(PJ* first, PJ* second) {
    if (proj_get_type(first) != proj_get_type(second) || !HasSameFigure(first, second)) return false;
    return ProjectAlike(first, second);
}

/// A name decides between systems that are the same, and finds the one whose numbers
/// the text has rounded too far for a search. The search takes ten times as long, and that for
/// names that are alike a hundred times: only names such as "UCS-2000_LCS-01_Crimea" and
/// "NAD83_2011_Alabama_East(ftUS)", which stand in for EPSG's in ESRI's flavour, are worth it.
int IdentifyEpsg(PJ* crs) {
    const Best named = FindByName(crs, Names::Equal);
    if (named.number != 0) return named.Answer();
    const int found = FindByContent(crs).Answer();
    const std::string name = Proj::NameOf(crs);
    if (found != 0 || name.find('_') == name.npos || name.find_first_of("-(") == name.npos) return found;
    return FindByName(crs, Names::Alike).Answer();
}

}  // namespace Tellurion

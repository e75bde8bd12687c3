#include "crs/SystemTransformation.h"

#include "crs/AuthalicSphere.h"
#include "crs/DefinitionCaches.h"
#include "crs/Identification.h"
#include "crs/LruCache.h"
#include "crs/UnitsPerDegree.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <string>
#include <utility>

namespace Tellurion {
namespace {

using Kind = CoordSysDefinition::Kind;

constexpr double kInfinite = std::numeric_limits<double>::infinity();
constexpr double kEarthRadius = 6378137.0;

struct Cached {
    CoordSysDefinition::Ptr from;  ///< kept, so that no other takes their addresses
    CoordSysDefinition::Ptr to;
    std::shared_ptr<const SystemTransformation> made;
};

/// Their addresses: each point that is converted asks by them.
std::string KeyOf(const CoordSysDefinition* from, const CoordSysDefinition* to) {
    const std::array<const CoordSysDefinition*, 2> addresses = {from, to};
    return {reinterpret_cast<const char*>(addresses.data()), sizeof addresses};
}

/// Between longitudes and latitudes of a system, which may count in grads.
double MetresBetween(const CoordSysDefinition& system, const BPoint& a, const BPoint& b) {
    const double per_degree = UnitsPerDegree(system.HorizontalUnit());
    const double radian = std::numbers::pi / 180.0 / per_degree;
    const double east = std::remainder(a.x - b.x, 360.0 * per_degree) * std::cos(a.y * radian);
    return std::hypot(east, a.y - b.y) * radian * kEarthRadius;
}

bool HasShift(const CoordSysDefinition& system) {
    return proj_get_type(system.CloneShifted().get()) == PJ_TYPE_BOUND_CRS;
}

/// Coordinates all over the area of `second`, taken for those of either system and brought to
/// longitude and latitude of `hub`.
double DistanceOnTheEarth(const CoordSysDefinition::Ptr& first, const CoordSysDefinition::Ptr& second,
                          const CoordSysDefinition::Ptr& hub) {
    const auto one = SystemTransformation::Find(first, hub);
    const auto other = SystemTransformation::Find(second, hub);
    if (!one->IsPossible() || !other->IsPossible()) return kInfinite;
    double largest = 0.0;
    int compared = 0;
    for (BPoint grid : PlacesOf(second->CloneHorizontal().get())) {
        if (!second->FromGeodetic(grid)) continue;
        BPoint a = grid;
        BPoint b = grid;
        const bool has_b = other->Apply(b);
        if (one->Apply(a) != has_b) return kInfinite;
        if (!has_b) continue;
        largest = std::max(largest, MetresBetween(*hub, a, b));
        ++compared;
    }
    return compared > 0 ? largest : kInfinite;
}

/// A shift that a text states counts on the way to WGS 84, which it leads to; otherwise the
/// ways between the two datums are the exact ones.
CoordSysDefinition::Ptr HubOf(const CoordSysDefinition& first, const CoordSysDefinition& second) {
    constexpr int kWgs84 = 4326;
    if (HasShift(first) || HasShift(second)) return FindByEpsg(kWgs84);
    CoordSysDefinition::Ptr base = second.GetKind() == Kind::Projected ? second.Base() : nullptr;
    if (base && base->GetKind() == Kind::Projected) base = base->Base();
    return base ? base : FindByEpsg(kWgs84);
}

/// What PROJ is to transform of a system: its geodetic system where `projection` has to do the
/// rest.
Proj::Object SideOf(Proj::Object crs, std::optional<GeodeticConversion>& projection) {
    if (!IsComputedOnEllipsoid(crs.get())) return crs;
    projection.emplace(crs.get());
    return Proj::Object(proj_crs_get_geodetic_crs(Proj::ThreadContext(), crs.get()));
}

bool CountsFromGreenwich(PJ* crs) {
    PJ_CONTEXT* context = Proj::ThreadContext();
    const Proj::Object geodetic(proj_crs_get_geodetic_crs(context, crs));
    const Proj::Object meridian(geodetic ? proj_get_prime_meridian(context, geodetic.get()) : nullptr);
    double longitude = 0.0;
    return !meridian ||
           !proj_prime_meridian_get_parameters(context, meridian.get(), &longitude, nullptr, nullptr) ||
           longitude == 0.0;
}

/// Of the datums that it makes from ESRI's texts with another meridian, PROJ finds no way, as from
/// NTF (Paris), or one that is off by the meridian, as from ATF (Paris). Those of the database lead right.
Proj::Object CloneForWay(const CoordSysDefinition& system) {
    Proj::Object crs = system.CloneShifted();
    if (CountsFromGreenwich(crs.get()) || HasShift(system)) return crs;
    const int number = system.EpsgNumber();
    const CoordSysDefinition::Ptr known = number != 0 ? FindByEpsg(number) : nullptr;
    return known ? known->CloneShifted() : std::move(crs);
}

}  // namespace

SystemTransformation::SystemTransformation(const CoordSysDefinition& from, const CoordSysDefinition& to) {
    if (from.GetKind() == Kind::Other || to.GetKind() == Kind::Other) return;
    PJ_CONTEXT* context = Proj::ThreadContext();
    const Proj::Object source = SideOf(CloneForWay(from), from_projection_);
    const Proj::Object target = SideOf(CloneForWay(to), to_projection_);
    const Proj::Object way(
        proj_create_crs_to_crs_from_pj(context, source.get(), target.get(), nullptr, nullptr));
    if (way) operation_.reset(proj_normalize_for_visualization(context, way.get()));
}

std::shared_ptr<const SystemTransformation> SystemTransformation::Find(const CoordSysDefinition::Ptr& from,
                                                                       const CoordSysDefinition::Ptr& to) {
    // Archives of a country or two have some dozens of systems; to make a way asks the database a
    // hundred times.
    constexpr std::size_t kMaxEntries = 64;
    static auto* const cache = new LruCache<std::shared_ptr<const Cached>, std::string>(kMaxEntries);
    return cache
        ->Get(KeyOf(from.get(), to.get()),
              [&] {
                  return std::make_shared<const Cached>(
                      Cached{from, to, std::make_shared<const SystemTransformation>(*from, *to)});
              })
        ->made;
}

bool SystemTransformation::Apply(BPoint& point) const {
    if (!operation_ || !std::isfinite(point.x) || !std::isfinite(point.y)) return false;
    const std::lock_guard lock(mutex_);
    BPoint moved = point;
    if (from_projection_ && !from_projection_->ToGeodetic(moved)) return false;
    PJ* operation = operation_.get();
    proj_assign_context(operation, Proj::ThreadContext());
    proj_errno_reset(operation);
    const PJ_COORD to = proj_trans(operation, PJ_FWD, proj_coord(moved.x, moved.y, 0.0, HUGE_VAL));
    if (!std::isfinite(to.xy.x) || !std::isfinite(to.xy.y)) return false;
    moved.x = to.xy.x;
    moved.y = to.xy.y;
    if (to_projection_ && !to_projection_->FromGeodetic(moved)) return false;
    point = moved;
    return true;
}

double DistanceBetween(const CoordSysDefinition::Ptr& first, const CoordSysDefinition::Ptr& second) {
    if (first == second) return first->GetKind() == Kind::Other ? kInfinite : 0.0;
    if (first->GetKind() != second->GetKind() || first->GetKind() == Kind::Other) return kInfinite;
    const Proj::Object one = first->CloneHorizontal();
    const Proj::Object other = second->CloneHorizontal();
    if (HasSameDatum(one.get(), other.get()) && !HasShift(*first) && !HasShift(*second))
        return LargestDistance(one.get(), other.get());
    const CoordSysDefinition::Ptr hub = HubOf(*first, *second);
    return hub ? DistanceOnTheEarth(first, second, hub) : kInfinite;
}

bool IsIdentical(const CoordSysDefinition& first, const CoordSysDefinition& second) {
    if (&first == &second) return true;
    if (first.IsCompound() != second.IsCompound()) return false;
    const int number = first.EpsgNumber();
    if (number != 0 && number == second.EpsgNumber()) return true;
    return IsSameSystem(first.CloneUnshifted().get(), second.CloneUnshifted().get());
}

}  // namespace Tellurion

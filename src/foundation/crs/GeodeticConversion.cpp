#include "crs/GeodeticConversion.h"

#include "crs/AuthalicSphere.h"

#include <cmath>
#include <numbers>
#include <string>

namespace Tellurion {
namespace {

/// Degrees for one unit of a geographic system; 1 exactly for its degrees.
double DegreesPerUnit(PJ* geographic) {
    Proj::Axis axis;
    Proj::Object owner;
    if (!Proj::GetAxis(geographic, 0, axis, owner)) return 0.0;
    const double degrees = axis.unit_factor * 180.0 / std::numbers::pi;
    return std::abs(degrees - 1.0) < 1e-12 ? 1.0 : degrees;
}

/// From the base system, both with the axes that they have. A bare projection does not say
/// which of two axes that both go south or north comes first; that between systems does.
Proj::Object MakeProjection(PJ* crs) {
    PJ_CONTEXT* context = Proj::ThreadContext();
    if (Proj::HasAxesEastNorth(crs)) return Proj::Object(proj_crs_get_coordoperation(context, crs));
    const Proj::Object base(proj_get_source_crs(context, crs));
    return Proj::Object(base ? proj_create_crs_to_crs_from_pj(context, base.get(), crs, nullptr, nullptr)
                             : nullptr);
}

/// The projection with longitude and easting first. A text of its steps makes a
/// light object that asks nothing of the database.
Proj::Object MakeOperation(PJ* crs) {
    PJ_CONTEXT* context = Proj::ThreadContext();
    const Proj::Object projection = MakeProjection(crs);
    if (!projection) return nullptr;
    const Proj::Object ordered(proj_normalize_for_visualization(context, projection.get()));
    if (!ordered) return nullptr;
    const char* words = proj_as_proj_string(context, ordered.get(), PJ_PROJ_5, nullptr);
    if (!words) return nullptr;
    std::string steps = WithAuthalicSphere(words);
    if (steps != words && !IsOnAuthalicSphere(crs)) steps = words;
    return Proj::Object(proj_create(context, steps.c_str()));
}

}  // namespace

GeodeticConversion::GeodeticConversion(PJ* crs) {
    if (!proj_crs_is_derived(Proj::ThreadContext(), crs)) {
        degrees_per_unit_ = DegreesPerUnit(crs);
        return;
    }
    operation_ = MakeOperation(crs);
    const Proj::Object base(proj_get_source_crs(Proj::ThreadContext(), crs));
    if (operation_ && base) degrees_per_unit_ = DegreesPerUnit(base.get());
}

bool GeodeticConversion::Apply(PJ_DIRECTION direction, BPoint& point) const {
    if (!std::isfinite(point.x) || !std::isfinite(point.y)) return false;
    PJ* operation = operation_.get();
    proj_assign_context(operation, Proj::ThreadContext());
    proj_errno_reset(operation);
    const PJ_COORD result = proj_trans(operation, direction, proj_coord(point.x, point.y, 0.0, 0.0));
    if (proj_errno(operation) != 0 || !std::isfinite(result.xy.x) || !std::isfinite(result.xy.y))
        return false;
    point.x = result.xy.x;
    point.y = result.xy.y;
    return true;
}

bool GeodeticConversion::ToGeodetic(BPoint& point) const {
    if (degrees_per_unit_ == 0.0) return false;
    BPoint moved = point;
    if (operation_ && !Apply(PJ_INV, moved)) return false;
    moved.x *= degrees_per_unit_;
    moved.y *= degrees_per_unit_;
    if (!std::isfinite(moved.x) || !std::isfinite(moved.y)) return false;
    point = moved;
    return true;
}

bool GeodeticConversion::FromGeodetic(BPoint& point) const {
    if (degrees_per_unit_ == 0.0) return false;
    BPoint moved = point;
    moved.x /= degrees_per_unit_;
    moved.y /= degrees_per_unit_;
    if (operation_ && !Apply(PJ_FWD, moved)) return false;
    if (!std::isfinite(moved.x) || !std::isfinite(moved.y)) return false;
    point = moved;
    return true;
}

}  // namespace Tellurion

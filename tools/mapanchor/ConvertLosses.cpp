#include "Convert.h"
#include "Systems.h"

#include <Tellurion/Numbers.h>

#include <algorithm>

using namespace Tellurion;

namespace {

/// What a kind of target holds of a reference, and what it wants to know of the raster.
struct Capacity {
    const char* kind;
    bool coord_sys;
    bool points;
    bool disabled_points;
    bool vertical_unit;
    bool needs_system = false;  ///< without one a default is written
    bool names_image = false;
    bool states_size = false;
    bool needs_corners = false;  ///< a transform alone is told by the raster's corners
};

constexpr Capacity kCapacities[] = {
    {"WLD", true, false, false, false},
    {.kind = "RSF",
     .coord_sys = true,
     .points = true,
     .disabled_points = true,
     .vertical_unit = true,
     .needs_corners = true},
    {.kind = "TAB",
     .coord_sys = true,
     .points = true,
     .disabled_points = false,
     .vertical_unit = false,
     .needs_system = true,
     .names_image = true,
     .needs_corners = true},
    {.kind = "ERS",
     .coord_sys = true,
     .points = false,
     .disabled_points = false,
     .vertical_unit = false,
     .names_image = true,
     .states_size = true},
    {"TIF", true, true, true, true},
    {"PDF", true, true, false, false},
};

/// Null for a kind that nothing is known of.
const Capacity* CapacityOf(const std::string& kind) {
    const auto* const found = std::find_if(std::begin(kCapacities), std::end(kCapacities),
                                           [&](const Capacity& c) { return kind == c.kind; });
    return found == std::end(kCapacities) ? nullptr : found;
}

bool HasDisabledPoints(const BGeoReference& reference) {
    return std::any_of(reference.PointPairVector.begin(), reference.PointPairVector.end(),
                       [](const BPointPair& pair) { return !pair.Enabled; });
}

void WarnOfPointLosses(const Capacity& capacity, const BGeoReference& reference, Outcome& outcome) {
    if (reference.PointPairVector.empty()) return;
    if (!capacity.points)
        outcome.Warn("the control points are not saved: this kind of file has no place for them");
    else if (!capacity.disabled_points && HasDisabledPoints(reference))
        outcome.Warn(outcome.plan.IsPdf() ? "disabled control points are not saved"
                                          : "disabled control points are saved like the others: this kind of "
                                            "file has no mark for them");
}

/// RSF and GeoTIFF hold a whole system, the others its horizontal part.
void WarnOfVerticalPart(const Capacity& capacity, const BCoordSys& system, Outcome& outcome) {
    if (capacity.vertical_unit) return;
    if (system.GetVerticalUnits())
        outcome.Warn("the vertical part of " + NameOf(system) +
                     " is not saved: this kind of file has no place for it");
    if (const double epoch = system.GetCoordinateEpoch(); epoch != 0.0)
        outcome.Warn("the coordinate epoch " + PrintShortest(epoch) +
                     " is not saved: this kind of file has no place for it");
}

}  // namespace

void WarnOfLosses(const ConvertOptions& options, const BGeoReference& reference, Outcome& outcome) {
    const Capacity* capacity = CapacityOf(outcome.plan.kind);
    if (!capacity) return;
    const bool keeps_system = capacity->coord_sys && (outcome.plan.kind != "WLD" || outcome.plan.writes_prj);
    if (reference.HasCoordSys() && !keeps_system)
        outcome.Warn(
            options.to
                ? "the coordinate system is not saved: a world file saved by type has no prj file beside it"
                : "the coordinate system is not saved: this kind of file has no place for it");
    if (reference.HasCoordSys() && keeps_system) WarnOfVerticalPart(*capacity, *reference.CoordSys, outcome);
    if (!reference.HasCoordSys() && capacity->needs_system)
        outcome.Warn("there is no coordinate system: longitude and latitude without a datum are written");
    WarnOfPointLosses(*capacity, reference, outcome);
    if (reference.HasVerticalUnit() && !capacity->vertical_unit)
        outcome.Warn("the vertical unit is not saved: this kind of file has no place for it");
    if (reference.HasVerticalUnit() && outcome.plan.kind == "TIF" && !options.to)
        outcome.Warn("the vertical unit is not saved: a GeoTIFF takes it by type alone, see --to tif");
    if (capacity->names_image && options.image.empty())
        outcome.Warn("the file names no raster: --image NAME gives it one");
    if (capacity->states_size && !options.read.width)
        outcome.Warn("the file says 0 by 0 pixels: --size WxH gives the raster's size");
}

bool HasWhatItNeeds(const ConvertOptions& options, const BGeoReference& reference, Outcome& outcome) {
    const Capacity* capacity = CapacityOf(outcome.plan.kind);
    const bool has_size = options.read.width && *options.read.width > 1 && *options.read.height > 1;
    if (!capacity || !capacity->needs_corners || has_size || !reference.PointPairVector.empty() ||
        !reference.HasMathTransform())
        return true;
    outcome.Fail(ExitStatus::Error, "BGeoReferenceWriteException",
                 "The reference has no control points, and the corners that stand for them need the raster's "
                 "size, two pixels at least each way: --size WxH.");
    return false;
}

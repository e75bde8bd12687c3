#include "commands/Convert.h"
#include "read/Systems.h"

#include <Tellurion/Numbers.h>

#include <algorithm>

namespace Tool {

using namespace Tellurion;
using MapAnchor::BReferenceFormat;

namespace {

bool HasDisabledPoints(const BGeoReference& reference) {
    return std::any_of(reference.PointPairVector.begin(), reference.PointPairVector.end(),
                       [](const BPointPair& pair) { return !pair.Enabled; });
}

void WarnOfPointLosses(const BReferenceFormat& format, const BGeoReference& reference, Outcome& outcome) {
    if (reference.PointPairVector.empty()) return;
    if (!format.HoldsPoints())
        outcome.Warn("the control points are not saved: this kind of file has no place for them");
    else if (!format.HoldsDisabledPoints() && HasDisabledPoints(reference))
        outcome.Warn(outcome.plan.IsPdf() ? "disabled control points are not saved"
                                          : "disabled control points are saved like the others: this kind of "
                                            "file has no mark for them");
}

/// RSF and GeoTIFF hold a whole system, the others its horizontal part.
void WarnOfVerticalPart(const BReferenceFormat& format, const BCoordSys& system, Outcome& outcome) {
    if (format.HoldsVerticalUnit(true)) return;
    if (system.GetVerticalUnits())
        outcome.Warn("the vertical part of " + NameOf(system) +
                     " is not saved: this kind of file has no place for it");
    if (const double epoch = system.GetCoordinateEpoch(); epoch != 0.0)
        outcome.Warn("the coordinate epoch " + PrintShortest(epoch) +
                     " is not saved: this kind of file has no place for it");
}

}  // namespace

void WarnOfLosses(const ConvertOptions& options, const BGeoReference& reference, Outcome& outcome) {
    const std::optional<BReferenceFormat>& format = outcome.plan.format;
    if (!format) return;
    const bool by_type = options.to || outcome.plan.IsPdf();
    const bool keeps_system = format->HoldsCoordSys(by_type);
    if (reference.HasCoordSys() && !keeps_system)
        outcome.Warn(
            options.to
                ? "the coordinate system is not saved: a world file saved by type has no prj file beside it"
                : "the coordinate system is not saved: this kind of file has no place for it");
    if (reference.HasCoordSys() && keeps_system) WarnOfVerticalPart(*format, *reference.CoordSys, outcome);
    if (!reference.HasCoordSys() && format->NeedsCoordSys())
        outcome.Warn("there is no coordinate system: longitude and latitude without a datum are written");
    WarnOfPointLosses(*format, reference, outcome);
    if (reference.HasVerticalUnit() && !format->HoldsVerticalUnit(by_type))
        outcome.Warn(format->HoldsVerticalUnit(true)
                         ? "the vertical unit is not saved: a GeoTIFF takes it by type alone, see --to tif"
                         : "the vertical unit is not saved: this kind of file has no place for it");
    if (format->NamesRaster() && options.image.empty())
        outcome.Warn("the file names no raster: --image NAME gives it one");
    if (format->StatesRasterSize() && !options.read.width)
        outcome.Warn("the file says 0 by 0 pixels: --size WxH gives the raster's size");
}

bool HasWhatItNeeds(const ConvertOptions& options, const BGeoReference& reference, Outcome& outcome) {
    const std::optional<BReferenceFormat>& format = outcome.plan.format;
    const bool has_size = options.read.width && *options.read.width > 1 && *options.read.height > 1;
    if (!format || !format->NeedsRasterSize() || has_size || !reference.PointPairVector.empty() ||
        !reference.HasMathTransform())
        return true;
    outcome.Fail(ExitStatus::Error, "BGeoReferenceWriteException",
                 "The reference has no control points, and the corners that stand for them need the raster's "
                 "size, two pixels at least each way: --size WxH.");
    return false;
}

}  // namespace Tool

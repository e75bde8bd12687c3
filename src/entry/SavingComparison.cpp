#include "SavingComparison.h"

#include "common/points/SourceDistance.h"
#include "common/policy/DiagnosticIds.h"

#include <Tellurion/BException.h>
#include <Tellurion/BLinearUnit.h>
#include <Tellurion/Numbers.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

namespace MapAnchor {

using namespace Tellurion;

namespace {

constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();
/// Systems that put positions so near are the same.
constexpr double kSamePlaceMetres = 0.001;
/// The digits of the shortest distance that counts, in pixels and in metres.
constexpr int kDecimals = 3;

std::string NameOf(const BCoordSys& system) {
    const std::string name = system.GetName().StdStr();
    const std::string code = system.ToEPSGCode().StdStr();
    if (code.empty()) return name.empty() ? "without a name" : name;
    return name.empty() ? code : name + " (" + code + ")";
}

/// The system without its vertical part; null where it has none.
std::unique_ptr<BCoordSys> HorizontalPart(const BCoordSys& system) {
    const std::unique_ptr<BCoordSys> vertical(system.GetVerticalCoordSys());
    return std::unique_ptr<BCoordSys>(vertical ? system.GetBaseCoordSys() : nullptr);
}

/// How far the two put a position apart, horizontally.
double SystemDistance(const BCoordSys& meant, const BCoordSys& found) {
    if (meant.ToWKT() == found.ToWKT()) return 0.0;
    const BString code = meant.ToEPSGCode();
    if (!code.IsEmpty() && code == found.ToEPSGCode() && meant.IsSame(found)) return 0.0;
    const double metres = found.DistanceTo(meant);
    return std::isfinite(metres) ? metres : kUnknown;
}

/// Two codes of one place are still two systems.
bool HasOtherCode(const BCoordSys& meant, const BCoordSys& found) {
    const BString code = meant.ToEPSGCode();
    const BString other = found.ToEPSGCode();
    return !code.IsEmpty() && !other.IsEmpty() && code != other && !meant.IsSame(found);
}

bool IsSameWhole(const BCoordSys& meant, const BCoordSys& found) {
    if (meant.IsSame(found)) return true;
    const std::unique_ptr<BCoordSys> vertical(meant.GetVerticalCoordSys());
    const std::unique_ptr<BCoordSys> other(found.GetVerticalCoordSys());
    return vertical && other ? vertical->IsSame(*other) : !vertical && !other;
}

void CompareSystems(const BGeoReference& meant, const BGeoReference& found, const PartsHeld& held,
                    SavedComparison& out) {
    if (!held.system || (!meant.HasCoordSys() && !found.HasCoordSys())) {
        out.is_same_system = true;
        return;
    }
    if (!meant.HasCoordSys()) {
        out.differences.push_back(
            {DiagnosticId::kSavedSystemKept,
             "the reference has no coordinate system, and " + NameOf(*found.CoordSys) + " is read back"});
        return;
    }
    if (!found.HasCoordSys()) {
        out.differences.push_back(
            {DiagnosticId::kSavedSystemLost,
             "the coordinate system is not saved: it has no name in this kind of file, or is not read back"});
        return;
    }
    const BCoordSys& system = *meant.CoordSys;
    const std::unique_ptr<BCoordSys> part = HorizontalPart(system);
    const BCoordSys& horizontal = part ? *part : system;
    const std::unique_ptr<BCoordSys> found_part = HorizontalPart(*found.CoordSys);
    const BCoordSys& other = found_part ? *found_part : *found.CoordSys;
    out.system_metres = SystemDistance(horizontal, other);
    out.is_same_system = out.system_metres <= kSamePlaceMetres && !HasOtherCode(horizontal, other);
    if (!out.is_same_system)
        out.differences.push_back(
            {DiagnosticId::kSavedSystemDiffers,
             "this kind of file has no name for " + NameOf(system) + ": it is read back as " +
                 NameOf(*found.CoordSys) +
                 (std::isfinite(out.system_metres)
                      ? ", up to " + PrintFixed(out.system_metres, kDecimals) + " m away"
                      : std::string())});
    else if (held.whole_system && !IsSameWhole(system, *found.CoordSys))
        out.differences.push_back(
            {DiagnosticId::kSavedSystemDiffers,
             "the heights of " + NameOf(system) + " are read back as those of " + NameOf(*found.CoordSys)});
}

std::vector<BPoint> PlacesOf(const BGeoReference& meant, const BSavingOptions& options) {
    constexpr double kAssumed = 1000.0;
    auto width = static_cast<double>(options.GetWidth());
    auto height = static_cast<double>(options.GetHeight());
    if (width <= 0 || height <= 0) {
        width = height = 0.0;
        for (const BPointPair& pair : meant.PointPairVector) {
            width = std::max(width, static_cast<double>(pair.Column));
            height = std::max(height, static_cast<double>(pair.Row));
        }
        if (width <= 0 || height <= 0) width = height = kAssumed;
    }
    return {BPoint(0, 0, 0), BPoint(width, 0, 0), BPoint(width, height, 0), BPoint(0, height, 0),
            BPoint(width / 2, height / 2, 0)};
}

/// The fit that was meant, through the points that were found: kinds that hold points hold no
/// fit. The reference itself where there is nothing to fit.
BGeoReference AsMeant(const BGeoReference& meant, const FoundReference& found) {
    BGeoReference fitted = found.reference;
    if (meant.PointPairVector.empty() || found.points.empty() || !meant.HasMathTransform()) return fitted;
    const EMathTransformType type = meant.MathTransform->GetMathTransformType();
    if (fitted.HasMathTransform() && fitted.MathTransform->GetMathTransformType() == type) return fitted;
    try {
        fitted.SetMathTransform(BMathTransform::Fit(type, found.points, 0, 0));
    } catch (const BException&) {
        // The points that were found have no such fit; the comparison of the points reports why.
    }
    return fitted;
}

void CompareTransforms(const BGeoReference& meant, const FoundReference& found, const BSavingOptions& options,
                       SavedComparison& out) {
    if (!meant.HasMathTransform()) return;
    const BGeoReference other = AsMeant(meant, found);
    if (!other.HasMathTransform()) {
        out.differences.push_back({DiagnosticId::kSavedTransformLost,
                                   "what is read back has no transform from pixels to positions"});
        return;
    }
    const SourceDistance distance =
        DistanceAt({meant}, {other, found.centre_anchored}, PlacesOf(meant, options));
    if (!std::isfinite(distance.pixels)) {
        out.differences.push_back({DiagnosticId::kSavedTransformLost,
                                   "what is read back cannot be compared: a corner has no position in it"});
        return;
    }
    out.pixels = distance.pixels;
    out.metres = distance.metres;
    out.is_turned = distance.is_turned;
}

std::vector<const BPointPair*> PointsWritten(const BGeoReference& meant, const PartsHeld& held) {
    std::vector<const BPointPair*> written;
    for (const BPointPair& pair : meant.PointPairVector)
        if (pair.Enabled || held.disabled_points) written.push_back(&pair);
    return written;
}

BPoint InSystemOf(const BGeoReference& from, const BGeoReference& to, const BPoint& point) {
    if (!from.HasCoordSys() || !to.HasCoordSys() || from.CoordSys->IsSame(*to.CoordSys)) return point;
    return from.CoordSys->ConvertTo(*to.CoordSys, point);
}

/// The length of a step of one pixel around there, in the units of the system; 0 where it is
/// not known.
double PixelSize(const BGeoReference& reference, const BPointPair& at) {
    BMathTransform::Slopes slopes{};
    if (!reference.HasMathTransform() || !reference.MathTransform->GetSlopes(at.Column, at.Row, slopes))
        return 0.0;
    return std::sqrt(std::fabs(slopes.XByColumn * slopes.YByRow - slopes.XByRow * slopes.YByColumn));
}

void ComparePoint(const BGeoReference& meant, const BGeoReference& found, const BPointPair& pair,
                  const BControlPoint& point, SavedComparison& out) {
    double pixels = std::hypot(point.Column - pair.Column, point.Row - pair.Row);
    BPoint world = InSystemOf(found, meant, point.World);
    if (meant.HasCoordSys()) {
        const double x = InTheTurnOf(*meant.CoordSys, pair.World.x, world.x);
        out.is_turned = out.is_turned || x != world.x;
        world.x = x;
    }
    const double size = PixelSize(meant, pair);
    if (size > 0.0) pixels += std::hypot(world.x - pair.World.x, world.y - pair.World.y) / size;
    out.pixels = std::fmax(out.pixels, pixels);
    if (meant.HasCoordSys())
        out.metres = std::fmax(out.metres, MetresBetween(*meant.CoordSys, pair.World, world));
}

void ComparePoints(const BGeoReference& meant, const FoundReference& found, const PartsHeld& held,
                   SavedComparison& out) {
    const std::vector<const BPointPair*> written = PointsWritten(meant, held);
    if (!held.points || written.empty()) return;
    if (written.size() != found.points.size()) {
        out.differences.push_back(
            {DiagnosticId::kSavedPointsDiffer, std::to_string(found.points.size()) +
                                                   " control points are read back in place of " +
                                                   std::to_string(written.size())});
        return;
    }
    try {
        for (std::size_t i = 0; i < written.size(); ++i)
            ComparePoint(meant, found.reference, *written[i], found.points[i], out);
    } catch (const BException& error) {
        out.differences.push_back({DiagnosticId::kSavedPointsDiffer,
                                   std::string("a control point cannot be compared: ") + error.what()});
    }
}

void CompareVerticalUnits(const BGeoReference& meant, const BGeoReference& found, const PartsHeld& held,
                          SavedComparison& out) {
    constexpr double kSameUnit = 1e-9;
    if (!held.vertical_unit || !meant.HasVerticalUnit()) return;
    const double wanted = meant.GetVerticalUnit()->GetUnitsPerMeter();
    if (found.HasVerticalUnit() &&
        std::fabs(found.GetVerticalUnit()->GetUnitsPerMeter() - wanted) <= kSameUnit * wanted)
        return;
    out.differences.push_back(
        {DiagnosticId::kSavedVerticalUnit,
         "the vertical unit " + meant.GetVerticalUnit()->GetName().StdStr() +
             (found.HasVerticalUnit() ? " is read back as " + found.GetVerticalUnit()->GetName().StdStr()
                                      : std::string(" is not read back"))});
}

}  // namespace

SavedComparison CompareSaved(const BGeoReference& meant, const FoundReference& found, const PartsHeld& held,
                             const BSavingOptions& options) {
    SavedComparison out{kUnknown, kUnknown, false, kUnknown};
    CompareSystems(meant, found.reference, held, out);
    CompareTransforms(meant, found, options, out);
    ComparePoints(meant, found, held, out);
    CompareVerticalUnits(meant, found.reference, held, out);
    return out;
}

}  // namespace MapAnchor

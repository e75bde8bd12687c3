#include "wide/ExactFit.h"

#include "import/GeoPDFSteps.h"

#include <Tellurion/BMathTransform.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace MapAnchor {

using Tellurion::BGeoReference;
using Tellurion::BMathTransform;
using Tellurion::BPointPair;
using Tellurion::BString;
using Tellurion::EMathTransformType;

namespace {

constexpr double kFarthest = 0x7FFFFFFF;

/// The points with their places in parts of a pixel of that many to one.
std::vector<BPointPair> PairsOf(const std::vector<WidePoint>& points, double parts) {
    std::vector<BPointPair> pairs;
    pairs.reserve(points.size());
    for (const WidePoint& point : points)
        pairs.emplace_back(static_cast<long>(std::floor(point.column * parts + 0.5)),
                           static_cast<long>(std::floor(point.row * parts + 0.5)), point.world.x,
                           point.world.y, 0.0, BString(), true);
    return pairs;
}

/// The finest parts, at most a millionth of a pixel, in which all places can be counted.
double PartsFor(const std::vector<WidePoint>& points) {
    constexpr double kFinest = 1 << 20;
    double reach = 1.0;
    for (const WidePoint& point : points)
        reach = std::max({reach, std::fabs(point.column), std::fabs(point.row)});
    const double room = std::floor(std::log2(kFarthest / 2 / reach));
    return std::min(kFinest, std::exp2(std::max(0.0, room)));
}

bool AreWhole(const std::vector<WidePoint>& points) {
    constexpr double kNear = 1e-6;
    return std::ranges::all_of(points, [](const WidePoint& point) {
        return std::fabs(point.column - std::round(point.column)) < kNear &&
               std::fabs(point.row - std::round(point.row)) < kNear;
    });
}

/// A linear fit through the places in parts, brought back to pixels. Null where it has none.
std::unique_ptr<BMathTransform> LinearFit(const std::vector<WidePoint>& points, EMathTransformType type,
                                          RasterExtent extent) {
    constexpr bool kOptimizeFor2D = true;
    const double parts = PartsFor(points);
    const BMathTransform fine(type, PairsOf(points, parts), static_cast<unsigned int>(extent.width),
                              static_cast<unsigned int>(extent.height), kOptimizeFor2D);
    AffineTerms t;
    fine.GetAffineParameters(t.a, t.b, t.c, t.d, t.e, t.f);
    return std::unique_ptr<BMathTransform>(BMathTransform::CreateAffine(
        t.a * parts, t.b * parts, t.c, t.d * parts, t.e * parts, t.f, kOptimizeFor2D));
}

}  // namespace

bool IsCountable(const WidePoint& point) {
    return std::fabs(point.column) < kFarthest && std::fabs(point.row) < kFarthest &&
           std::isfinite(point.world.x) && std::isfinite(point.world.y);
}

void StoreExactPoints(BGeoReference& reference, const std::vector<WidePoint>& points, EMathTransformType type,
                      RasterExtent extent, OnFailure on_failure, VellumLib::WideRemarks& remarks) {
    const bool linear = type == EMathTransformType::Affine || type == EMathTransformType::Conformal;
    const bool whole = AreWhole(points);
    std::vector<BPointPair> pairs = PairsOf(points, 1.0);
    if (linear && !whole) {
        try {
            if (const auto fit = LinearFit(points, type, extent))
                return reference.SetPointPairVectorAndMathTransform(std::move(pairs), *fit);
        } catch (const Tellurion::BException&) {  // said again by the fit through the rounded places
        }
    } else if (!whole) {
        remarks.Doubt("pdf-points-rounded",
                      "The fit goes through control points that are rounded to whole pixels.");
    }
    StoreControlPoints(reference, std::move(pairs), type, extent, on_failure, kGeoPDFTexts);
}

}  // namespace MapAnchor

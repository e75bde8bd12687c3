#include "crs/ConformalMath.h"

#include <cmath>
#include <limits>
#include <numbers>

namespace Tellurion {
namespace {

constexpr double kDegree = std::numbers::pi / 180.0;
constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

/// The radius of a parallel and the isometric colatitude of a latitude in radians.
double Radius(double latitude, double e) {
    const double sine = e * std::sin(latitude);
    return std::cos(latitude) / std::sqrt(1.0 - sine * sine);
}
double Isometric(double latitude, double e) {
    const double sine = e * std::sin(latitude);
    return std::tan(std::numbers::pi / 4.0 - latitude / 2.0) / std::pow((1.0 - sine) / (1.0 + sine), e / 2.0);
}

/// The logarithm of the scale of 1 on that parallel, but for a constant of the cone.
double LogScale(double latitude, double cone, double e) {
    return std::log(Radius(latitude, e)) - cone * std::log(Isometric(latitude, e));
}

/// Where `function`, which grows from `low` to `high`, is `value`.
template <class Function>
double Solve(double low, double high, double value, Function function) {
    constexpr int kSteps = 200;
    for (int i = 0; i < kSteps; ++i) {
        const double middle = low + (high - low) / 2.0;
        (function(middle) < value ? low : high) = middle;
    }
    return low + (high - low) / 2.0;
}

constexpr double kNearPole = 89.999 * kDegree;

}  // namespace

double ParallelRadius(double parallel, double eccentricity) {
    return Radius(parallel * kDegree, eccentricity);
}

ConformalConic ConicOfTwo(double parallel1, double parallel2, double eccentricity) {
    const double first = parallel1 * kDegree;
    const double second = parallel2 * kDegree;
    if (parallel1 == parallel2) return {parallel1, 1.0};
    const double cone =
        (std::log(Radius(first, eccentricity)) - std::log(Radius(second, eccentricity))) /
        (std::log(Isometric(first, eccentricity)) - std::log(Isometric(second, eccentricity)));
    const double latitude = std::asin(cone);
    return {latitude / kDegree,
            std::exp(LogScale(first, cone, eccentricity) - LogScale(latitude, cone, eccentricity))};
}

std::array<double, 2> ParallelsOf(const ConformalConic& conic, double eccentricity) {
    constexpr double kTouches = 1e-13;
    if (std::abs(conic.scale - 1.0) < kTouches) return {conic.latitude, conic.latitude};
    if (!(conic.scale > 0.5 && conic.scale < 1.0) || conic.latitude == 0.0) return {kNone, kNone};
    const double middle = conic.latitude * kDegree;
    const double cone = std::sin(middle);
    // The scale grows with the distance from the middle on both sides.
    const double wanted = LogScale(middle, cone, eccentricity) + std::log(conic.scale);
    const auto log_scale = [&](double latitude) { return LogScale(latitude, cone, eccentricity); };
    const double south = Solve(-kNearPole, middle, wanted, log_scale);
    const double north =
        Solve(middle, kNearPole, -wanted, [&](double latitude) { return -log_scale(latitude); });
    return {south / kDegree, north / kDegree};
}

double PolarScale(double parallel, double eccentricity) {
    if (parallel >= 90.0) return 1.0;
    const double e = eccentricity;
    const double latitude = parallel * kDegree;
    return Radius(latitude, e) * std::sqrt(std::pow(1.0 + e, 1.0 + e) * std::pow(1.0 - e, 1.0 - e)) /
           (2.0 * Isometric(latitude, e));
}

double PolarParallel(double scale, double eccentricity) {
    if (!(scale > 0.5 && scale < 1.0)) return scale == 1.0 ? 90.0 : kNone;
    return Solve(0.0, 90.0, scale, [&](double parallel) { return PolarScale(parallel, eccentricity); });
}

double MercatorParallel(double scale, double eccentricity) {
    if (!(scale > 0.0 && scale <= 1.0)) return kNone;
    return Solve(0.0, 90.0, -scale, [&](double parallel) { return -ParallelRadius(parallel, eccentricity); });
}

}  // namespace Tellurion

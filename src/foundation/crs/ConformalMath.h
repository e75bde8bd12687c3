#pragma once

#include <array>

/// Where conformal projections are true to scale. Latitudes are in degrees; NaN where
/// there is no such parallel.
namespace Tellurion {

/// A Lambert conic by the parallel that it touches, or cuts on both sides.
struct ConformalConic {
    double latitude = 0.0;
    double scale = 1.0;  ///< at that parallel
};

ConformalConic ConicOfTwo(double parallel1, double parallel2, double eccentricity);
/// The two parallels of scale 1, the southern one first.
std::array<double, 2> ParallelsOf(const ConformalConic& conic, double eccentricity);

/// The scale of a polar stereographic projection at the pole, by its true parallel.
double PolarScale(double parallel, double eccentricity);
double PolarParallel(double scale, double eccentricity);

/// The parallel on which a Mercator projection of that scale at the equator is true.
double MercatorParallel(double scale, double eccentricity);

/// The radius of a parallel in semi-major axes.
double ParallelRadius(double parallel, double eccentricity);

}  // namespace Tellurion

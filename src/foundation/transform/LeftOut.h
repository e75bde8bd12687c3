#pragma once

#include "ControlPoints.h"
#include "Fits.h"

#include <Tellurion/BMathTransform.h>

#include <Eigen/Core>

namespace Tellurion {

/// Per point, where the fit through all others puts its pixel minus its position in the
/// world; NaN for a point without which the others cannot carry the fit.
///
/// Where a fit is linear in its terms, the others' fit misses a point by e / (1 - h): e is
/// the residual of the whole fit and h the point's leverage, its own weight in the value that
/// the fit has there. A spline passes through each point, so that e is 0 and h is 1; there it
/// is the point's weight over its diagonal term in the inverse of the system. A projective fit
/// has no such form: it is made again without each point, from the whole fit as the start.
///
/// Empty for more points than kMaxSplinePoints or kMaxProjectivePoints.
Positions LeftOutResiduals(const BMathTransform& fit, const ControlPoints& points, const FitRule& rule);

/// A spline's take time that grows with the third power of the points.
constexpr Eigen::Index kMaxSplinePoints = 2000;
/// With the second power.
constexpr Eigen::Index kMaxProjectivePoints = 2000;

/// The slopes of each point's position in the world by the terms of the fit, two rows per
/// point. Not for splines.
Eigen::MatrixXd TermSlopes(const BMathTransform& fit, const ControlPoints& points, const FitRule& rule);

/// The number of terms of a fit, both axes together; 0 for a spline, which has as many as
/// there are positions.
int TermCount(EMathTransformType type);

}  // namespace Tellurion

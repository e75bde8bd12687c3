#pragma once

#include "ControlPoints.h"

#include <Eigen/Core>

#include <vector>

namespace Tellurion {

/// Which points stand out from the others. The test is the generalized extreme Studentized
/// deviate: the point whose removal lessens the sum of squares most is removed, again and
/// again, and the largest number of points that are removed before a step that chance alone
/// does not explain are the suspects. So several gross errors do not hide one another. A set
/// without any gets a suspect with a chance of kFalseAlarm, if its errors are normal.
///
/// `slopes` has two rows per point, in pixels: how the fit moves it with each term.
/// `residuals` are in pixels.
std::vector<bool> FindSuspects(const Eigen::MatrixXd& slopes, const Positions& residuals);

/// The same for a spline, which has no residuals: against a spline that smooths, with the
/// share of noise that is most likely. `from` are positions in unit space, `to` those of the
/// world in pixels.
std::vector<bool> FindSplineSuspects(const Positions& from, const Positions& to);

constexpr double kFalseAlarm = 0.01;

}  // namespace Tellurion

#pragma once

#include "FitSpace.h"
#include "Fits.h"

#include <Eigen/Core>

namespace Tellurion {

/// (x, y, 1) of the source to (x' w, y' w, w) of the target, both in unit space. The
/// depth w is positive before the horizon.
using Homography = Eigen::Matrix3d;

/// The homography of a projective fit. Throws a BException when the points cannot carry it.
Homography FitHomography(const ControlPoints& points, const FitSpace& space, const FitRule& rule);

Positions ApplyHomography(const Homography& homography, const Positions& from);

/// The slopes of all x', then of all y', by the nine terms, row after row.
Eigen::MatrixXd HomographySlopes(const Homography& homography, const Positions& from);

}  // namespace Tellurion

#pragma once

#include "ControlPoints.h"

#include <Tellurion/BControlPoint.h>
#include <Tellurion/BMathTransform.h>

#include <vector>

namespace Tellurion {

/// The suspects among the enabled points of a fit that is linear in its terms or projective, one
/// value per enabled point.
///
/// A rich fit through few points bends towards a gross error and hides it. Where a simpler fit
/// explains the points as well, but for its own suspects, its suspects are the answer: it is as
/// good where the terms that the richer one has more do not lessen the sum of squares by more than
/// chance does (an F test).
std::vector<bool> SuspectsOf(const BMathTransform& fit, const std::vector<BControlPoint>& points,
                             unsigned int width, unsigned int height);

}  // namespace Tellurion

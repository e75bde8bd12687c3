#pragma once

namespace Tellurion {

/// The kind of fit that a BMathTransform makes through control points, with the
/// least number of points that can carry it.
enum class EMathTransformType : int {
    Affine = 0,           ///< 6 terms, 3 points; least squares beyond
    Conformal = 1,        ///< 4 terms (shift, scale, rotation), 2 points
    Polynomial2 = 2,      ///< second order, 6 points
    Polynomial3 = 3,      ///< third order, 10 points
    Projective = 4,       ///< 8 terms, 4 points
    ThinPlateSpline = 5,  ///< exact at each point, 3 points
    Bilinear = 6,         ///< 4 terms an axis, 4 points
    None = 7,             ///< no transform
};

}  // namespace Tellurion

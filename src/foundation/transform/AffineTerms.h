#pragma once

namespace Tellurion {

/// The terms of an affine, in the order in which CreateAffine takes them:
/// x' = a * x + b * y + c, y' = d * x + e * y + f.
struct AffineTerms {
    double a = 0.0;
    double b = 0.0;
    double c = 0.0;
    double d = 0.0;
    double e = 0.0;
    double f = 0.0;
};

}  // namespace Tellurion

#pragma once

namespace MapAnchor {

/// The terms of an affine, in the order in which CreateAffine takes them:
/// x' = a * column + b * row + c, y' = d * column + e * row + f.
struct AffineTerms {
    double a = 0.0;
    double b = 0.0;
    double c = 0.0;
    double d = 0.0;
    double e = 0.0;
    double f = 0.0;
};

}  // namespace MapAnchor

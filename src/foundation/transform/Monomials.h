#pragma once

#include "ControlPoints.h"
#include "LeastSquares.h"

#include <array>
#include <cstddef>
#include <vector>

namespace Tellurion {

/// x^x_power * y^y_power
struct Monomial {
    std::size_t x_power, y_power;
};

/// The terms per axis of the fits that are linear in them: affine, bilinear, polynomials.
std::vector<Monomial> MonomialsOf(EMathTransformType type);

/// The powers 0 to 3 of a coordinate, and their slopes.
struct Powers {
    explicit Powers(double v) : value{1, v, v * v, v * v * v}, slope{0, 1, 2 * v, 3 * v * v} {}
    std::array<double, 4> value, slope;
};

/// One row per position, from `first` on, and one column per monomial.
void FillDesign(const Positions& from, Eigen::Index first, const std::vector<Monomial>& monomials,
                LeastSquares::Block design);

}  // namespace Tellurion

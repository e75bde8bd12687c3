#include "AffineModel.h"
#include "FitSpace.h"
#include "Fits.h"
#include "LeastSquares.h"

#include <cmath>
#include <limits>

namespace Tellurion {
namespace {

/// A part of the largest square that a determinant in unit space must exceed.
constexpr double kSingular = 1e-10;

/// An affine transform in unit space: to = matrix * from + shift.
struct UnitAffine {
    Eigen::Matrix2d matrix;
    Eigen::Vector2d shift;
};

/// Terms that move no point by as much as the last digit of its coordinates are what
/// rounding left; without them a raster parallel to the axes stays so.
void DropRounding(UnitAffine& fit, const ControlPoints& points, const FitSpace& space) {
    for (Eigen::Index axis = 0; axis < 2; ++axis) {
        const double digit =
            points.world.col(axis).cwiseAbs().maxCoeff() * std::numeric_limits<double>::epsilon();
        const double bound = digit / space.target.scale[axis];
        for (double& term : fit.matrix.row(axis))
            if (std::abs(term) <= bound) term = 0.0;
    }
}

AffineTerms FromUnit(const UnitAffine& fit, const FitSpace& space) {
    const Eigen::Vector2d& source = space.source.scale;
    const Eigen::Vector2d& target = space.target.scale;
    const Eigen::Vector2d& centre = space.source.centre;
    const auto term = [&](Eigen::Index i, Eigen::Index j) {
        return fit.matrix(i, j) * target[i] / source[j];
    };
    const auto shift = [&](Eigen::Index i) {
        using Long = long double;
        return static_cast<double>(Long{space.target.centre[i]} + Long{fit.shift[i]} * Long{target[i]} -
                                   Long{term(i, 0)} * Long{centre[0]} - Long{term(i, 1)} * Long{centre[1]});
    };
    return {term(0, 0), term(0, 1), shift(0), term(1, 0), term(1, 1), shift(1)};
}

ModelPointer MakeModel(UnitAffine fit, const ControlPoints& points, const FitSpace& space,
                       const FitRule& rule, EMathTransformType type) {
    if (std::abs(fit.matrix.determinant()) <= kSingular * fit.matrix.squaredNorm())
        RefuseFit("The %s fit through the %td enabled points cannot be inverted", rule.name, points.Count());
    DropRounding(fit, points, space);
    auto model = AffineModel::Make(FromUnit(fit, space), type);
    if (!model)
        RefuseFit("The terms of the %s fit through the %td enabled points are out of range", rule.name,
                  points.Count());
    return model;
}

/// A conformal fit of one handedness: x' = a x + b y + c, y' = sign * (b x - a y) + f,
/// mirrored for sign 1, a rotation for -1.
struct ConformalFit {
    ConformalFit(const FitSpace& space, double sign) {
        const Eigen::Index count = space.from.rows();
        Eigen::MatrixXd design = Eigen::MatrixXd::Zero(2 * count, 4);
        design.col(0) << space.from.col(0), -sign * space.from.col(1);
        design.col(1) << space.from.col(1), sign * space.from.col(0);
        design.col(2).head(count).setOnes();
        design.col(3).tail(count).setOnes();
        const Eigen::VectorXd observed = space.to.reshaped();
        const Eigen::Vector4d terms = LeastSquares(design).Solve(observed);
        unit.matrix << terms[0], terms[1], sign * terms[1], -sign * terms[0];
        unit.shift = terms.tail<2>();
        residual = (observed - design * terms).norm();
    }

    UnitAffine unit;
    double residual;
};

/// True when the rotation fits better by more than rounding.
bool IsRotation(const ConformalFit& mirrored, const ConformalFit& rotated, const ControlPoints& points,
                const FitSpace& space) {
    const double reach = points.world.cwiseAbs().maxCoeff() / space.target.scale[0];
    const double rounding = 8 * std::numeric_limits<double>::epsilon() * (1 + reach) *
                            std::sqrt(static_cast<double>(points.Count()));
    return rotated.residual + rounding < mirrored.residual * (1 - 1e-9);
}

}  // namespace

ModelPointer FitAffine(const ControlPoints& points, const FitRule& rule) {
    RequireArea(points, rule);
    const FitSpace space(points, Scaling::PerAxis, Scaling::PerAxis);
    Eigen::MatrixXd design(points.Count(), 3);
    design << space.from, Eigen::VectorXd::Ones(points.Count());
    const Eigen::Matrix<double, 3, 2> terms = LeastSquares(design).Solve(space.to);
    return MakeModel({terms.topRows<2>().transpose(), terms.row(2).transpose()}, points, space, rule,
                     EMathTransformType::Affine);
}

ModelPointer FitConformal(const ControlPoints& points, const FitRule& rule) {
    RequireExtent(points, rule);
    const FitSpace space(points, Scaling::Common, Scaling::Common);
    const ConformalFit mirrored(space, 1.0);
    const ConformalFit rotated(space, -1.0);
    return MakeModel(IsRotation(mirrored, rotated, points, space) ? rotated.unit : mirrored.unit, points,
                     space, rule, EMathTransformType::Conformal);
}

}  // namespace Tellurion

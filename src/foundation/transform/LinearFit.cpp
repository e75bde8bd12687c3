#include "AffineModel.h"
#include "FitSpace.h"
#include "Fits.h"
#include "LeastSquares.h"

#include <cmath>
#include <limits>

namespace Tellurion {
namespace {

/// In unit space, what the squares of the terms must exceed, and of these the determinant.
constexpr double kSingular = 1e-10;

/// An affine transform in unit space: to = matrix * from + shift.
struct UnitAffine {
    Eigen::Matrix2d matrix;
    Eigen::Vector2d shift;
};

/// In unit space, the last digit of the largest coordinate of each axis.
Eigen::Vector2d LastDigits(const ControlPoints& points, const FitFrames& space) {
    const Eigen::Vector2d reach = points.world.cwiseAbs().colwise().maxCoeff();
    return std::numeric_limits<double>::epsilon() * reach.cwiseQuotient(space.target.scale);
}

/// Terms that move no point by as much as `digits` are what rounding left; without
/// them a raster parallel to the axes stays so.
void DropRounding(Eigen::Matrix2d& matrix, const Eigen::Vector2d& digits) {
    for (Eigen::Index axis = 0; axis < 2; ++axis)
        for (double& term : matrix.row(axis))
            if (std::abs(term) <= digits[axis]) term = 0.0;
}

AffineTerms FromUnit(const UnitAffine& fit, const FitFrames& space) {
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

ModelPointer MakeModel(const UnitAffine& fit, const ControlPoints& points, const FitFrames& space,
                       const FitRule& rule, EMathTransformType type) {
    const double size = fit.matrix.squaredNorm();
    if (size <= kSingular || std::abs(fit.matrix.determinant()) <= kSingular * size)
        RefuseFit("The %s fit through the %td enabled points cannot be inverted", rule.name, points.Count());
    auto model = AffineModel::Make(FromUnit(fit, space), type);
    if (!model)
        RefuseFit("The terms of the %s fit through the %td enabled points are out of range", rule.name,
                  points.Count());
    return model;
}

/// A conformal fit of one handedness: x' = a x + b y + c, y' = sign * (b x - a y) + f,
/// mirrored for sign 1, a rotation for -1.
struct ConformalFit {
    ConformalFit(const FitSpace& space, double sign) : count(space.from.rows()) {
        const Eigen::Vector4d terms =
            LeastSquares({2 * count, 4, 1}, [&](Eigen::Index first, auto design, auto observed) {
                for (Eigen::Index i = 0; i < design.rows(); ++i)
                    FillRow(space, sign, first + i, design.row(i), observed(i, 0));
            }).Solve();
        unit.matrix << terms[0], terms[1], sign * terms[1], -sign * terms[0];
        unit.shift = terms.tail<2>();
        residual =
            (space.to - ((space.from * unit.matrix.transpose()).rowwise() + unit.shift.transpose())).norm();
    }

    Eigen::Index count;
    UnitAffine unit;
    double residual;

private:
    /// All x' come before all y'.
    template <class DesignRow>
    void FillRow(const FitSpace& space, double sign, Eigen::Index row, DesignRow design, double& observed) {
        const Eigen::Index point = row % count;
        const auto from = space.from.row(point);
        if (row < count)
            design << from[0], from[1], 1, 0;
        else
            design << -sign * from[1], sign * from[0], 0, 1;
        observed = space.to(point, row / count);
    }
};

/// True when the rotation fits better by more than rounding.
bool IsRotation(const ConformalFit& mirrored, const ConformalFit& rotated, double digits) {
    const double rounding = 8 * (digits + std::numeric_limits<double>::epsilon()) *
                            std::sqrt(static_cast<double>(mirrored.count));
    return rotated.residual + rounding < mirrored.residual * (1 - 1e-9);
}

}  // namespace

ModelPointer FitAffine(const ControlPoints& points, const FitRule& rule) {
    RequireArea(points, rule);
    const FitFrames space(points, Scaling::PerAxis, Scaling::PerAxis);
    const auto rows = [&](Eigen::Index first, auto design, auto observed) {
        space.source.AllToUnit(points.pixels.middleRows(first, design.rows()), design.leftCols(2));
        design.col(2).setOnes();
        space.target.AllToUnit(points.world.middleRows(first, design.rows()), observed);
    };
    const Eigen::Matrix<double, 3, 2> terms = LeastSquares({points.Count(), 3, 2}, rows).Solve();
    UnitAffine fit{terms.topRows<2>().transpose(), terms.row(2).transpose()};
    DropRounding(fit.matrix, LastDigits(points, space));
    return MakeModel(fit, points, space, rule, EMathTransformType::Affine);
}

ModelPointer FitConformal(const ControlPoints& points, const FitRule& rule) {
    RequireExtent(points, rule);
    const FitSpace space(points, Scaling::Common, Scaling::Common);
    const ConformalFit mirrored(space, 1.0);
    const ConformalFit rotated(space, -1.0);
    // One bound for both axes, so that the terms stay equal in pairs.
    const double digits = LastDigits(points, space).maxCoeff();
    UnitAffine fit = (IsRotation(mirrored, rotated, digits) ? rotated : mirrored).unit;
    DropRounding(fit.matrix, Eigen::Vector2d::Constant(digits));
    return MakeModel(fit, points, space, rule, EMathTransformType::Conformal);
}

}  // namespace Tellurion

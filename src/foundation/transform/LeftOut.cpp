#include "LeftOut.h"

#include "FitSpace.h"
#include "Homography.h"
#include "LeastSquares.h"
#include "Monomials.h"
#include "SplineSystem.h"

#include <Eigen/Cholesky>
#include <Eigen/QR>

#include <cmath>
#include <complex>
#include <limits>

namespace Tellurion {
namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
/// What the others must carry of a point's value.
constexpr double kLeastShare = 1e-9;

Positions InUnits(const Positions& pixels, Scaling scaling) {
    Positions unit(pixels.rows(), 2);
    PlaneFrame(pixels, scaling).AllToUnit(pixels, unit);
    return unit;
}

Eigen::MatrixXd DesignOf(EMathTransformType type, const ControlPoints& points) {
    const std::vector<Monomial> monomials = MonomialsOf(type);
    Eigen::MatrixXd design(points.Count(), std::ssize(monomials));
    FillDesign(InUnits(points.pixels, Scaling::PerAxis), 0, monomials, design);
    return design;
}

/// The left-out residuals of a fit that is linear in its terms, of observed values with one or
/// more columns. What the design explains is taken off twice: what rounding left goes with the
/// second time.
template <class Matrix>
Matrix LeftOutOfDesign(const Matrix& design, Matrix observed) {
    const Eigen::Index terms = design.cols();
    Matrix orthogonal = Matrix::Identity(design.rows(), terms);
    const Eigen::HouseholderQR<Matrix> factors(design);
    orthogonal.applyOnTheLeft(factors.householderQ());
    for (int round = 0; round < 2; ++round)
        observed -= orthogonal * (orthogonal.adjoint() * observed).eval();
    for (Eigen::Index i = 0; i < design.rows(); ++i) {
        const double share = 1 - orthogonal.row(i).squaredNorm();
        observed.row(i) /= share > kLeastShare ? -share : kNone;
    }
    return observed;
}

/// A conformal fit is a line through complex numbers; a mirrored one takes them conjugated.
Positions LeftOutOfConformal(const FitSpace& space, bool mirrored) {
    using Complex = std::complex<double>;
    const Eigen::Index count = space.from.rows();
    Eigen::MatrixXcd design(count, 2);
    Eigen::MatrixXcd observed(count, 1);
    for (Eigen::Index i = 0; i < count; ++i) {
        const Complex from(space.from(i, 0), space.from(i, 1));
        design.row(i) << (mirrored ? std::conj(from) : from), Complex(1);
        observed(i, 0) = Complex(space.to(i, 0), space.to(i, 1));
    }
    const Eigen::MatrixXcd left_out = LeftOutOfDesign(design, observed);
    Positions residuals(count, 2);
    residuals << left_out.real(), left_out.imag();
    return residuals * space.target.scale[0];
}

/// True when the y axis is up where rows count downwards.
bool IsMirrored(const BMathTransform& fit) {
    BMathTransform::Slopes s{};
    fit.GetSlopes(0, 0, s);
    return s.XByColumn * s.YByRow - s.XByRow * s.YByColumn < 0;
}

Positions LeftOutOfLinear(const BMathTransform& fit, const ControlPoints& points) {
    const EMathTransformType type = fit.GetMathTransformType();
    const Scaling scaling = type == EMathTransformType::Conformal ? Scaling::Common : Scaling::PerAxis;
    const FitSpace space(points, scaling, scaling);
    if (type == EMathTransformType::Conformal) return LeftOutOfConformal(space, IsMirrored(fit));
    Positions residuals = LeftOutOfDesign<Eigen::MatrixXd>(DesignOf(type, points), space.to);
    residuals.array().rowwise() *= space.target.scale.transpose().array();
    return residuals;
}

Positions LeftOutOfSpline(const ControlPoints& points) {
    constexpr int kRefinements = 2;
    const FitSpace space(points, Scaling::Common, Scaling::PerAxis);
    const Eigen::Index count = points.Count();
    const SplineSystem system(space.from);
    Eigen::MatrixXd solution = Eigen::MatrixXd::Zero(count + 3, 2);
    Positions left = space.to;
    for (int round = 0; round <= kRefinements; ++round) {
        solution += system.Solve(left);
        if (round == kRefinements) break;
        left = space.to;
        left -= space.from * solution.bottomRows(3).topRows(2);
        left.rowwise() -= solution.bottomRows<1>();
        for (Eigen::Index j = 0; j < count; ++j)
            for (Eigen::Index i = 0; i < j; ++i) {
                const double bending =
                    SplineSystem::Bending((space.from.row(i) - space.from.row(j)).squaredNorm());
                left.row(i) -= bending * solution.row(j);
                left.row(j) -= bending * solution.row(i);
            }
    }
    const Eigen::VectorXd diagonal = system.InverseRoot().colwise().squaredNorm().transpose();
    Positions residuals(count, 2);
    for (Eigen::Index i = 0; i < count; ++i)
        for (Eigen::Index axis = 0; axis < 2; ++axis)
            residuals(i, axis) = diagonal[i] > kLeastShare
                                     ? -solution(i, axis) / diagonal[i] * space.target.scale[axis]
                                     : kNone;
    return residuals;
}

/// Two rows per point, by eight of the nine terms: the last one, the depth in the middle of the
/// points, fixes the scale.
Eigen::MatrixXd EightSlopes(const Homography& homography, const Positions& from) {
    const Eigen::MatrixXd apart = HomographySlopes(homography, from);
    const Eigen::Index count = from.rows();
    Eigen::MatrixXd slopes(2 * count, 8);
    for (Eigen::Index i = 0; i < count; ++i)
        slopes.middleRows<2>(2 * i) << apart.row(i).head<8>(), apart.row(count + i).head<8>();
    return slopes;
}

/// The slopes' products with each other and with what is left, without those of one point.
struct NormalEquations {
    Eigen::Matrix<double, 8, 8> products;
    Eigen::Matrix<double, 8, 1> pull;
};

NormalEquations Without(Eigen::Index point, const Homography& homography, const FitSpace& space) {
    const Eigen::MatrixXd slopes = EightSlopes(homography, space.from);
    const Positions left = space.to - ApplyHomography(homography, space.from);
    const Eigen::VectorXd flat = left.transpose().reshaped();
    const auto own = slopes.middleRows<2>(2 * point);
    return {slopes.transpose() * slopes - own.transpose() * own,
            slopes.transpose() * flat - own.transpose() * left.row(point).transpose()};
}

/// False when the others do not carry a fit.
bool RefineWithout(Eigen::Index point, const FitSpace& space, Homography& homography) {
    constexpr int kIterations = 40;
    constexpr double kLastStep = 1e-13;
    constexpr double kWeakest = 1e-12;
    for (int i = 0; i < kIterations; ++i) {
        const NormalEquations equations = Without(point, homography, space);
        const Eigen::LDLT<Eigen::Matrix<double, 8, 8>> factors(equations.products);
        if (factors.info() != Eigen::Success || !(factors.rcond() > kWeakest)) return false;
        Eigen::Matrix<double, 9, 1> step = Eigen::Matrix<double, 9, 1>::Zero();
        step.head<8>() = factors.solve(equations.pull);
        homography += step.reshaped(3, 3).transpose();
        if (!(step.norm() < 1e3)) return false;
        if (step.norm() < kLastStep * homography.norm()) break;
    }
    return true;
}

Positions LeftOutOfProjective(const ControlPoints& points, const FitRule& rule) {
    const FitSpace space(points, Scaling::PerAxis, Scaling::Common);
    Homography whole = FitHomography(points, space, rule);
    whole /= whole(2, 2);
    Positions residuals(points.Count(), 2);
    for (Eigen::Index i = 0; i < points.Count(); ++i) {
        Homography others = whole;
        const bool carried = RefineWithout(i, space, others);
        const Eigen::RowVector2d there = ApplyHomography(others, space.from.row(i));
        for (Eigen::Index axis = 0; axis < 2; ++axis)
            residuals(i, axis) =
                carried ? (there[axis] - space.to(i, axis)) * space.target.scale[axis] : kNone;
    }
    return residuals;
}

Eigen::MatrixXd ConformalSlopes(const BMathTransform& fit, const Positions& from) {
    const double sign = IsMirrored(fit) ? 1.0 : -1.0;
    Eigen::MatrixXd slopes(2 * from.rows(), 4);
    for (Eigen::Index i = 0; i < from.rows(); ++i) {
        const double x = from(i, 0);
        const double y = from(i, 1);
        slopes.middleRows<2>(2 * i) << x, y, 1, 0, -sign * y, sign * x, 0, 1;
    }
    return slopes;
}

}  // namespace

Positions LeftOutResiduals(const BMathTransform& fit, const ControlPoints& points, const FitRule& rule) {
    const Eigen::Index count = points.Count();
    const EMathTransformType type = fit.GetMathTransformType();
    if (count <= rule.points) return Positions::Constant(count, 2, kNone);
    if (type == EMathTransformType::ThinPlateSpline)
        return count > kMaxSplinePoints ? Positions(0, 2) : LeftOutOfSpline(points);
    if (type == EMathTransformType::Projective)
        return count > kMaxProjectivePoints ? Positions(0, 2) : LeftOutOfProjective(points, rule);
    return LeftOutOfLinear(fit, points);
}

Eigen::MatrixXd TermSlopes(const BMathTransform& fit, const ControlPoints& points, const FitRule& rule) {
    const EMathTransformType type = fit.GetMathTransformType();
    if (type == EMathTransformType::Conformal)
        return ConformalSlopes(fit, InUnits(points.pixels, Scaling::Common));
    if (type == EMathTransformType::Projective) {
        const FitSpace space(points, Scaling::PerAxis, Scaling::Common);
        Homography homography = FitHomography(points, space, rule);
        return EightSlopes(homography / homography(2, 2), space.from);
    }
    const Eigen::MatrixXd design = DesignOf(type, points);
    Eigen::MatrixXd slopes = Eigen::MatrixXd::Zero(2 * design.rows(), 2 * design.cols());
    for (Eigen::Index i = 0; i < design.rows(); ++i) {
        slopes.row(2 * i).head(design.cols()) = design.row(i);
        slopes.row(2 * i + 1).tail(design.cols()) = design.row(i);
    }
    return slopes;
}

int TermCount(EMathTransformType type) {
    if (type == EMathTransformType::Conformal) return 4;
    if (type == EMathTransformType::Projective) return 8;
    if (type == EMathTransformType::ThinPlateSpline || type == EMathTransformType::None) return 0;
    return 2 * static_cast<int>(MonomialsOf(type).size());
}

}  // namespace Tellurion

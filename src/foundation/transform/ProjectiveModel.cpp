#include "Homography.h"
#include "LeastSquares.h"

#include <Eigen/Dense>

#include <cmath>

namespace Tellurion {
namespace {

constexpr int kIterations = 50;
constexpr int kHalvings = 20;
/// A depth, as a part of the largest one among the control points, that counts as
/// the horizon.
constexpr double kHorizon = 1e-12;
/// No control point may be that near to it.
constexpr double kPointHorizon = 1e-9;
constexpr double kSingular = 1e-12;
/// Of the area of the unit square; below, three points lie on a line.
constexpr double kFlatTriangle = 1e-10;

Eigen::VectorXd Depths(const Homography& homography, const Positions& from) {
    return from.rowwise().homogeneous() * homography.row(2).transpose();
}

bool IsBeforeHorizon(const Eigen::VectorXd& depths) {
    return depths.minCoeff() > kPointHorizon * depths.maxCoeff();
}

/// The two rows that each point has in a system. Of many points they are folded into a
/// triangle with the same least squares; `rows_of` makes those of a run of points.
template <class RowsOf>
Eigen::MatrixXd AllRows(Eigen::Index count, Eigen::Index columns, RowsOf rows_of) {
    constexpr Eigen::Index kMaxAtOnce = 4096;
    if (count <= kMaxAtOnce) return rows_of(Eigen::Index{0}, count);
    return LeastSquares::FoldRows(2 * count, columns, [&](Eigen::Index first, LeastSquares::Block rows) {
        rows = rows_of(first / 2, rows.rows() / 2);
    });
}

/// The nine factors of the terms for all x', then for all y'.
Eigen::MatrixXd DesignOf(const Eigen::MatrixXd& from, const Positions& to) {
    const Eigen::Index count = from.rows();
    Eigen::MatrixXd design = Eigen::MatrixXd::Zero(2 * count, 9);
    design.topLeftCorner(count, 3) = from;
    design.block(count, 3, count, 3) = from;
    design.topRightCorner(count, 3) = -(from.array().colwise() * to.col(0).array());
    design.bottomRightCorner(count, 3) = -(from.array().colwise() * to.col(1).array());
    return design;
}

/// The homography with the least algebraic residual; exact data give the exact one.
/// The depths are scaled to 1 at most and have the sign of their sum.
Homography DirectFit(const FitSpace& space, const FitRule& rule) {
    const Eigen::Index count = space.from.rows();
    const Eigen::MatrixXd design = AllRows(count, 9, [&](Eigen::Index first, Eigen::Index some) {
        return DesignOf(space.from.middleRows(first, some).rowwise().homogeneous(),
                        space.to.middleRows(first, some));
    });
    const Eigen::JacobiSVD<Eigen::MatrixXd> factors(design, Eigen::ComputeFullV);
    if (factors.singularValues()[7] <= kRankTolerance * factors.singularValues()[0])
        RefuseFit("The %s fit is left open, too many of the %td enabled points lie on a line", rule.name,
                  count);
    const Eigen::VectorXd terms = factors.matrixV().col(8);
    const Homography homography = terms.reshaped(3, 3).transpose();
    const Eigen::VectorXd depths = Depths(homography, space.from);
    return homography / std::copysign(depths.cwiseAbs().maxCoeff(), depths.sum());
}

/// Takes the largest part of `step` that lessens the residual; false when none does.
bool Improve(Homography& homography, const Homography& step, const FitSpace& space) {
    const double residual = (space.to - ApplyHomography(homography, space.from)).norm();
    double part = 1.0;
    for (int i = 0; i < kHalvings; ++i, part /= 2) {
        const Homography next = homography + part * step;
        if (IsBeforeHorizon(Depths(next, space.from)) &&
            (space.to - ApplyHomography(next, space.from)).norm() < residual) {
            homography = next;
            return true;
        }
    }
    return false;
}

/// A step of Gauss-Newton. The scale of the homography is free; of all equal steps the shortest
/// leaves it alone.
Homography StepOf(const Homography& homography, const FitSpace& space) {
    const Eigen::MatrixXd rows = AllRows(space.from.rows(), 10, [&](Eigen::Index first, Eigen::Index some) {
        const Positions from = space.from.middleRows(first, some);
        Eigen::MatrixXd slopes_and_left(2 * some, 10);
        slopes_and_left << HomographySlopes(homography, from),
            (space.to.middleRows(first, some) - ApplyHomography(homography, from)).reshaped();
        return slopes_and_left;
    });
    Eigen::CompleteOrthogonalDecomposition<Eigen::MatrixXd> factors;
    factors.setThreshold(kSingular);
    factors.compute(rows.leftCols(9));
    const Eigen::VectorXd step = factors.solve(rows.col(9));
    return step.reshaped(3, 3).transpose();
}

/// Least squares in the target. The residual stops shrinking while the terms still have half
/// their digits to gain, which last steps without a look at it give them.
void Refine(Homography& homography, const FitSpace& space) {
    constexpr int kLastSteps = 3;
    constexpr double kExact = 1e-14;
    constexpr double kSmallStep = 1e-6;
    for (int i = 0; i < kIterations; ++i)
        if (!Improve(homography, StepOf(homography, space), space)) break;
    for (int i = 0; i < kLastSteps; ++i) {
        const Positions left = space.to - ApplyHomography(homography, space.from);
        if (left.cwiseAbs().maxCoeff() <= kExact) return;
        const Homography step = StepOf(homography, space);
        if (!(step.norm() < kSmallStep * homography.norm())) return;
        homography += step;
    }
}

void RequireBeforeHorizon(const Homography& homography, const ControlPoints& points, const FitSpace& space,
                          const FitRule& rule) {
    const Eigen::VectorXd depths = Depths(homography, space.from);
    if (IsBeforeHorizon(depths)) return;
    Eigen::Index farthest = 0;
    depths.minCoeff(&farthest);
    RefuseFit("The %s fit through the %td enabled points puts point %ld on or beyond its horizon", rule.name,
              points.Count(), points.Number(farthest));
}

bool HasFlatTriangle(const Positions& unit) {
    for (Eigen::Index left_out = 0; left_out < 4; ++left_out) {
        const Eigen::Vector2d first = unit.row((left_out + 1) % 4);
        Eigen::Matrix2d sides;
        sides << unit.row((left_out + 2) % 4).transpose() - first,
            unit.row((left_out + 3) % 4).transpose() - first;
        if (std::abs(sides.determinant()) <= kFlatTriangle) return true;
    }
    return false;
}

class ProjectiveModel : public TransformModel {
public:
    ProjectiveModel(const FitSpace& space, const Homography& homography)
        : TransformModel(EMathTransformType::Projective),
          source_(space.source),
          target_(space.target),
          forward_(homography),
          backward_(homography.inverse()) {}

    bool ToTarget(double& x, double& y) const override {
        const Eigen::Vector3d image = forward_ * source_.ToUnit({x, y}).homogeneous();
        return image.z() > kHorizon && Assign(target_.FromUnit(image.hnormalized()), x, y);
    }
    bool ToSource(double& x, double& y) const override {
        // The third term is one over the depth of the pixel.
        const Eigen::Vector3d image = backward_ * target_.ToUnit({x, y}).homogeneous();
        return image.z() > 0 && image.z() < 1 / kHorizon &&
               Assign(source_.FromUnit(image.hnormalized()), x, y);
    }
    bool SlopesAt(double x, double y, BMathTransform::Slopes& slopes) const override {
        const Eigen::Vector3d image = forward_ * source_.ToUnit({x, y}).homogeneous();
        if (!(image.z() > kHorizon)) return false;
        const Eigen::Matrix2d unit =
            (forward_.topLeftCorner<2, 2>() - image.hnormalized() * forward_.bottomLeftCorner<1, 2>()) /
            image.z();
        return AssignFinite(SlopesFromUnit(unit, source_, target_), slopes);
    }

private:
    static bool Assign(const Eigen::Vector2d& position, double& x, double& y) {
        return AssignFinite(position.x(), position.y(), x, y);
    }

    PlaneFrame source_;
    PlaneFrame target_;
    Homography forward_;
    Homography backward_;
};

}  // namespace

Positions ApplyHomography(const Homography& homography, const Positions& from) {
    return (from.rowwise().homogeneous() * homography.transpose()).rowwise().hnormalized();
}

Eigen::MatrixXd HomographySlopes(const Homography& homography, const Positions& from) {
    const Positions to = ApplyHomography(homography, from);
    const Eigen::MatrixXd near =
        from.rowwise().homogeneous().array().colwise() / Depths(homography, from).array();
    return DesignOf(near, to);
}

Homography FitHomography(const ControlPoints& points, const FitSpace& space, const FitRule& rule) {
    RequireArea(points, rule);
    if (points.Count() == 4 && (HasFlatTriangle(space.from) || HasFlatTriangle(space.to)))
        RefuseFit("The %s fit is left open, three of the 4 enabled points lie on a line", rule.name);
    Homography homography = DirectFit(space, rule);
    RequireBeforeHorizon(homography, points, space, rule);
    Refine(homography, space);
    const Eigen::Vector3d strengths = homography.jacobiSvd().singularValues();
    if (strengths[2] <= kSingular * strengths[0])
        RefuseFit("The %s fit through the %td enabled points cannot be inverted", rule.name, points.Count());
    return homography;
}

ModelPointer FitProjective(const ControlPoints& points, const FitRule& rule) {
    const FitSpace space(points, Scaling::PerAxis, Scaling::Common);
    return std::make_shared<const ProjectiveModel>(space, FitHomography(points, space, rule));
}

}  // namespace Tellurion

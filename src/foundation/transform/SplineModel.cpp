#include "CurvedModel.h"
#include "Fits.h"

#include <Eigen/Cholesky>
#include <Eigen/QR>

#include <cmath>
#include <optional>
#include <vector>

namespace Tellurion {
namespace {

/// The system of n points takes 8 n^2 bytes and a time that grows with n^3: 128 MB here.
constexpr Eigen::Index kMostPoints = 4000;
constexpr int kRefinements = 2;

/// The bending of a thin plate at a squared distance from the point that bends it.
double Bending(double squared) {
    return squared > 0 ? squared * std::log(squared) : 0.0;
}

Eigen::MatrixXd BendingOf(const Positions& from) {
    const Eigen::Index count = from.rows();
    Eigen::MatrixXd bending(count, count);
    for (Eigen::Index j = 0; j < count; ++j)
        for (Eigen::Index i = 0; i < count; ++i)
            bending(i, j) = Bending((from.row(i) - from.row(j)).squaredNorm());
    return bending;
}

/// Weights w and plane terms p with bending * w + plane * p = values and
/// plane^T * w = 0. On the weights that meet the second condition the bending is
/// positive definite: a QR of the plane leads there, Cholesky solves.
class SplineSystem {
public:
    explicit SplineSystem(const Positions& from)
        : free_(from.rows() - 3), bending_(BendingOf(from)), plane_(PlaneOf(from)) {
        bending_.applyOnTheLeft(plane_.householderQ().adjoint());
        bending_.applyOnTheRight(plane_.householderQ());
        if (free_ == 0) return;
        Eigen::Ref<Eigen::MatrixXd> corner = bending_.bottomRightCorner(free_, free_);
        cholesky_.emplace(corner);
    }

    bool Solvable() const { return !cholesky_ || cholesky_->info() == Eigen::Success; }

    /// Weights of the points, then three rows of plane terms.
    Eigen::MatrixXd Solve(const Positions& values) const {
        const Eigen::Index count = values.rows();
        Eigen::MatrixXd turned = values;
        turned.applyOnTheLeft(plane_.householderQ().adjoint());
        Eigen::MatrixXd weights = Eigen::MatrixXd::Zero(count, 2);
        Eigen::MatrixXd plane_side = turned.topRows<3>();
        if (cholesky_) {
            weights.bottomRows(free_) = cholesky_->solve(turned.bottomRows(free_));
            plane_side -= bending_.topRightCorner(3, free_) * weights.bottomRows(free_);
            weights.applyOnTheLeft(plane_.householderQ());
        }
        Eigen::MatrixXd solution(count + 3, 2);
        solution << weights, plane_.matrixQR().topRows<3>().triangularView<Eigen::Upper>().solve(plane_side);
        return solution;
    }

private:
    static Eigen::MatrixXd PlaneOf(const Positions& from) {
        Eigen::MatrixXd plane(from.rows(), 3);
        plane << from, Eigen::VectorXd::Ones(from.rows());
        return plane;
    }

    Eigen::Index free_;
    Eigen::MatrixXd bending_;
    Eigen::HouseholderQR<Eigen::MatrixXd> plane_;
    std::optional<Eigen::LLT<Eigen::Ref<Eigen::MatrixXd>>> cholesky_;  ///< in a corner of bending_
};

class SplineModel : public CurvedModel {
public:
    SplineModel(const FitSpace& space, const FitRule& rule, RasterSize raster)
        : CurvedModel(EMathTransformType::ThinPlateSpline, space, raster) {
        const Eigen::Index count = space.from.rows();
        const SplineSystem system(space.from);
        if (!system.Solvable())
            RefuseFit("The %s fit is left open, some of the %td enabled points are too near to each other",
                      rule.name, count);
        for (Eigen::Index i = 0; i < count; ++i)
            knots_.push_back({space.from.row(i).transpose(), Eigen::Vector2d::Zero()});
        Add(system.Solve(space.to));
        for (int round = 0; round < kRefinements; ++round)
            Add(system.Solve(LeftOver(space)));
        Examine(space, rule);
    }

protected:
    Jet Evaluate(const Eigen::Vector2d& from) const override {
        Jet jet{shift_ + plane_ * from, plane_};
        for (const Knot& knot : knots_) {
            const Eigen::Vector2d offset = from - knot.place;
            const double squared = offset.squaredNorm();
            if (squared == 0) continue;
            const double logarithm = std::log(squared);
            jet.value += knot.weight * (squared * logarithm);
            jet.slope += knot.weight * (2 * (logarithm + 1) * offset).transpose();
        }
        return jet;
    }

private:
    struct Knot {
        Eigen::Vector2d place;
        Eigen::Vector2d weight;
    };

    void Add(const Eigen::MatrixXd& solution) {
        for (std::size_t i = 0; i < knots_.size(); ++i)
            knots_[i].weight += solution.row(static_cast<Eigen::Index>(i)).transpose();
        plane_ += solution.bottomRows<3>().topRows<2>().transpose();
        shift_ += solution.bottomRows<1>().transpose();
    }

    Positions LeftOver(const FitSpace& space) const {
        Positions left = space.to;
        for (Eigen::Index i = 0; i < left.rows(); ++i)
            left.row(i) -= SplineModel::Evaluate(space.from.row(i).transpose()).value.transpose();
        return left;
    }

    std::vector<Knot> knots_;
    Eigen::Matrix2d plane_ = Eigen::Matrix2d::Zero();
    Eigen::Vector2d shift_ = Eigen::Vector2d::Zero();
};

}  // namespace

ModelPointer FitSpline(const ControlPoints& points, const FitRule& rule, RasterSize raster) {
    if (points.Count() > kMostPoints)
        RefuseFit("The %s fit takes up to %td points, %td are enabled", rule.name, kMostPoints,
                  points.Count());
    RequireDifferentPixels(points, rule);
    RequireArea(points, rule);
    const FitSpace space(points, Scaling::Common, Scaling::PerAxis);
    return std::make_shared<const SplineModel>(space, rule, raster);
}

}  // namespace Tellurion

#include "CurvedModel.h"
#include "Fits.h"
#include "SplineSystem.h"

#include <cmath>
#include <vector>

namespace Tellurion {
namespace {

/// The system of n points takes 8 n^2 bytes and a time that grows with n^3: 128 MB here.
constexpr Eigen::Index kMostPoints = 4000;
constexpr int kRefinements = 2;

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

#include "CurvedModel.h"
#include "Fits.h"
#include "LeastSquares.h"
#include "Monomials.h"

#include <iterator>
#include <vector>

namespace Tellurion {
namespace {

class PolynomialModel : public CurvedModel {
public:
    PolynomialModel(const FitSpace& space, const FitRule& rule, EMathTransformType type, RasterSize raster)
        : CurvedModel(type, space, raster), monomials_(MonomialsOf(type)) {
        const LeastSquares squares({space.from.rows(), std::ssize(monomials_), 2},
                                   [&](Eigen::Index first, auto design, auto observed) {
                                       FillDesign(space.from, first, monomials_, design);
                                       observed = space.to.middleRows(first, design.rows());
                                   });
        if (!squares.Determined())
            RefuseFit(
                "The %s fit is left open, the pixels of the %td enabled points lie on one curve of its order",
                rule.name, space.from.rows());
        const Eigen::MatrixXd unknowns = squares.Solve();
        for (Eigen::Index k = 0; k < unknowns.rows(); ++k)
            factors_.emplace_back(unknowns.row(k).transpose());
        Examine(space, rule);
    }

protected:
    Jet Evaluate(const Eigen::Vector2d& from) const override {
        const Powers x(from.x()), y(from.y());
        Jet jet{Eigen::Vector2d::Zero(), Eigen::Matrix2d::Zero()};
        for (std::size_t k = 0; k < monomials_.size(); ++k) {
            const auto [i, j] = monomials_[k];
            jet.value += factors_[k] * (x.value[i] * y.value[j]);
            jet.slope.col(0) += factors_[k] * (x.slope[i] * y.value[j]);
            jet.slope.col(1) += factors_[k] * (x.value[i] * y.slope[j]);
        }
        return jet;
    }

private:
    std::vector<Monomial> monomials_;
    std::vector<Eigen::Vector2d> factors_;
};

}  // namespace

std::vector<Monomial> MonomialsOf(EMathTransformType type) {
    if (type == EMathTransformType::Bilinear) return {{0, 0}, {1, 0}, {0, 1}, {1, 1}};
    const std::size_t order = type == EMathTransformType::Affine        ? 1
                              : type == EMathTransformType::Polynomial2 ? 2
                                                                        : 3;
    std::vector<Monomial> monomials;
    for (std::size_t degree = 0; degree <= order; ++degree)
        for (std::size_t y_power = 0; y_power <= degree; ++y_power)
            monomials.push_back({degree - y_power, y_power});
    return monomials;
}

void FillDesign(const Positions& from, Eigen::Index first, const std::vector<Monomial>& monomials,
                LeastSquares::Block design) {
    for (Eigen::Index i = 0; i < design.rows(); ++i) {
        const Powers x(from(first + i, 0)), y(from(first + i, 1));
        for (std::size_t k = 0; k < monomials.size(); ++k)
            design(i, static_cast<Eigen::Index>(k)) =
                x.value[monomials[k].x_power] * y.value[monomials[k].y_power];
    }
}

ModelPointer FitPolynomial(const ControlPoints& points, const FitRule& rule, EMathTransformType type,
                           RasterSize raster) {
    RequireArea(points, rule);
    const FitSpace space(points, Scaling::PerAxis, Scaling::PerAxis);
    return std::make_shared<const PolynomialModel>(space, rule, type, raster);
}

}  // namespace Tellurion

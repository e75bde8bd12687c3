#include "Suspects.h"

#include "SplineSystem.h"

#include <Eigen/Cholesky>
#include <Eigen/LU>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Tellurion {
namespace {

/// Errors below this many pixels are no errors.
constexpr double kNegligible = 0.01;
/// Of a point's own value, what the others must determine for it to be judged.
constexpr double kLeastShare = 1e-6;

/// The most points that may be removed: a third of those that the fit does not need.
int MaxSuspects(Eigen::Index count, Eigen::Index terms) {
    constexpr Eigen::Index kMax = 10;
    const Eigen::Index spare = (2 * count - terms) / 2 - 2;
    return static_cast<int>(std::clamp<Eigen::Index>(spare / 3, spare > 0 ? 1 : 0, kMax));
}

/// One removal: the point, the sum of squares before it, and what it takes off.
struct Removal {
    Eigen::Index point = -1;
    double sum = 0.0;
    double lessened = 0.0;
};

/// True when chance, which removes the best of `count` points, does not explain it.
bool IsSignificant(const Removal& removal, Eigen::Index count, Eigen::Index terms) {
    const double freedom = static_cast<double>(2 * count - terms - 2);
    if (removal.lessened < kNegligible * kNegligible || freedom < 2) return false;
    const double left = std::max(0.0, 1 - removal.lessened / removal.sum);
    return std::pow(left, freedom / 2) * static_cast<double>(count) < kFalseAlarm;
}

/// Runs the test; `best` finds the next removal among the points that are left, `remove`
/// carries it out.
template <class Best, class Remove>
std::vector<bool> Run(Eigen::Index count, Eigen::Index terms, Best best, Remove remove) {
    std::vector<Eigen::Index> removed;
    std::size_t suspects = 0;
    const int most = MaxSuspects(count, terms);
    for (int step = 0; step < most; ++step) {
        const Removal removal = best();
        if (removal.point < 0) break;
        removed.push_back(removal.point);
        if (IsSignificant(removal, count - step, terms)) suspects = removed.size();
        if (step + 1 < most) remove(removal.point);
    }
    std::vector<bool> result(static_cast<std::size_t>(count), false);
    for (std::size_t i = 0; i < suspects; ++i)
        result[static_cast<std::size_t>(removed[i])] = true;
    return result;
}

/// Least squares from which points are removed one by one.
class LinearSteps {
public:
    LinearSteps(const Eigen::MatrixXd& slopes, const Positions& residuals)
        : slopes_(slopes),
          residuals_(residuals),
          products_(slopes.transpose() * slopes),
          pull_(slopes.transpose() * residuals.transpose().reshaped()),
          active_(static_cast<std::size_t>(residuals.rows()), true) {}

    Removal Best() const {
        const Eigen::LLT<Eigen::MatrixXd> factors(products_);
        Removal best;
        if (factors.info() != Eigen::Success) return best;
        const Eigen::VectorXd terms = factors.solve(pull_);
        const Eigen::VectorXd moved = slopes_ * terms;
        Eigen::MatrixXd turned = slopes_.transpose();
        factors.matrixL().solveInPlace(turned);
        for (Eigen::Index i = 0; i < residuals_.rows(); ++i) {
            if (!active_[static_cast<std::size_t>(i)]) continue;
            const Eigen::Vector2d left = residuals_.row(i).transpose() - moved.segment<2>(2 * i);
            best.sum += left.squaredNorm();
            const auto own = turned.middleCols<2>(2 * i);
            const Eigen::Matrix2d share = Eigen::Matrix2d::Identity() - own.transpose() * own;
            if (!(share.determinant() > kLeastShare * kLeastShare)) continue;
            const double lessened = left.dot(share.inverse() * left);
            if (lessened > best.lessened) {
                best.point = i;
                best.lessened = lessened;
            }
        }
        return best;
    }

    void Remove(Eigen::Index point) {
        active_[static_cast<std::size_t>(point)] = false;
        const auto own = slopes_.middleRows<2>(2 * point);
        products_ -= own.transpose() * own;
        pull_ -= own.transpose() * residuals_.row(point).transpose();
    }

private:
    const Eigen::MatrixXd& slopes_;
    const Positions& residuals_;
    Eigen::MatrixXd products_;
    Eigen::VectorXd pull_;
    std::vector<bool> active_;
};

/// A smoothing spline from which points are removed one by one.
class SplineSteps {
public:
    SplineSteps(const Positions& from, const Positions& to, double noise)
        : active_(static_cast<std::size_t>(from.rows()), true) {
        const Eigen::MatrixXd root = SplineSystem(from, noise).InverseRoot();
        inverse_ = Eigen::MatrixXd::Zero(from.rows(), from.rows());
        inverse_.selfadjointView<Eigen::Lower>().rankUpdate(root.transpose());
        inverse_.triangularView<Eigen::StrictlyUpper>() = inverse_.transpose();
        weights_ = inverse_ * to;
        sum_ = weights_.cwiseProduct(to).sum() * noise;
        noise_ = noise;
    }

    Removal Best() const {
        Removal best{-1, sum_, 0.0};
        for (Eigen::Index i = 0; i < weights_.rows(); ++i) {
            if (!active_[static_cast<std::size_t>(i)] || !(inverse_(i, i) * noise_ > kLeastShare)) continue;
            const double lessened = weights_.row(i).squaredNorm() / inverse_(i, i) * noise_;
            if (lessened > best.lessened) {
                best.point = i;
                best.lessened = lessened;
            }
        }
        return best;
    }

    void Remove(Eigen::Index point) {
        active_[static_cast<std::size_t>(point)] = false;
        const Eigen::VectorXd column = inverse_.col(point);
        const double own = column[point];
        const Eigen::RowVector2d weight = weights_.row(point);
        sum_ -= weight.squaredNorm() / own * noise_;
        weights_ -= column * weight / own;
        inverse_.noalias() -= column * column.transpose() / own;
    }

private:
    Eigen::MatrixXd inverse_;  ///< from positions to weights
    Positions weights_;
    double sum_ = 0.0;  ///< in the unit of the noise
    double noise_ = 1.0;
    std::vector<bool> active_;
};

/// Minus twice the logarithm of the restricted likelihood, but for a constant.
double Unlikelihood(const Positions& from, const Positions& to, double noise) {
    const SplineSystem system(from, noise);
    if (!system.Solvable()) return std::numeric_limits<double>::infinity();
    const double sum = system.Solve(to).topRows(to.rows()).cwiseProduct(to).sum();
    const double freedom = 2 * static_cast<double>(from.rows() - 3);
    return 2 * system.LogDeterminant() + freedom * std::log(std::max(sum, 1e-300));
}

/// The noise on the bending's diagonal that is most likely, by the scale of the bending.
double LikelyNoise(const Positions& from, const Positions& to) {
    constexpr Eigen::Index kMaxAsked = 250;
    const Eigen::Index step = 1 + (from.rows() - 1) / kMaxAsked;
    const Eigen::Index count = (from.rows() + step - 1) / step;
    Positions some_from(count, 2);
    Positions some_to(count, 2);
    for (Eigen::Index i = 0; i < count; ++i) {
        some_from.row(i) = from.row(i * step);
        some_to.row(i) = to.row(i * step);
    }
    double likely = 1.0;
    double least = std::numeric_limits<double>::infinity();
    for (double noise = 1e-4; noise < 2e3; noise *= 10) {
        const double value = Unlikelihood(some_from, some_to, noise);
        if (value >= least) continue;
        least = value;
        likely = noise;
    }
    return likely;
}

}  // namespace

std::vector<bool> FindSuspects(const Eigen::MatrixXd& slopes, const Positions& residuals) {
    LinearSteps steps(slopes, residuals);
    return Run(
        residuals.rows(), slopes.cols(), [&] { return steps.Best(); },
        [&](Eigen::Index point) { steps.Remove(point); });
}

std::vector<bool> FindSplineSuspects(const Positions& from, const Positions& to) {
    constexpr Eigen::Index kPlaneTerms = 6;
    if (MaxSuspects(from.rows(), kPlaneTerms) == 0)
        return std::vector<bool>(static_cast<std::size_t>(from.rows()), false);
    SplineSteps steps(from, to, LikelyNoise(from, to));
    return Run(
        from.rows(), kPlaneTerms, [&] { return steps.Best(); },
        [&](Eigen::Index point) { steps.Remove(point); });
}

}  // namespace Tellurion

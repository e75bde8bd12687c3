#include "read/Residuals.h"

#include <algorithm>
#include <cmath>

namespace Tool {

namespace {

std::optional<double> ResidualOf(const Tellurion::BPointPair& pair,
                                 const Tellurion::BMathTransform& transform) {
    double x = pair.World.x;
    double y = pair.World.y;
    if (!transform.ConvertTargetToSource(x, y)) return std::nullopt;
    return std::hypot(x - pair.Column, y - pair.Row);
}

}  // namespace

Residuals ComputeResiduals(const Tellurion::BGeoReference& reference) {
    Residuals residuals;
    residuals.pixels.resize(reference.PointPairVector.size());
    if (!reference.HasMathTransform()) return residuals;
    double sum = 0.0;
    double maximum = 0.0;
    int count = 0;
    for (std::size_t i = 0; i < residuals.pixels.size(); ++i) {
        const Tellurion::BPointPair& pair = reference.PointPairVector[i];
        residuals.pixels[i] = ResidualOf(pair, *reference.MathTransform);
        if (!pair.Enabled || !residuals.pixels[i]) continue;
        sum += *residuals.pixels[i] * *residuals.pixels[i];
        maximum = std::max(maximum, *residuals.pixels[i]);
        ++count;
    }
    if (count == 0) return residuals;
    residuals.root_mean_square = std::sqrt(sum / count);
    residuals.maximum = maximum;
    return residuals;
}

}  // namespace Tool

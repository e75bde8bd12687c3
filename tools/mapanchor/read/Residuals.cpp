#include "read/Residuals.h"

#include <algorithm>

namespace Tool {

using namespace Tellurion;

Residuals ComputeResiduals(const ReadResult& result) {
    Residuals residuals;
    const BGeoReference& reference = result.reference;
    residuals.points = result.points.size() == reference.PointPairVector.size()
                           ? result.points
                           : BControlPoint::From(reference.PointPairVector);
    residuals.of_points.resize(residuals.points.size());
    if (!reference.HasMathTransform() || residuals.points.empty()) return residuals;
    const auto side = [](const std::optional<long>& pixels) {
        return static_cast<unsigned int>(std::clamp(pixels.value_or(0), 0L, 0x7FFFFFFFL));
    };
    BFitReport report =
        BFitReport::Of(*reference.MathTransform, residuals.points, side(result.width), side(result.height));
    residuals.of_points = std::move(report.Residuals);
    if (!report.HasRmse) return residuals;
    residuals.root_mean_square = report.RmsePixels;
    residuals.maximum = report.MaxPixels;
    if (report.HasRmseAdjusted) residuals.adjusted = report.RmseAdjustedPixels;
    return residuals;
}

}  // namespace Tool

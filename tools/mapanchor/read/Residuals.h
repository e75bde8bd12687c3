#pragma once

#include "read/ReadFile.h"

#include <Tellurion/BFitReport.h>

#include <optional>
#include <vector>

namespace Tool {

/// How far the control points lie from where the transform puts them, in pixels. See
/// Tellurion::BFitReport.
struct Residuals {
    std::vector<Tellurion::BControlPoint> points;    ///< with the fractions of their pixels
    std::vector<Tellurion::BFitResidual> of_points;  ///< one for each
    /// Over the enabled points that have one; empty when none has.
    std::optional<double> root_mean_square;
    std::optional<double> adjusted;  ///< for the degrees of freedom; empty where none is left
    std::optional<double> maximum;
};

Residuals ComputeResiduals(const ReadResult& result);

}  // namespace Tool

#pragma once

#include <Tellurion/BGeoReference.h>

#include <optional>
#include <vector>

namespace Tool {

/// How far the control points lie from where the transform puts them, in pixels.
struct Residuals {
    /// One for each point; empty where there is no transform or it has no value.
    std::vector<std::optional<double>> pixels;
    /// Over the enabled points that have one; empty when none has.
    std::optional<double> root_mean_square;
    std::optional<double> maximum;
};

Residuals ComputeResiduals(const Tellurion::BGeoReference& reference);

}  // namespace Tool

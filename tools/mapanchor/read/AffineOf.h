#pragma once

#include <Tellurion/BException.h>
#include <Tellurion/BGeoReference.h>

#include <array>
#include <optional>

namespace Tool {

/// The terms a, b, c, d, e, f of a reference's transform; empty when it has none or
/// it is not affine.
inline std::optional<std::array<double, 6>> AffineOf(const Tellurion::BGeoReference& reference) {
    if (!reference.HasMathTransform()) return std::nullopt;
    std::array<double, 6> t{};
    try {
        reference.MathTransform->GetAffineParameters(t[0], t[1], t[2], t[3], t[4], t[5]);
    } catch (const Tellurion::BException&) {
        return std::nullopt;
    }
    return t;
}

}  // namespace Tool

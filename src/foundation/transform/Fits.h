#pragma once

#include "ControlPoints.h"
#include "TransformModel.h"

#include <memory>

namespace Tellurion {

struct RasterSize {
    unsigned int width, height;  ///< pixels, 0 when unknown
};

using ModelPointer = std::shared_ptr<const TransformModel>;

// One function for each family of fits. All throw a BException that says why the
// points cannot carry the fit.

ModelPointer FitAffine(const ControlPoints& points, const FitRule& rule);
ModelPointer FitConformal(const ControlPoints& points, const FitRule& rule);
ModelPointer FitProjective(const ControlPoints& points, const FitRule& rule);
/// Polynomial2, Polynomial3 and Bilinear.
ModelPointer FitPolynomial(const ControlPoints& points, const FitRule& rule, EMathTransformType type,
                           RasterSize raster);
ModelPointer FitSpline(const ControlPoints& points, const FitRule& rule, RasterSize raster);

}  // namespace Tellurion

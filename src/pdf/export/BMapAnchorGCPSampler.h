#pragma once

#include "export/CGCPSampler.h"

#include <Tellurion/BGeoReference.h>

namespace MapAnchor {

/// Control points for the transform of a reference. World points are in the units of
/// the reference's coordinate system or, with `to_geodetic`, longitude (x) and
/// latitude (y) in degrees. A box is rejected when an affine fit through its corners
/// does not behave. The reference needs a transform and a coordinate system, and
/// must outlive the sampler.
class BMapAnchorGCPSampler : public VellumLib::CGCPSampler {
public:
    BMapAnchorGCPSampler(const Tellurion::BGeoReference& reference, bool to_geodetic);
    ~BMapAnchorGCPSampler() override;

protected:
    VellumLib::CPDFPathPoint PixelToWorld(const VellumLib::CPDFPathPoint& pixel) override;
    bool RejectBox() override;

private:
    const Tellurion::BGeoReference& reference_;
    Tellurion::BSharedPtr<Tellurion::BMathTransform> transform_;
    bool to_geodetic_;
    bool transform_unsuitable_;
};

}  // namespace MapAnchor

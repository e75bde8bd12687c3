#pragma once

#include "CCoordSys.h"
#include "CHorizontalDatum.h"
#include "CVerticalReference.h"

#include <Tellurion/Export.h>

#include <memory>

namespace GeoCalc::CS {

/// Longitude and latitude on a datum.
class TELLURION_EXPORT CGeodeticCoordSys : public CCoordSys {
public:
    explicit CGeodeticCoordSys(const Definition& definition);
    /// The geodetic system of another, with that one's vertical part.
    CGeodeticCoordSys(const Definition& definition, std::shared_ptr<const VR::CVerticalReference> vertical);
    CGeodeticCoordSys(const CGeodeticCoordSys&) = default;
    ~CGeodeticCoordSys() override;
    std::unique_ptr<CCoordSys> Clone() const override;
    Definition GetDefinition() const override;

    CHorizontalDatum* GetHorizontalDatum() override { return &datum_; }
    const CHorizontalDatum& GetHorizontalDatum() const { return datum_; }
    /// Null without one.
    const VR::CVerticalReference* GetVerticalReference() const { return vertical_.get(); }

private:
    CHorizontalDatum datum_;
    std::shared_ptr<const VR::CVerticalReference> vertical_;
};

}  // namespace GeoCalc::CS

#pragma once

#include "CCoordSys.h"

#include <Tellurion/Export.h>

#include <memory>

namespace GeoCalc::CS {

/// Longitude and latitude on a datum.
class TELLURION_EXPORT CGeodeticCoordSys : public CCoordSys {
public:
    ~CGeodeticCoordSys() override;
    std::unique_ptr<CCoordSys> Clone() const override;

private:
    friend class CCoordSys;
    using CCoordSys::CCoordSys;
};

}  // namespace GeoCalc::CS

#pragma once

#include "CCoordSys.h"

#include <Tellurion/Export.h>

#include <memory>

namespace GeoCalc::CS {

/// A projection of a geodetic coordinate system.
class TELLURION_EXPORT CProjectedCoordSys : public CCoordSys {
public:
    ~CProjectedCoordSys() override;
    std::unique_ptr<CCoordSys> Clone() const override;

private:
    friend class CCoordSys;
    using CCoordSys::CCoordSys;
};

}  // namespace GeoCalc::CS

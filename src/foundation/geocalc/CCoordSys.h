#pragma once

#include "CSerializable.h"

#include <Tellurion/Export.h>

#include <memory>

namespace Tellurion {
class CoordSysDefinition;
}

namespace GeoCalc::CS {

/// A coordinate system as an object of the database. Its identifiers are the code of
/// the database's own and, where the system has one, the EPSG number.
class TELLURION_EXPORT CCoordSys : public CSerializable {
public:
    using Definition = std::shared_ptr<const Tellurion::CoordSysDefinition>;

    /// The object of a definition: geodetic, projected, or neither.
    static std::unique_ptr<CCoordSys> Make(const Definition& definition);
    ~CCoordSys() override;
    virtual std::unique_ptr<CCoordSys> Clone() const;

protected:
    explicit CCoordSys(Definition definition);
    CCoordSys(const CCoordSys&) = default;
    CCoordSys& operator=(const CCoordSys&) = default;

private:
    Definition definition_;
};

}  // namespace GeoCalc::CS

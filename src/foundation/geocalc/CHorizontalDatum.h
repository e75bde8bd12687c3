#pragma once

#include "CSerializable.h"

#include <Tellurion/Export.h>

#include <memory>

namespace Tellurion {
class CoordSysDefinition;
}

namespace GeoCalc::CS {

/// A horizontal datum, identified by a geodetic system on it. Assigned over the datum of a
/// system, it moves the system to this one.
class TELLURION_EXPORT CHorizontalDatum : public CSerializable {
public:
    using Definition = std::shared_ptr<const Tellurion::CoordSysDefinition>;

    /// The datum of a geodetic system.
    explicit CHorizontalDatum(const Definition& geodetic);
    CHorizontalDatum(const CHorizontalDatum&) = default;
    CHorizontalDatum& operator=(const CHorizontalDatum&) = default;
    ~CHorizontalDatum() override;

    const Definition& GetGeodetic() const { return geodetic_; }

private:
    Definition geodetic_;
};

}  // namespace GeoCalc::CS

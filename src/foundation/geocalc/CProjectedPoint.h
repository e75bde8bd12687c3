#pragma once

#include "CSerializable.h"

#include <GeoCalc/CLinearValue.h>

#include <Tellurion/BString.h>
#include <Tellurion/Export.h>

#include <cstdint>
#include <memory>

namespace GeoCalc::ML {

/// A position in a projected system: an easting and a northing of one unit.
class TELLURION_EXPORT CProjectedPoint : public CSerializable {
public:
    enum Kind : std::int16_t {
        kPlain = 1,  ///< of the database's own, such as "PROJECTED_POINT_METERS"
        kEpsg = 2,   ///< with the axes of an EPSG coordinate system, such as "4400"
    };

    CProjectedPoint(Kind kind, const CLinearValue& east) : kind_(kind), east_(east) {}
    ~CProjectedPoint() override;

    /// The point of a code of the database's own; null for an unknown one.
    static std::unique_ptr<CProjectedPoint> Find(const Tellurion::BString& code);

    std::int16_t GetKind() const { return kind_; }
    /// Its unit is the point's.
    const CLinearValue& GetEast() const { return east_; }

private:
    std::int16_t kind_;
    CLinearValue east_;
};

}  // namespace GeoCalc::ML

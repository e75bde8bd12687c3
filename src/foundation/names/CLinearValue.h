#pragma once

#include <Tellurion/BLinearUnit.h>
#include <Tellurion/BSharedPtr.h>
#include <Tellurion/Export.h>

namespace GeoCalc::ML {

/// A length and its unit. A value type.
class TELLURION_EXPORT CLinearValue {
public:
    /// 0 metres.
    CLinearValue();
    /// `value` of `unit`, which is set.
    CLinearValue(double value, const Tellurion::BSharedPtr<Tellurion::BLinearUnit>& unit);

    double GetValue() const { return value_; }
    const Tellurion::BSharedPtr<Tellurion::BLinearUnit>& GetUnits() const { return unit_; }
    /// Tells the same length in another unit.
    void SetUnits(const Tellurion::BSharedPtr<Tellurion::BLinearUnit>& unit);

    /// The length in metres.
    double GetInternal() const;
    /// Changes the length and keeps the unit.
    void SetInternal(double metres);

private:
    double value_ = 0.0;
    Tellurion::BSharedPtr<Tellurion::BLinearUnit> unit_;
};

}  // namespace GeoCalc::ML

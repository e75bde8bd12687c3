#pragma once

#include <Tellurion/BUnit.h>

namespace Tellurion {

/// A unit of length.
class TELLURION_EXPORT BLinearUnit : public BUnit {
public:
    /// A unit that has no identifier.
    BLinearUnit(const BString& name, double metresPerUnit);
    ~BLinearUnit() override;

    /// How many of this unit make one metre.
    double GetUnitsPerMeter() const;

    /// As BUnit::GetUnit for lengths; empty for an unknown unit and for an angle.
    static BSharedPtr<BLinearUnit> GetLinearUnit(const BIdentifier& identifier);

private:
    friend struct UnitTable;
    explicit BLinearUnit(const Row& row);
};

}  // namespace Tellurion

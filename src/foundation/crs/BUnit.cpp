#include <Tellurion/BUnit.h>

#include "crs/Names.h"
#include "crs/UnitTable.h"

namespace Tellurion {

BUnit::BUnit(const BString& name, double basePerUnit, bool linear)
    : name_(name), units_per_base_(1.0 / basePerUnit), linear_(linear) {}

BUnit::BUnit(const Row& row)
    : row_(&row), name_(row.name), units_per_base_(row.UnitsPerBase()), linear_(row.linear) {}

BUnit::~BUnit() = default;

double BUnit::GetUnitsPerBase() const {
    return units_per_base_;
}

bool BUnit::IsLinear() const {
    return linear_;
}

BString BUnit::GetName() const {
    return name_;
}

BSharedPtr<BUnit> BUnit::GetUnit(const BIdentifier& identifier) {
    return UnitTable::Find(identifier);
}

bool BUnit::GetIdentifier(const BString& issuer, BIdentifier& out) const {
    if (!row_) return false;
    BString code;
    if (issuer == BString("EPSG") && row_->epsg != 0) code = BString::Format("%d", row_->epsg);
    if (issuer == BString("GC")) code = BString(FirstOf(row_->gc));
    if (code.IsEmpty()) return false;
    out = BIdentifier(issuer, code);
    return true;
}

BLinearUnit::BLinearUnit(const BString& name, double metresPerUnit) : BUnit(name, metresPerUnit, true) {}

BLinearUnit::BLinearUnit(const Row& row) : BUnit(row) {}

BLinearUnit::~BLinearUnit() = default;

double BLinearUnit::GetUnitsPerMeter() const {
    return GetUnitsPerBase();
}

BSharedPtr<BLinearUnit> BLinearUnit::GetLinearUnit(const BIdentifier& identifier) {
    return UnitTable::FindLinear(identifier);
}

}  // namespace Tellurion

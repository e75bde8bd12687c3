#include "names/CLinearValue.h"

#include <Tellurion/BIdentifier.h>

namespace GeoCalc::ML {

using Tellurion::BLinearUnit;
using Tellurion::BSharedPtr;

namespace {

const BSharedPtr<BLinearUnit>& Metres() {
    static const auto* const metres =
        new BSharedPtr<BLinearUnit>(BLinearUnit::GetLinearUnit({"GC", "METERS"}));
    return *metres;
}

}  // namespace

CLinearValue::CLinearValue() : unit_(Metres()) {}

CLinearValue::CLinearValue(double value, const BSharedPtr<BLinearUnit>& unit) : value_(value), unit_(unit) {}

void CLinearValue::SetUnits(const BSharedPtr<BLinearUnit>& unit) {
    // A label alone must not cost a digit.
    if (unit->GetUnitsPerMeter() != unit_->GetUnitsPerMeter())
        value_ = GetInternal() * unit->GetUnitsPerMeter();
    unit_ = unit;
}

double CLinearValue::GetInternal() const {
    return value_ / unit_->GetUnitsPerMeter();
}

void CLinearValue::SetInternal(double metres) {
    value_ = metres * unit_->GetUnitsPerMeter();
}

}  // namespace GeoCalc::ML

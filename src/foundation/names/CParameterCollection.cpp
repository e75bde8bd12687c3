#include "names/CParameterCollection.h"

#include <algorithm>

namespace GeoCalc {

using Tellurion::BString;

const CParameter* CParameterCollection::Find(std::string_view key) const {
    const auto found = std::ranges::find(parameters_, key, &CParameter::key);
    return found == parameters_.end() ? nullptr : &*found;
}

bool CParameterCollection::Exists(const BString& key) const {
    return Find(key.StdStr()) != nullptr;
}

ML::CLinearValue CParameterCollection::GetLinearValue(const BString& key) const {
    const CParameter* parameter = Find(key.StdStr());
    return parameter ? parameter->length : ML::CLinearValue();
}

void CParameterCollection::SetLinearValue(const BString& key, const ML::CLinearValue& value) {
    const auto found = std::ranges::find(parameters_, key.StdStr(), &CParameter::key);
    if (found == parameters_.end() || found->quantity != CParameter::Quantity::Length) return;
    found->length = value;
    ++changes_;
}

double CParameterCollection::GetNumber(std::string_view key, double missing) const {
    const CParameter* parameter = Find(key);
    if (!parameter) return missing;
    return parameter->quantity == CParameter::Quantity::Length ? parameter->length.GetInternal()
                                                               : parameter->value;
}

void CParameterCollection::SetUnits(const Tellurion::BSharedPtr<Tellurion::BLinearUnit>& unit) {
    for (CParameter& parameter : parameters_)
        if (parameter.quantity == CParameter::Quantity::Length) parameter.length.SetUnits(unit);
}

}  // namespace GeoCalc

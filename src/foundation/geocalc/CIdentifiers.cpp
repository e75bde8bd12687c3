#include "geocalc/CIdentifiers.h"

#include <algorithm>

namespace GeoCalc {

using Tellurion::BIdentifier;
using Tellurion::BString;

const BIdentifier* CIdentifiers::Find(const BString& issuer) const {
    const auto found = std::ranges::find(identifiers_, issuer, &BIdentifier::Issuer);
    return found == identifiers_.end() ? nullptr : &*found;
}

bool CIdentifiers::Exists(const BString& issuer) const {
    return Find(issuer) != nullptr;
}

BString CIdentifiers::GetCode(const BString& issuer) const {
    const BIdentifier* identifier = Find(issuer);
    return identifier ? identifier->Code : BString();
}

void CIdentifiers::Add(const BString& issuer, const BString& code) {
    identifiers_.emplace_back(issuer, code);
}

}  // namespace GeoCalc

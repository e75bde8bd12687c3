#pragma once

#include "CIdentifiers.h"

#include <Tellurion/BString.h>
#include <Tellurion/Export.h>

#include <cstdint>

namespace GeoCalc::DB {

/// An entry of the database that is the same as some object.
class TELLURION_EXPORT CEquivalent {
public:
    /// Bits of the status word.
    static constexpr std::uint16_t kDeprecated = 2;

    CEquivalent() = default;
    CEquivalent(const CIdentifiers& identifiers, std::uint16_t status)
        : identifiers_(identifiers), status_(status) {}

    /// Empty without one of the issuer; each entry has one of the database's own.
    Tellurion::BString GetIssuerCode(const Tellurion::BString& issuer) const {
        return identifiers_.GetCode(issuer);
    }
    std::uint16_t GetStatus() const { return status_; }

private:
    CIdentifiers identifiers_;
    std::uint16_t status_ = 0;
};

}  // namespace GeoCalc::DB

#pragma once

#include <Tellurion/BIdentifier.h>
#include <Tellurion/BString.h>
#include <Tellurion/Export.h>

#include <cstddef>
#include <vector>

namespace GeoCalc {

/// The issuer of the database's own codes.
inline constexpr char kValGc[] = "GC";

/// The codes of one object, by issuer, in the order of their adding.
class TELLURION_EXPORT CIdentifiers {
public:
    bool Exists(const Tellurion::BString& issuer) const;
    /// The issuer's first code; empty without one.
    Tellurion::BString GetCode(const Tellurion::BString& issuer) const;
    void Add(const Tellurion::BString& issuer, const Tellurion::BString& code);
    void RemoveAll() { identifiers_.clear(); }
    std::size_t Count() const { return identifiers_.size(); }

private:
    const Tellurion::BIdentifier* Find(const Tellurion::BString& issuer) const;

    std::vector<Tellurion::BIdentifier> identifiers_;
};

}  // namespace GeoCalc

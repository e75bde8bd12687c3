#pragma once

#include <Tellurion/BString.h>
#include <Tellurion/Export.h>

namespace Tellurion {

/// A code and who issued it: ("EPSG", "32633"), ("ERMapper", "NUTM33"), ("GC", "METERS").
class TELLURION_EXPORT BIdentifier {
public:
    BIdentifier() = default;
    BIdentifier(const BString& issuer, const BString& code) : Issuer(issuer), Code(code) {}  ///< of both
    BIdentifier(const BIdentifier&) = default;
    BIdentifier& operator=(const BIdentifier&) = default;
    virtual ~BIdentifier();

    BString Issuer;  ///< such as "EPSG"
    BString Code;    ///< such as "32633"
};

}  // namespace Tellurion

#pragma once

#include "CIdentifiers.h"

#include <Tellurion/BString.h>
#include <Tellurion/Export.h>

namespace GeoCalc {

/// What all objects of the database have: a name and identifiers. Not for use by two
/// threads at once.
class TELLURION_EXPORT CSerializable {
public:
    virtual ~CSerializable();

    const Tellurion::BString& GetName() const { return name_; }
    void SetName(const Tellurion::BString& name) { name_ = name; }
    CIdentifiers& GetIdentifiers() { return identifiers_; }
    const CIdentifiers& GetIdentifiers() const { return identifiers_; }

protected:
    CSerializable() = default;
    CSerializable(const CSerializable&) = default;
    CSerializable& operator=(const CSerializable&) = default;

private:
    Tellurion::BString name_;
    CIdentifiers identifiers_;
};

}  // namespace GeoCalc

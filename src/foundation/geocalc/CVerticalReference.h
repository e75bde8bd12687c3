#pragma once

#include "CSerializable.h"

#include <Tellurion/BString.h>
#include <Tellurion/Export.h>

#include <memory>
#include <optional>

namespace Tellurion {
class CoordSysDefinition;
}

namespace GeoCalc::CS::VR {

/// What heights count from.
class TELLURION_EXPORT CVerticalDatum : public CSerializable {
public:
    ~CVerticalDatum() override;

private:
    friend class CVerticalReference;
    CVerticalDatum(const Tellurion::BString& name, int epsg);
};

/// The vertical part of a coordinate system.
class TELLURION_EXPORT CVerticalReference : public CSerializable {
public:
    /// Of a compound system; null without a vertical part.
    static std::unique_ptr<CVerticalReference> Make(const Tellurion::CoordSysDefinition& definition);
    ~CVerticalReference() override;

    /// Null without one.
    const CVerticalDatum* GetVerticalDatum() const { return datum_ ? &*datum_ : nullptr; }

private:
    CVerticalReference(const Tellurion::BString& name, int epsg);

    std::optional<CVerticalDatum> datum_;
};

}  // namespace GeoCalc::CS::VR

#include "geocalc/CGeodeticCoordSys.h"

#include "crs/CoordSysDefinition.h"

#include <utility>

namespace GeoCalc::CS {
namespace {

/// The horizontal part of a compound system.
CCoordSys::Definition HorizontalOf(const CCoordSys::Definition& definition) {
    return definition->IsCompound() ? definition->Base() : definition;
}

}  // namespace

CGeodeticCoordSys::CGeodeticCoordSys(const Definition& definition)
    : CGeodeticCoordSys(definition, VR::CVerticalReference::Make(*definition)) {}

CGeodeticCoordSys::CGeodeticCoordSys(const Definition& definition,
                                     std::shared_ptr<const VR::CVerticalReference> vertical)
    : CCoordSys(definition), datum_(HorizontalOf(definition)), vertical_(std::move(vertical)) {}

CGeodeticCoordSys::~CGeodeticCoordSys() = default;

std::unique_ptr<CCoordSys> CGeodeticCoordSys::Clone() const {
    return std::make_unique<CGeodeticCoordSys>(*this);
}

CCoordSys::Definition CGeodeticCoordSys::GetDefinition() const {
    const bool moved = datum_.GetGeodetic() != HorizontalOf(GetOriginal());
    return moved ? datum_.GetGeodetic() : CCoordSys::GetDefinition();
}

}  // namespace GeoCalc::CS

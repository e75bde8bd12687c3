#include "geocalc/CCoordSys.h"

#include "coordsys/CoordSysDefinition.h"
#include "geocalc/CGeodeticCoordSys.h"
#include "geocalc/CProjectedCoordSys.h"

namespace GeoCalc::CS {

using Tellurion::BString;
using Tellurion::CoordSysDefinition;

CCoordSys::CCoordSys(Definition definition) : definition_(std::move(definition)) {
    SetName(definition_->Name());
    GetIdentifiers().Add(kValGc, definition_->Name());
    const int number = definition_->EpsgNumber();
    if (number != 0) GetIdentifiers().Add("EPSG", BString::Format("%d", number));
}

CCoordSys::~CCoordSys() = default;
CGeodeticCoordSys::~CGeodeticCoordSys() = default;
CProjectedCoordSys::~CProjectedCoordSys() = default;

std::unique_ptr<CCoordSys> CCoordSys::Make(const Definition& definition) {
    switch (definition->GetKind()) {
        case CoordSysDefinition::Kind::Geodetic:
            return std::unique_ptr<CCoordSys>(new CGeodeticCoordSys(definition));
        case CoordSysDefinition::Kind::Projected:
            return std::unique_ptr<CCoordSys>(new CProjectedCoordSys(definition));
        default:
            return std::unique_ptr<CCoordSys>(new CCoordSys(definition));
    }
}

std::unique_ptr<CCoordSys> CCoordSys::Clone() const {
    return std::unique_ptr<CCoordSys>(new CCoordSys(*this));
}

std::unique_ptr<CCoordSys> CGeodeticCoordSys::Clone() const {
    return std::unique_ptr<CCoordSys>(new CGeodeticCoordSys(*this));
}

std::unique_ptr<CCoordSys> CProjectedCoordSys::Clone() const {
    return std::unique_ptr<CCoordSys>(new CProjectedCoordSys(*this));
}

}  // namespace GeoCalc::CS

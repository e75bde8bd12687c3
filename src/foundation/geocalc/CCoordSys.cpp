#include "geocalc/CCoordSys.h"

#include "crs/CoordSysDefinition.h"
#include "geocalc/CGeodeticCoordSys.h"
#include "geocalc/CProjectedCoordSys.h"
#include "names/ErMapperSystems.h"

namespace GeoCalc::CS {

using Tellurion::BString;
using Tellurion::CoordSysDefinition;

CCoordSys::CCoordSys(const Definition& definition) : original_(definition) {
    SetName(definition->Name());
    GetIdentifiers().Add(kValGc, DB::OwnCodeOf(*definition));
    const int number = definition->EpsgNumber();
    if (number != 0) GetIdentifiers().Add("EPSG", BString::Format("%d", number));
}

CCoordSys::CCoordSys(const CCoordSys& other) : CSerializable(other), maker_(other.maker_) {
    const std::lock_guard lock(other.mutex_);
    original_ = other.original_;
    named_ = other.named_;
}

CCoordSys::~CCoordSys() = default;

std::unique_ptr<CCoordSys> CCoordSys::Make(const Definition& definition) {
    switch (definition->GetKind()) {
        case CoordSysDefinition::Kind::Geodetic:
            return std::make_unique<CGeodeticCoordSys>(definition);
        case CoordSysDefinition::Kind::Projected:
            return std::make_unique<CProjectedCoordSys>(definition);
        default:
            return std::unique_ptr<CCoordSys>(new CCoordSys(definition));
    }
}

std::unique_ptr<CCoordSys> CCoordSys::Clone() const {
    return std::unique_ptr<CCoordSys>(new CCoordSys(*this));
}

const CCoordSys::Definition& CCoordSys::GetOriginal() const {
    const std::lock_guard lock(mutex_);
    if (!original_) original_ = maker_();
    return original_;
}

CCoordSys::Definition CCoordSys::GetDefinition() const {
    return Named(GetOriginal());
}

CCoordSys::Definition CCoordSys::Named(Definition definition) const {
    if (definition->Name() == GetName()) return definition;
    const std::lock_guard lock(mutex_);
    if (!named_ || named_->Name() != GetName()) named_ = definition->Renamed(GetName());
    return named_ ? named_ : definition;
}

}  // namespace GeoCalc::CS

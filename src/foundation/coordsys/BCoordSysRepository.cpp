#include <Tellurion/BCoordSysRepository.h>

#include "coordsys/DefinitionCaches.h"
#include "coordsys/MapInfoClause.h"
#include "coordsys/MapInfoSystem.h"
#include "coordsys/PlainNames.h"
#include "geocalc/CDataSource.h"

#include <Tellurion/BCoordSysException.h>
#include <Tellurion/BFile.h>

#include <string>

namespace Tellurion {
namespace {

BCoordSys* Wrap(CoordSysDefinition::Ptr definition) {
    return definition ? new BCoordSys(std::move(definition)) : nullptr;
}

}  // namespace

BCoordSysRepository* BCoordSysRepository::Instance() {
    static BCoordSysRepository instance;
    return &instance;
}

BCoordSys* BCoordSysRepository::ReadCoordSysFromWKTString(const BString& wkt) {
    return BCoordSys::FromWKT(wkt);
}

BCoordSys* BCoordSysRepository::ReadCoordSysFromPlainTextStrings(const BString& projection,
                                                                 const BString& datum, const BString& units) {
    const BString key = projection + BString("\n") + datum + BString("\n") + units;
    return Wrap(DefinitionCaches::Instance().plain_names.Get(key.GetUnits(), [&] {
        return FindByPlainNames(projection.StdStr(), datum.StdStr(), units.StdStr());
    }));
}

BCoordSys* BCoordSysRepository::ReadCoordSysFromFile(const BString& path) {
    BFile file(path);
    if (!file.Open(EFileMode::Read, EFileMode::Text)) return nullptr;
    const MapInfoClause clause = ReadMapInfoClause(file);
    if (!clause.found) return nullptr;
    const CoordSysDefinition::Ptr definition = clause.fault.empty() ? FindByMapInfo(clause.text) : nullptr;
    if (definition) return Wrap(definition);
    throw BCoordSysException("The coordinate system cannot be read.",
                             "BCoordSysRepository::ReadCoordSysFromFile",
                             BString::Format("%s: CoordSys clause: %s", path, clause.fault));
}

BString BCoordSysRepository::WriteCoordSysToMIFString(const BCoordSys& coordSys) {
    const std::string clause = MapInfoTextOf(*coordSys.GetDefinition());
    return clause.empty() ? BString() : BString("CoordSys " + clause);
}

BCoordSys* BCoordSysRepository::GetCoordSys(const BIdentifier& identifier) {
    if (identifier.Issuer == BString("EPSG")) return BCoordSys::FromEPSGCode(identifier.Code);
    return Wrap(GetDSInstance()->Find(identifier.Issuer, identifier.Code));
}

const GeoCalc::DB::CDataSource* BCoordSysRepository::GetDSInstance() const {
    return &GeoCalc::DB::CDataSource::Instance();
}

void* BCoordSysRepository::GetDSInstancePtr() {
    return &GeoCalc::DB::CDataSource::Instance();
}

}  // namespace Tellurion

#include <Tellurion/BCoordSysRepository.h>

#include "coordsys/PlainNames.h"
#include "crs/DefinitionCaches.h"
#include "crs/Names.h"
#include "geocalc/CDataSource.h"
#include "names/ErMapperSystems.h"
#include "names/MapInfoClause.h"
#include "names/MapInfoSystem.h"
#include "names/MapInfoWriter.h"

#include <Tellurion/BCoordSysException.h>
#include <Tellurion/BFile.h>

#include <string>
#include <string_view>
#include <utility>

namespace Tellurion {
namespace {

BCoordSys* Wrap(CoordSysDefinition::Ptr definition) {
    return definition ? new BCoordSys(std::move(definition)) : nullptr;
}

/// The system of a clause; throws for one without a system, after `place`.
BCoordSys* WrapClause(const MapInfoClause& clause, const char* source, const BString& place) {
    const CoordSysDefinition::Ptr definition =
        clause.fault.empty() ? FindByMapInfo(clause.terms) : CoordSysDefinition::Ptr();
    if (definition) return Wrap(definition);
    throw BCoordSysException(
        "The coordinate system cannot be read.", source,
        BString::Format("%sCoordSys clause: %s", place,
                        clause.fault.empty() ? "the system cannot be made" : clause.fault.c_str()));
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
    return WrapClause(clause, "BCoordSysRepository::ReadCoordSysFromFile", path + BString(": "));
}

BCoordSys* BCoordSysRepository::ReadCoordSysFromMIFString(const BString& clause) {
    constexpr std::string_view kStart = "coordsys";
    std::string text = clause.StdStr();
    text.erase(0, text.find_first_not_of(" \t\r\n"));
    if (LowerAscii(text).starts_with(kStart)) text.erase(0, kStart.size());
    return WrapClause(ParseMapInfoClause(text), "BCoordSysRepository::ReadCoordSysFromMIFString", BString());
}

bool BCoordSysRepository::WriteCoordSysToERMapperNames(const BCoordSys& coordSys, BString& projection,
                                                       BString& datum) const {
    BIdentifier identifier;
    if (!coordSys.GetDatumIdentifier(GeoCalc::DB::kErMapper, identifier)) return false;
    BString name("GEODETIC");
    if (coordSys.GetKind() == BCoordSys::kKindProjected) {
        const GeoCalc::CS::CProjectedCoordSys object(coordSys.GetDefinition());
        name = GetDSInstance()->FindERMapperName(std::as_const(object).GetProjection());
    }
    if (name.IsEmpty()) return false;
    projection = name;
    datum = identifier.Code;
    return true;
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

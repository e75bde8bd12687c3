#include "coordsys/MapInfoSystem.h"

#include "coordsys/DefinitionCaches.h"
#include "coordsys/Identification.h"
#include "coordsys/OgrTexts.h"

namespace Tellurion {
namespace {

CoordSysDefinition::Ptr ReadClause(const std::string& clause) {
    return CoordSysDefinition::FromWkt(BString(WktOfMapInfo(clause)));
}

/// Whether a clause that was written says the system it was written for.
bool SaysTheSame(const std::string& clause, const CoordSysDefinition& system) {
    const CoordSysDefinition::Ptr read = ReadClause(clause);
    if (!read || read->GetKind() != system.GetKind()) return false;
    return IsSamePlacement(read->CloneHorizontal().get(), system.CloneHorizontal().get());
}

}  // namespace

CoordSysDefinition::Ptr FindByMapInfo(const std::string& clause) {
    return DefinitionCaches::Instance().map_info_clauses.Get(BString(clause).GetUnits(),
                                                             [&] { return ReadClause(clause); });
}

std::string MapInfoTextOf(const CoordSysDefinition& system) {
    const std::string wkt = system.Wkt().StdStr();
    const bool local = wkt.starts_with("LOCAL_CS[");
    if (wkt.empty() || (system.GetKind() == CoordSysDefinition::Kind::Other && !local)) return {};
    const std::string clause = MapInfoOfWkt(wkt);
    if (local) return clause.starts_with("NonEarth ") ? clause : std::string();
    return clause.starts_with("Earth ") && SaysTheSame(clause, system) ? clause : std::string();
}

}  // namespace Tellurion

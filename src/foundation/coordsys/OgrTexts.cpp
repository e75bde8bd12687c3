#include "coordsys/OgrTexts.h"

#include "coordsys/QuietGdal.h"

#include <cpl_conv.h>
#include <cpl_string.h>
#include <ogr_spatialref.h>

#include <memory>

namespace Tellurion {
namespace {

struct CplDeleter {
    void operator()(char* text) const noexcept { CPLFree(text); }
};
using CplText = std::unique_ptr<char, CplDeleter>;

std::string ToWkt2(const OGRSpatialReference& system) {
    const char* const options[] = {"FORMAT=WKT2_2019", nullptr};
    char* text = nullptr;
    const OGRErr failed = system.exportToWkt(&text, options);
    const CplText owner(text);
    return failed == OGRERR_NONE && text ? std::string(text) : std::string();
}

}  // namespace

std::string WktOfArcInfo(const std::vector<std::string>& lines) {
    const QuietGdal quiet;
    CPLStringList list;
    for (const std::string& line : lines)
        list.AddString(line.c_str());
    OGRSpatialReference system;
    return system.importFromESRI(list.List()) == OGRERR_NONE ? ToWkt2(system) : std::string();
}

/// OGR knows some projections by their angles alone: it states an EPSG code for them and
/// takes the false origin for metres, whatever the clause says. Read in metres no number
/// is converted; a unit that is set afterwards leaves them as they are and drops the code.
std::string WktOfMapInfo(const std::string& clause) {
    const QuietGdal quiet;
    OGRSpatialReference system;
    if (system.importFromMICoordSys(clause.c_str()) != OGRERR_NONE) return {};
    const std::size_t open = clause.find('"');
    const std::size_t close = clause.find('"', open + 1);
    if (!system.IsProjected() || close == std::string::npos) return ToWkt2(system);
    const char* unit = nullptr;
    const double metres = system.GetLinearUnits(&unit);
    OGRSpatialReference plain;
    const std::string in_metres = clause.substr(0, open) + "\"m" + clause.substr(close);
    if (plain.importFromMICoordSys(in_metres.c_str()) != OGRERR_NONE ||
        plain.SetLinearUnits(unit, metres) != OGRERR_NONE)
        return {};
    return ToWkt2(plain);
}

std::string MapInfoOfWkt(const std::string& wkt) {
    const QuietGdal quiet;
    OGRSpatialReference system;
    if (system.importFromWkt(wkt.c_str()) != OGRERR_NONE) return {};
    char* text = nullptr;
    const OGRErr failed = system.exportToMICoordSys(&text);
    const CplText owner(text);
    return failed == OGRERR_NONE && text ? std::string(text) : std::string();
}

std::string WktOfErMapperName(const std::string& name) {
    const QuietGdal quiet;
    OGRSpatialReference system;
    const bool known = system.importFromDict("ecw_cs.wkt", name.c_str()) == OGRERR_NONE;
    return known ? ToWkt2(system) : std::string();
}

}  // namespace Tellurion

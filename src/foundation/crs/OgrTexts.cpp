#include "crs/OgrTexts.h"

#include "crs/QuietGdal.h"

#include <cpl_conv.h>
#include <cpl_string.h>
#include <ogr_spatialref.h>
#include <ogr_srs_api.h>

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

std::string WktOfErMapperName(const std::string& name) {
    const QuietGdal quiet;
    OGRSpatialReference system;
    const bool known = system.importFromDict("ecw_cs.wkt", name.c_str()) == OGRERR_NONE;
    return known ? ToWkt2(system) : std::string();
}

bool MakeProjContextOfGdal() {
    static_cast<void>(OSRGetPROJEnableNetwork());
    return true;
}

}  // namespace Tellurion

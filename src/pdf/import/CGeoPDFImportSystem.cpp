// The coordinate system of an LGIDict: datum, projection and units through OGR.

#include "import/CGeoPDFImport.h"

#include "import/LGINumbers.h"
#include "import/LGIProjectionMapping.h"
#include "import/OgrSystem.h"

#include <Tellurion/LruCache.h>
#include <Tellurion/QuietGdal.h>

#include <cpl_conv.h>

#include <limits>
#include <memory>

namespace VellumLib {
namespace {

struct CplDeleter {
    void operator()(char* text) const noexcept { CPLFree(text); }
};

std::string ExportToWkt(OGRSpatialReference& srs) {
    char* text = nullptr;
    OSRExportToWkt(HandleOf(srs), &text);
    const std::unique_ptr<char, CplDeleter> owner(text);
    return text ? text : "";
}

/// A unit of the dialect that is not the metre; without a name for any other text.
struct FootUnit {
    const char* name = nullptr;
    double metres = 0.0;

    static FootUnit Of(const std::string& code) {
        if (code == "USSF") return {"Foot_US", 0.3048006096012192};
        if (code == "FT") return {"Foot (International)", 0.3048};
        return {};
    }
};

/// The projection's parameters as one text. Lengths stand before the values, so that
/// no value can pass for a neighbour.
std::string CacheKey(const std::map<int, std::string>& parameters) {
    std::string key;
    for (const auto& [number, value] : parameters)
        if (!value.empty())
            key += std::to_string(number) + ' ' + std::to_string(value.size()) + ' ' + value + ' ';
    return key;
}

Tellurion::LruCache<std::string, std::string>& SystemTexts() {
    constexpr std::size_t kMaxTexts = 64;
    static Tellurion::LruCache<std::string, std::string> cache(kMaxTexts);
    return cache;
}

}  // namespace

std::string CGeoPDFImport::BuildWKT() {
    std::string text = SystemTexts().Get(CacheKey(Parameters), [this] {
        const Tellurion::QuietGdal quiet;
        const OgrSystem srs = MakeOgrSystem();
        ApplyDatum(*srs);
        ApplyProjection(*srs);
        AmendSystem(*srs);
        return ExportToWkt(*srs);
    });
    ScaleCTM();
    return text;
}

void CGeoPDFImport::ApplyDatum(OGRSpatialReference& srs) {
    const std::string& datum = Parameters[kDatum];
    const std::string code = datum.substr(0, datum.find('-'));
    if (code.empty()) return;
    const auto found = Datums.find(code);
    if (found != Datums.end()) OSRImportFromEPSG(HandleOf(srs), found->second.EPSG);
}

std::int32_t CGeoPDFImport::ProjectionId() {
    const auto found = Projections.find(Parameters[kProjectionType]);
    return found == Projections.end() ? CLGIProjection::kUnknownId : found->second.Id;
}

void CGeoPDFImport::ApplyProjection(OGRSpatialReference& srs) {
    switch (const std::int32_t id = ProjectionId()) {
        case CLGIProjection::kNoProjection:
            return;
        case CLGIProjection::kUTM:
            OSRSetUTM(HandleOf(srs), LGIInteger(Parameters[kZone]), Parameters[kHemisphere] == "N");
            return;
        case CLGIProjection::kStatePlane:
            return ApplyStatePlane(srs);
        default:
            OSRSetProjCS(HandleOf(srs),
                         SetLGIProjection(srs, id, [this](LGIParameter number) -> const std::string& {
                             return Parameters[number];
                         }).c_str());
            ApplyLinearUnits(srs);
            ApplyFalseOrigin(srs);
    }
}

void CGeoPDFImport::ApplyStatePlane(OGRSpatialReference& srs) {
    // NAD83 whatever the datum says, "NAS" included.
    constexpr int kNad83 = 1;
    constexpr int kOtherZones = 10000;
    const int zone = LGIInteger(Parameters[kZone]);
    const FootUnit unit = FootUnit::Of(Parameters[kUnits]);
    if (OSRSetStatePlaneWithUnits(HandleOf(srs), zone, kNad83, unit.name, unit.metres) != OGRERR_NONE &&
        zone <= std::numeric_limits<int>::max() - kOtherZones)
        OSRSetStatePlaneWithUnits(HandleOf(srs), zone + kOtherZones, kNad83, unit.name, unit.metres);
    OSRSetProjCS(HandleOf(srs), "State Plane 83");
    ApplyFalseOrigin(srs);
}

void CGeoPDFImport::ApplyLinearUnits(OGRSpatialReference& srs) {
    const FootUnit unit = FootUnit::Of(Parameters[kUnits]);
    if (unit.name) {
        OSRSetLinearUnits(HandleOf(srs), unit.name, unit.metres);
    } else {
        OSRSetLinearUnits(HandleOf(srs), "Meter", 1.0);
    }
}

void CGeoPDFImport::ApplyFalseOrigin(OGRSpatialReference& srs) {
    if (const std::string& easting = Parameters[kFalseEasting]; !easting.empty())
        OSRSetNormProjParm(HandleOf(srs), "false_easting", LGIReal(easting));
    if (const std::string& northing = Parameters[kFalseNorthing]; !northing.empty())
        OSRSetNormProjParm(HandleOf(srs), "false_northing", LGIReal(northing));
}

/// The matrix counts as metres; the system may be in feet. A geographic system and UTM
/// leave it alone.
void CGeoPDFImport::ScaleCTM() {
    const std::int32_t id = ProjectionId();
    if (id == CLGIProjection::kNoProjection || id == CLGIProjection::kUTM) return;
    const FootUnit unit = FootUnit::Of(Parameters[kUnits]);
    if (!unit.name) return;
    constexpr std::size_t kTerms = 6;
    for (std::size_t i = 0; i < CTM.size() && i < kTerms; ++i)
        CTM[i] /= unit.metres;
}

}  // namespace VellumLib

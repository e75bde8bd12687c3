#include "lookups/CoordSysLookups.h"

#include <GeoCalc/CGeodeticCoordSys.h>
#include <GeoCalc/CProjectedCoordSys.h>
#include <GeoCalc/CVerticalReference.h>
#include <Tellurion/BLinearUnit.h>
#include <Tellurion/Numbers.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

namespace MapAnchor {

using GeoCalc::CS::CGeodeticCoordSys;
using GeoCalc::CS::CProjectedCoordSys;
using GeoCalc::CS::VR::CVerticalDatum;
using GeoCalc::CS::VR::CVerticalReference;
using Tellurion::BCoordSys;
using Tellurion::BGeoReference;
using Tellurion::BIdentifier;
using Tellurion::BLinearUnit;
using Tellurion::BSharedPtr;
using Tellurion::BString;

namespace {

/// asctime without its static buffer, and with two digits for the day; empty for a
/// time that it cannot tell.
std::string AscTime(const std::tm* time) {
    constexpr std::size_t kDay = 8;
    std::array<char, 64> buffer{};
    if (!time || !asctime_r(time, buffer.data())) return {};
    if (buffer[kDay] == ' ') buffer[kDay] = '0';
    return buffer.data();
}

int Fold(char c) {
    const int code = static_cast<unsigned char>(c);
    return code >= 'A' && code <= 'Z' ? code - 'A' + 'a' : code;
}

BString Authority(const BString& epsg) {
    return BString(",AUTHORITY[\"EPSG\",\"") + epsg + BString("\"]");
}

BString UnitClause(const BLinearUnit& unit) {
    BString clause = BString("UNIT[\"") + unit.GetName() + BString("\",") +
                     BString(Tellurion::PrintShortest(1.0 / unit.GetUnitsPerMeter()));
    BIdentifier identifier;
    if (unit.GetIdentifier("EPSG", identifier)) clause += Authority(identifier.Code);
    return clause + BString("]");
}

BString Authority(const GeoCalc::CSerializable& object) {
    const auto& identifiers = object.GetIdentifiers();
    return identifiers.Exists("EPSG") ? Authority(identifiers.GetCode("EPSG")) : BString();
}

/// The geodetic system that a system is or is based on; null for other kinds.
const CGeodeticCoordSys* GeodeticOf(const BCoordSys& system) {
    const auto* object = system.GetGCCoordSys();
    if (const auto* projected = dynamic_cast<const CProjectedCoordSys*>(object))
        return &projected->GetGeodeticCoordSys();
    return dynamic_cast<const CGeodeticCoordSys*>(object);
}

BString WithVertical(const BString& wkt, const BCoordSys& system, const CVerticalReference& vertical) {
    const CVerticalDatum* datum = vertical.GetVerticalDatum();
    const BSharedPtr<BLinearUnit> unit = system.GetVerticalUnits();
    if (!datum || !unit) return wkt;
    return BString("COMPD_CS[\"") + system.GetName() + BString("\",") + wkt + BString(",VERT_CS[\"") +
           vertical.GetName() + BString("\",VERT_DATUM[\"") + datum->GetName() + BString("\"") +
           Authority(*datum) + BString("],") + UnitClause(*unit) + BString(",AXIS[\"Up\",UP]") +
           Authority(vertical) + BString("]]");
}

/// The word Vertical is outside the quotes; readers of these texts expect it there.
BString WithUnknownVertical(const BString& wkt, const BString& name, const BLinearUnit& unit) {
    return BString("COMPD_CS[Vertical \"") + name + BString("\",") + wkt +
           BString(",VERT_CS[\"unknown\",VERT_DATUM[\"unknown\"],") + UnitClause(unit) +
           BString(",AXIS[\"Up\",UP]]]");
}

/// Version 2 names its systems so; the texts above are of version 1 and go together with that.
bool IsVersion2(const BString& wkt) {
    const std::string text = wkt.StdStr();
    return text.substr(0, text.find('[')).ends_with("CRS");
}

BString WithUnknownVertical2(const BString& wkt, const BString& name, const BLinearUnit& unit) {
    BIdentifier identifier;
    BString length = BString("LENGTHUNIT[\"") + unit.GetName() + BString("\",") +
                     BString(Tellurion::PrintShortest(1.0 / unit.GetUnitsPerMeter()));
    if (unit.GetIdentifier("EPSG", identifier))
        length += BString(",ID[\"EPSG\",") + identifier.Code + BString("]");
    return BString("COMPOUNDCRS[\"") + name + BString("\",") + wkt +
           BString(",VERTCRS[\"unknown\",VDATUM[\"unknown\"],CS[vertical,1],AXIS[\"up\",up],") + length +
           BString("]]]");
}

BString CompoundText(const BGeoReference& reference) {
    const BCoordSys& system = *reference.CoordSys;
    BString wkt = system.ToWKT();
    if (wkt.IsEmpty()) return wkt;
    const CGeodeticCoordSys* geodetic = GeodeticOf(system);
    if (!geodetic) return wkt;
    const CVerticalReference* vertical = geodetic->GetVerticalReference();
    if (vertical) return IsVersion2(wkt) ? system.ToWKT2() : WithVertical(wkt, system, *vertical);
    if (system.GetVerticalUnits()) return system.ToWholeWKT();  // heights above the ellipsoid
    if (!reference.HasVerticalUnit()) return wkt;
    const BLinearUnit& unit = *reference.GetVerticalUnit();
    return IsVersion2(wkt) ? WithUnknownVertical2(wkt, system.GetName(), unit)
                           : WithUnknownVertical(wkt, system.GetName(), unit);
}

}  // namespace

bool FormatERSTimeStamp(const std::tm* time, char* out, int limit) {
    if (!out) return false;
    const std::string stamp = AscTime(time);
    const std::size_t blank = stamp.rfind(' ');
    if (blank == std::string::npos || blank == 0) return false;
    std::string zoned = stamp.substr(0, blank) + " GMT" + stamp.substr(blank);
    const auto most = static_cast<std::size_t>(std::max(limit, 0));
    if (stamp.size() > most) zoned.resize(most);
    std::memcpy(out, zoned.c_str(), zoned.size() + 1);
    return true;
}

int CompareNoCase(const char* a, const char* b, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const int difference = Fold(a[i]) - Fold(b[i]);
        if (difference != 0 || a[i] == '\0') return difference;
    }
    return 0;
}

BString BuildCompoundWKT(const BGeoReference& reference) {
    constexpr const char* kMetadata = "COORDINATEMETADATA[";
    if (!reference.HasCoordSys()) return {};
    const BString text = CompoundText(reference);
    const double epoch = reference.CoordSys->GetCoordinateEpoch();
    if (epoch == 0.0 || text.IsEmpty() || text.StartsWith(kMetadata)) return text;
    return BString(kMetadata) + text + BString(",EPOCH[" + Tellurion::PrintShortest(epoch) + "]]");
}

}  // namespace MapAnchor

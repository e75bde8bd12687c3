#include "lookups/CoordSysLookups.h"

#include <GeoCalc/CDataSource.h>
#include <Tellurion/BCoordSysRepository.h>
#include <Tellurion/BUnit.h>

#include <cmath>
#include <memory>

namespace MapAnchor {

using GeoCalc::kValGc;
using GeoCalc::CS::CProjectedCoordSys;
using GeoCalc::DB::CDataSource;
using GeoCalc::ML::CLinearValue;
using GeoCalc::ML::CProjectedPoint;
using Tellurion::BCoordSys;
using Tellurion::BCoordSysRepository;
using Tellurion::BIdentifier;
using Tellurion::BSharedPtr;
using Tellurion::BString;

namespace {

constexpr const char* kErMapper = "ERMapper";

// Unit codes of the callers; all others ask for no change.
constexpr int kMetres = 1;
constexpr int kUsFeet = 3;

/// What is asked for: the datum in capitals, empty for none.
struct Wanted {
    BString datum;
    int units = 0;
};

BString Upper(BString text) {
    return text.ToUpper();
}

BSharedPtr<BCoordSys> GetSystem(const BString& issuer, const BString& code) {
    BCoordSys* system = BCoordSysRepository::Instance()->GetCoordSys({issuer, code});
    return system ? BSharedPtr<BCoordSys>(system) : BSharedPtr<BCoordSys>();
}

BSharedPtr<BCoordSys> GetSystemInAnyCase(const BString& code) {
    const BSharedPtr<BCoordSys> found = GetSystem(kErMapper, code);
    return found ? found : GetSystem(kErMapper, Upper(code));
}

BSharedPtr<BCoordSys> FindGeodetic(const BString& datum) {
    BCoordSys* plain =
        BCoordSysRepository::Instance()->ReadCoordSysFromPlainTextStrings("LAT-LONG", Upper(datum), "METERS");
    return plain ? BSharedPtr<BCoordSys>(plain) : GetSystemInAnyCase(datum);
}

bool CutEnd(BString& text, const char* end) {
    if (!text.EndsWith(end)) return false;
    text = text.Left(text.GetLength() - BString(end).GetLength());
    return true;
}

/// The grids of NAD83 have names in metres; XYZF83 and XYZFT83 are XYZM in feet.
BSharedPtr<BCoordSys> FindNad83Form(BString name, Wanted& wanted) {
    if (!CutEnd(name, "83")) return {};
    if (CutEnd(name, "F") || CutEnd(name, "FT")) {
        name += "M";
        wanted.units = kUsFeet;
    }
    BSharedPtr<BCoordSys> found = GetSystem(kErMapper, name);
    if (found) wanted.datum = "NAD83";
    return found;
}

/// The code of the point whose positions are in the wanted unit; empty when the
/// system does already, or none is wanted.
BString WantedPoint(const CProjectedCoordSys& system, double units_per_metre, int units) {
    constexpr double kUsFeetPerMetre = 3.2808333333333;
    constexpr double kSameUnit = 1e-07;
    const bool epsg = system.GetProjectedPoint().GetKind() == CProjectedPoint::kEpsg;
    if (units == kMetres && std::fabs(units_per_metre - 1.0) >= kSameUnit)
        return epsg ? "4400" : "PROJECTED_POINT_METERS";
    if (units == kUsFeet && std::fabs(units_per_metre - kUsFeetPerMetre) >= kSameUnit)
        return epsg ? "4497" : "PROJECTED_POINT_USFEET";
    return {};
}

/// False easting and northing keep their length on the ground.
void RelabelFalseOrigin(CProjectedCoordSys& system, const CProjectedPoint& point) {
    GeoCalc::CParameterCollection& parameters = system.GetProjection().GetParameters();
    if (parameters.Count() == 0) return;
    for (const char* key : {GeoCalc::kValFalseEasting, GeoCalc::kValFalseNorthing}) {
        if (!parameters.Exists(key)) continue;
        CLinearValue value;
        value.SetUnits(point.GetEast().GetUnits());
        value.SetInternal(parameters.GetLinearValue(key).GetInternal());
        parameters.SetLinearValue(key, value);
    }
}

/// True when the system changed.
bool AdjustUnit(CProjectedCoordSys& system, double units_per_metre, int units) {
    const BString code = WantedPoint(system, units_per_metre, units);
    if (code.IsEmpty()) return false;
    const std::unique_ptr<CProjectedPoint> point = CDataSource::Instance().GetProjectedPoint(kValGc, code);
    system.SetProjectedPoint(*point);
    RelabelFalseOrigin(system, *point);
    return true;
}

/// True when the system is on the wanted datum afterwards.
bool AdjustDatum(CProjectedCoordSys& system, const BString& datum) {
    if (datum.IsEmpty()) return false;
    GeoCalc::CS::CHorizontalDatum& present = *system.GetHorizontalDatum();
    const auto& identifiers = present.GetIdentifiers();
    if (identifiers.Exists(kErMapper) && identifiers.GetCode(kErMapper) == datum) return true;
    const CDataSource& source = CDataSource::Instance();
    if (const auto geodetic = source.GetGeodeticCoordSysNonThrow(kErMapper, datum)) {
        system.SetGeodeticCoordSys(*geodetic);
        return true;
    }
    const auto horizontal = source.GetHorizontalDatumNonThrow(kErMapper, datum);
    if (horizontal) present = *horizontal;
    return horizontal != nullptr;
}

/// The database's own entry for a system that was changed; a new one is stored as `name`.
BSharedPtr<BCoordSys> FindAgain(const BSharedPtr<BCoordSys>& held, CProjectedCoordSys& object,
                                const BString& name) {
    CDataSource& source = CDataSource::Instance();
    object.GetIdentifiers().RemoveAll();
    const BString known = source.FindPreferredCode(object);
    if (!known.IsEmpty()) return GetSystem(kValGc, known);
    const BString full_name = name + BString(" ") + held->GetUnits()->GetName();
    object.SetName(full_name);
    object.GetIdentifiers().Add(kValGc, full_name);
    source.PutSerializable(CDataSource::kProjectedCoordSys, object, true, true);
    return held;
}

}  // namespace

BSharedPtr<BCoordSys> FindERMapperCoordSys(const BString& projection, const BString& datum,
                                           const int& units) {
    if (projection.IsEmpty()) return {};
    if (projection == BString("GEODETIC")) return FindGeodetic(datum);
    Wanted wanted{Upper(datum), units};
    BSharedPtr<BCoordSys> system = GetSystemInAnyCase(projection);
    if (!system) system = FindNad83Form(projection, wanted);
    if (!system || system->GetKind() != BCoordSys::kKindProjected) return system;
    auto& object = dynamic_cast<CProjectedCoordSys&>(*system->GetGCCoordSys());
    const bool changed = AdjustUnit(object, system->GetUnits()->GetUnitsPerBase(), wanted.units);
    const bool on_datum = AdjustDatum(object, wanted.datum);
    if (!changed && !on_datum) return system;
    return FindAgain(system, object, BString("ERMapper ") + projection + BString(" ") + datum);
}

bool GetERMapperProjectionName(BString& name, const BSharedPtr<BCoordSys>& coordSys) {
    if (!coordSys) return false;
    if (coordSys->GetKind() != BCoordSys::kKindProjected) {
        BIdentifier identifier;
        if (!coordSys->GetDatumIdentifier(kErMapper, identifier)) return false;
        name = identifier.Code;
        return true;
    }
    const auto& object = dynamic_cast<const CProjectedCoordSys&>(*coordSys->GetGCCoordSys());
    const BString found = CDataSource::Instance().FindERMapperName(object.GetProjection());
    if (found.IsEmpty()) return false;
    name = found;
    return true;
}

}  // namespace MapAnchor

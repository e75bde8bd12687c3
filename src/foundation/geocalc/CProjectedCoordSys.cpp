#include "geocalc/CProjectedCoordSys.h"

#include "crs/CoordSysDefinition.h"
#include "names/ProjectionSource.h"

#include <Tellurion/BIdentifier.h>

#include <proj_experimental.h>

#include <utility>

namespace GeoCalc::CS {

using Tellurion::BIdentifier;
using Tellurion::BLinearUnit;
using Tellurion::CoordSysDefinition;
namespace Proj = Tellurion::Proj;

namespace {

/// The geodetic system below a projected one, whose vertical part goes with it.
CGeodeticCoordSys GeodeticOf(const CCoordSys::Definition& projected) {
    CCoordSys::Definition base = projected->Base();
    if (projected->IsCompound()) base = base->Base();
    return {base, VR::CVerticalReference::Make(*projected)};
}

ML::CProjectedPoint PointOf(const CoordSysDefinition& definition) {
    const auto kind = definition.EpsgNumber() != 0 ? ML::CProjectedPoint::kEpsg : ML::CProjectedPoint::kPlain;
    return {kind, ML::CLinearValue(0.0, PJ::UnitOf(definition))};
}

Proj::Object WithUnit(const ::PJ* crs, const BLinearUnit& unit) {
    BIdentifier epsg;
    const bool coded = unit.GetIdentifier("EPSG", epsg);
    return Proj::Object(proj_crs_alter_cs_linear_unit(Proj::ThreadContext(), crs, unit.GetName().Utf8(),
                                                      1.0 / unit.GetUnitsPerMeter(), coded ? "EPSG" : nullptr,
                                                      coded ? epsg.Code.Utf8() : nullptr));
}

Proj::Object WithProjection(const ::PJ* crs, const PJ::CProjection& projection) {
    PJ_CONTEXT* context = Proj::ThreadContext();
    const Proj::Object conversion = PJ::MakeConversion(projection);
    const Proj::Object axes(proj_crs_get_coordinate_system(context, crs));
    const Proj::Object geodetic(proj_crs_get_geodetic_crs(context, crs));
    if (!conversion || !axes || !geodetic) return nullptr;
    return Proj::Object(proj_create_projected_crs(context, Proj::NameOf(crs).c_str(), geodetic.get(),
                                                  conversion.get(), axes.get()));
}

Proj::Object WithGeodetic(const ::PJ* crs, const CoordSysDefinition& geodetic) {
    const Proj::Object base = geodetic.CloneHorizontal();
    return Proj::Object(proj_crs_alter_geodetic_crs(Proj::ThreadContext(), crs, base.get()));
}

}  // namespace

CProjectedCoordSys::CProjectedCoordSys(const Definition& definition) : CCoordSys(definition) {}

CProjectedCoordSys::CProjectedCoordSys(std::function<Definition()> maker, const PJ::CProjection& projection)
    : CCoordSys(std::move(maker)) {
    parts_.projection = projection;
}

CProjectedCoordSys::CProjectedCoordSys(const CProjectedCoordSys& other) : CCoordSys(other) {
    const std::lock_guard lock(other.GetMutex());
    parts_.projection = other.parts_.projection;
    if (other.parts_.geodetic) parts_.geodetic.emplace(*other.parts_.geodetic);
    parts_.point = other.parts_.point;
    built_ = other.built_;
}

CProjectedCoordSys::~CProjectedCoordSys() = default;

std::unique_ptr<CCoordSys> CProjectedCoordSys::Clone() const {
    return std::make_unique<CProjectedCoordSys>(*this);
}

const PJ::CProjection& CProjectedCoordSys::GetProjection() const {
    const std::lock_guard lock(GetMutex());
    if (!parts_.projection) parts_.projection = PJ::ReadProjection(*GetOriginal());
    return *parts_.projection;
}

PJ::CProjection& CProjectedCoordSys::GetProjection() {
    return const_cast<PJ::CProjection&>(std::as_const(*this).GetProjection());
}

const CGeodeticCoordSys& CProjectedCoordSys::GetGeodeticCoordSys() const {
    const std::lock_guard lock(GetMutex());
    if (!parts_.geodetic) parts_.geodetic.emplace(GeodeticOf(GetOriginal()));
    return *parts_.geodetic;
}

CGeodeticCoordSys& CProjectedCoordSys::GetGeodeticCoordSys() {
    return const_cast<CGeodeticCoordSys&>(std::as_const(*this).GetGeodeticCoordSys());
}

void CProjectedCoordSys::SetGeodeticCoordSys(const CGeodeticCoordSys& geodetic) {
    const std::lock_guard lock(GetMutex());
    parts_.geodetic.emplace(geodetic);
}

const ML::CProjectedPoint& CProjectedCoordSys::GetProjectedPoint() const {
    const std::lock_guard lock(GetMutex());
    if (!parts_.point) parts_.point.emplace(PointOf(*GetOriginal()));
    return *parts_.point;
}

void CProjectedCoordSys::SetProjectedPoint(const ML::CProjectedPoint& point) {
    const std::lock_guard lock(GetMutex());
    parts_.point.emplace(point);
}

void CProjectedCoordSys::SetUnits(const Tellurion::BSharedPtr<BLinearUnit>& unit) {
    SetProjectedPoint({ML::CProjectedPoint::kPlain, ML::CLinearValue(0.0, unit)});
    CParameterCollection& parameters = GetProjection().GetParameters();
    for (const char* key : {kValFalseEasting, kValFalseNorthing}) {
        ML::CLinearValue value = parameters.GetLinearValue(key);
        value.SetUnits(unit);
        parameters.SetLinearValue(key, value);
    }
}

bool CProjectedCoordSys::HasNewUnit() const {
    if (!parts_.point) return false;
    return parts_.point->GetEast().GetUnits()->GetUnitsPerMeter() !=
           PJ::UnitOf(*GetOriginal())->GetUnitsPerMeter();
}

bool CProjectedCoordSys::HasNewDatum() const {
    if (!parts_.geodetic) return false;
    Definition base = GetOriginal()->Base();
    if (GetOriginal()->IsCompound()) base = base->Base();
    return parts_.geodetic->GetDefinition() != base;
}

/// The original with what has changed since.
CCoordSys::Definition CProjectedCoordSys::Build() const {
    Proj::Object crs = GetOriginal()->CloneHorizontal();
    if (HasNewUnit()) crs = WithUnit(crs.get(), *parts_.point->GetEast().GetUnits());
    if (crs && parts_.projection && parts_.projection->GetParameters().Changes() != 0)
        crs = WithProjection(crs.get(), *parts_.projection);
    if (crs && HasNewDatum()) crs = WithGeodetic(crs.get(), *parts_.geodetic->GetDefinition());
    const Definition made = crs ? CoordSysDefinition::Make(std::move(crs)) : nullptr;
    return made ? made : GetOriginal();
}

CCoordSys::Definition CProjectedCoordSys::GetDefinition() const {
    const std::lock_guard lock(GetMutex());
    const int changes = parts_.projection ? parts_.projection->GetParameters().Changes() : 0;
    if (!HasNewUnit() && !HasNewDatum() && changes == 0) return CCoordSys::GetDefinition();
    const Definition geodetic = GetGeodeticCoordSys().GetDefinition();
    const double units_per_metre = GetProjectedPoint().GetEast().GetUnits()->GetUnitsPerMeter();
    if (!built_.definition || built_.geodetic != geodetic || built_.units_per_metre != units_per_metre ||
        built_.changes != changes)
        built_ = {geodetic, units_per_metre, changes, Build()};
    return Named(built_.definition);
}

}  // namespace GeoCalc::CS

#include "geocalc/CDataSource.h"

#include "crs/CoordSysDefinition.h"
#include "crs/DefinitionCaches.h"
#include "crs/Identification.h"
#include "geocalc/EquivalentSearch.h"
#include "names/ErMapperProjections.h"
#include "names/ErMapperSystems.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace GeoCalc::DB {

using Tellurion::BString;
using Tellurion::CoordSysDefinition;
using Tellurion::FindByEpsg;
namespace Proj = Tellurion::Proj;

namespace {

using CS::CProjectedCoordSys;

/// The many are not kept among the systems that were asked for last.
std::unique_ptr<CProjectedCoordSys> EpsgObject(const EpsgProjections::Row& row) {
    const int number = row.number;
    auto object =
        std::make_unique<CProjectedCoordSys>([number] { return CoordSysDefinition::FromEpsg(number); });
    object->SetName(BString(row.name));
    object->GetIdentifiers().Add(kValGc, BString::Format("EPSG:%d", number));
    object->GetIdentifiers().Add("EPSG", BString::Format("%d", number));
    return object;
}

std::unique_ptr<CProjectedCoordSys> NameObject(const ErMapperProjections::Entry& entry) {
    const BString name{std::string(entry.row->name)};
    auto object =
        std::make_unique<CProjectedCoordSys>([name] { return FindErMapperSystem(name); }, entry.projection);
    object->SetName(name);
    object->GetIdentifiers().Add(kValGc, name);
    object->GetIdentifiers().Add(kErMapper, name);
    return object;
}

CEquivalent StoredEntry(const CProjectedCoordSys& object) {
    return {object.GetIdentifiers(), 0};
}

/// Longitude and latitude on WGS 84 of the same on the datum of a system; unchanged where no
/// way is known.
PJ_COORD OnWgs84(::PJ* crs, PJ_COORD place) {
    PJ_CONTEXT* context = Proj::ThreadContext();
    const CoordSysDefinition::Ptr target = FindByEpsg(4326);
    const Proj::Object datum(proj_crs_get_geodetic_crs(context, crs));
    const Proj::Object wgs84 = target ? target->CloneHorizontal() : nullptr;
    if (!datum || !wgs84) return place;
    const Proj::Object made(
        proj_create_crs_to_crs_from_pj(context, datum.get(), wgs84.get(), nullptr, nullptr));
    const Proj::Object way(made ? proj_normalize_for_visualization(context, made.get()) : nullptr);
    return way ? proj_trans(way.get(), PJ_FWD, place) : place;
}

/// Whether two systems place the same coordinates alike, in the middle of the second one's
/// area with their datums as well.
bool IsSameOnTheEarth(::PJ* first, ::PJ* second) {
    constexpr double kSameOrigin = 1e-5;  // degrees, a metre: what two ways to shift one datum differ by
    if (!Tellurion::IsSamePlacement(first, second)) return false;
    double west = 0.0, south = 0.0, east = 0.0, north = 0.0;
    const auto has_area = [&](::PJ* crs) {
        return proj_get_area_of_use(Proj::ThreadContext(), crs, &west, &south, &east, &north, nullptr) != 0;
    };
    if (!has_area(second) && !has_area(first)) return false;
    if (east < west) east += 360.0;
    const PJ_COORD middle = proj_coord((west + east) / 2.0, (south + north) / 2.0, 0.0, HUGE_VAL);
    const PJ_COORD a = OnWgs84(first, middle);
    const PJ_COORD b = OnWgs84(second, middle);
    return std::hypot(std::remainder(a.xy.x - b.xy.x, 360.0), a.xy.y - b.xy.y) < kSameOrigin;
}

}  // namespace

CDataSource& CDataSource::Instance() {
    static auto* const instance = new CDataSource;
    return *instance;
}

CDataSource::Objects CDataSource::Search(int objectType) const {
    Objects objects;
    if (objectType != kProjectedCoordSys) return objects;
    for (const auto& row : EpsgProjections::Instance().All())
        objects.push_back(EpsgObject(row));
    for (const auto* entry : ErMapperProjections::Instance().All())
        objects.push_back(NameObject(*entry));
    for (const Stored& stored : GetStored())
        objects.push_back(stored->Clone());
    return objects;
}

BString CDataSource::FindERMapperName(const PJ::CProjection& projection) const {
    const auto named = ErMapperProjections::Instance().FindNearlyEqual(projection);
    if (!named.empty()) return BString(std::string(named.front()->row->name));
    for (const Stored& stored : GetStored())
        if (stored->GetIdentifiers().Exists(kErMapper) && stored->GetProjection().IsNearlyEqual(projection))
            return stored->GetIdentifiers().GetCode(kErMapper);
    return {};
}

bool CDataSource::IsERMapperNameFor(const BString& name, const CS::CCoordSys& system) const {
    const CS::CCoordSys::Definition named = Find(kErMapper, name);
    const CS::CCoordSys::Definition wanted = system.GetDefinition();
    if (!named || named->GetKind() != wanted->GetKind()) return false;
    const int number = wanted->EpsgNumber();
    return (number != 0 && number == named->EpsgNumber()) ||
           IsSameOnTheEarth(named->CloneHorizontal().get(), wanted->CloneHorizontal().get());
}

std::unique_ptr<ML::CProjectedPoint> CDataSource::GetProjectedPoint(const BString& issuer,
                                                                    const BString& code) const {
    return issuer == BString(kValGc) ? ML::CProjectedPoint::Find(code) : nullptr;
}

std::unique_ptr<CS::CGeodeticCoordSys> CDataSource::GetGeodeticCoordSysNonThrow(const BString& issuer,
                                                                                const BString& code) const {
    const auto found = issuer == BString(kErMapper) ? FindErMapperGeodetic(code) : Find(issuer, code);
    if (!found || found->GetKind() != CoordSysDefinition::Kind::Geodetic) return nullptr;
    return std::make_unique<CS::CGeodeticCoordSys>(found);
}

std::unique_ptr<CS::CHorizontalDatum> CDataSource::GetHorizontalDatumNonThrow(const BString& issuer,
                                                                              const BString& code) const {
    const auto found = issuer == BString(kErMapper) ? FindErMapperDatum(code) : nullptr;
    return found ? std::make_unique<CS::CHorizontalDatum>(found) : nullptr;
}

std::vector<CEquivalent> CDataSource::Equivalent(const CS::CCoordSys& object) const {
    return FindSame(object, true);
}

std::vector<CEquivalent> CDataSource::EquivalentLessRestrictive(const CS::CCoordSys& object) const {
    return FindSame(object, false);
}

std::vector<CEquivalent> CDataSource::FindSame(const CS::CCoordSys& object, bool restrictive) const {
    const Sameness sameness = restrictive ? Sameness::Full : Sameness::LessRestrictive;
    std::vector<CEquivalent> found = FindEquivalents(object, sameness);
    if (const auto* projected = dynamic_cast<const CProjectedCoordSys*>(&object))
        for (const Stored& stored : GetStored())
            if (IsSame(*stored, *projected, sameness)) found.push_back(StoredEntry(*stored));
    return found;
}

BString CDataSource::FindPreferredCode(const CProjectedCoordSys& object) const {
    const auto geodetic = object.GetGeodeticCoordSys().GetDefinition();
    if (const int zone = EpsgProjections::Instance().FindUtmZone(object.GetProjection(), *geodetic))
        return BString::Format("EPSG:%d", zone);
    std::vector<CEquivalent> found = Equivalent(object);
    if (found.empty()) found = EquivalentLessRestrictive(object);
    if (found.empty()) return {};
    const auto current = std::ranges::find_if(
        found, [](const CEquivalent& entry) { return (entry.GetStatus() & CEquivalent::kDeprecated) == 0; });
    return (current == found.end() ? found.front() : *current).GetIssuerCode(kValGc);
}

CS::CCoordSys::Definition CDataSource::FindPreferred(const CProjectedCoordSys& object) const {
    const BString code = FindPreferredCode(object);
    return code.IsEmpty() ? object.GetDefinition() : Find(kValGc, code);
}

bool CDataSource::PutSerializable(int objectType, const CS::CCoordSys& object, bool overwrite, bool) {
    const BString code = object.GetIdentifiers().GetCode(kValGc);
    if (objectType != kProjectedCoordSys || code.IsEmpty()) return false;
    const auto* projected = dynamic_cast<const CProjectedCoordSys*>(&object);
    if (!projected) return false;
    auto copy = std::make_shared<const CProjectedCoordSys>(*projected);
    const std::lock_guard lock(mutex_);
    const auto same = std::ranges::find_if(
        stored_, [&](const Stored& stored) { return stored->GetIdentifiers().GetCode(kValGc) == code; });
    if (same == stored_.end())
        stored_.push_back(std::move(copy));
    else if (overwrite)
        *same = std::move(copy);
    else
        return false;
    return true;
}

std::vector<CDataSource::Stored> CDataSource::GetStored() const {
    const std::lock_guard lock(mutex_);
    return stored_;
}

CS::CCoordSys::Definition CDataSource::Find(const BString& issuer, const BString& code) const {
    if (issuer == BString(kErMapper)) return FindErMapperSystem(code);
    if (issuer == BString("EPSG")) {
        const int number = Proj::ParseCode(code.StdStr().c_str());
        return number != 0 ? FindByEpsg(number) : nullptr;
    }
    if (issuer != BString(kValGc)) return nullptr;
    for (const Stored& stored : GetStored())
        if (stored->GetIdentifiers().GetCode(kValGc) == code) return stored->GetDefinition();
    return FindErMapperSystem(code);
}

}  // namespace GeoCalc::DB

#include "names/EpsgProjections.h"

#include "crs/CoordSysDefinition.h"
#include "crs/ProjObjects.h"
#include "crs/UtmZones.h"
#include "names/ProjectionSource.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

namespace GeoCalc::DB {

using Tellurion::CoordSysDefinition;
namespace Proj = Tellurion::Proj;

namespace {

struct CrsListDeleter {
    void operator()(PROJ_CRS_INFO** list) const noexcept { proj_crs_info_list_destroy(list); }
};
using CrsList = std::unique_ptr<PROJ_CRS_INFO*, CrsListDeleter>;

CrsList ListProjected(int& count) {
    const std::unique_ptr<PROJ_CRS_LIST_PARAMETERS, void (*)(PROJ_CRS_LIST_PARAMETERS*)> parameters(
        proj_get_crs_list_parameters_create(), proj_get_crs_list_parameters_destroy);
    const PJ_TYPE type = PJ_TYPE_PROJECTED_CRS;
    parameters->types = &type;
    parameters->typesCount = 1;
    parameters->allow_deprecated = 1;
    return CrsList(
        proj_get_crs_info_list_from_database(Proj::ThreadContext(), "EPSG", parameters.get(), &count));
}

std::string Text(const char* text) {
    return text ? text : "";
}

/// "NAD83 / Texas Central" is, "NAD83(2011) / Texas Central" is not.
bool IsNamedAfter(std::string_view name, std::string_view geodetic) {
    return name.starts_with(geodetic) && name.substr(geodetic.size()).starts_with(' ');
}

bool HasEastingFirst(const CoordSysDefinition& definition) {
    const Proj::Object crs = definition.CloneHorizontal();
    Proj::Axis axis;
    Proj::Object owner;
    return Proj::GetAxis(crs.get(), 0, axis, owner) && std::string_view(axis.direction) == "east";
}

}  // namespace

bool IsSame(const PJ::CProjection& a, const PJ::CProjection& b, Sameness sameness) {
    return sameness == Sameness::Full ? a.IsEqual(b) : a.IsNearlyEqual(b);
}

const EpsgProjections& EpsgProjections::Instance() {
    static const auto* const instance = new EpsgProjections;
    return *instance;
}

const std::vector<EpsgProjections::Row>& EpsgProjections::All() const {
    static const auto* const rows = new std::vector(ReadAll());
    return *rows;
}

std::vector<EpsgProjections::Row> EpsgProjections::ReadAll() {
    std::vector<Row> rows;
    int count = 0;
    const CrsList list = ListProjected(count);
    for (int i = 0; i < count; ++i) {
        const PROJ_CRS_INFO& info = *list.get()[i];
        rows.push_back({Proj::ParseCode(info.code), Text(info.name), Text(info.projection_method_name),
                        info.deprecated != 0});
    }
    // A system that is used in several areas is listed for each.
    std::ranges::sort(rows, {}, &Row::number);
    const auto is_same = [](const Row& a, const Row& b) { return a.number == b.number; };
    rows.erase(std::unique(rows.begin(), rows.end(), is_same), rows.end());
    return rows;
}

EpsgProjections::SystemPtr EpsgProjections::Read(int number) {
    const auto definition = CoordSysDefinition::FromEpsg(number);
    if (!definition || definition->GetKind() != CoordSysDefinition::Kind::Projected) return nullptr;
    return std::make_shared<const System>(
        System{PJ::ReadProjection(*definition), definition->GeodeticEpsgNumber(),
               HasEastingFirst(*definition), proj_is_deprecated(definition->CloneHorizontal().get()) != 0});
}

EpsgProjections::SystemPtr EpsgProjections::Get(int number) const {
    {
        const std::lock_guard lock(mutex_);
        if (const auto known = systems_.find(number); known != systems_.end()) return known->second;
    }
    SystemPtr read = Read(number);
    const std::lock_guard lock(mutex_);
    return systems_.emplace(number, std::move(read)).first->second;
}

int EpsgProjections::FindUtmZone(const PJ::CProjection& projection,
                                 const CoordSysDefinition& geodetic) const {
    const auto& parameters = projection.GetParameters();
    const double meridian = std::remainder(parameters.GetNumber("CENTRAL_MERIDIAN", 0.0), 360.0);
    const auto zone = static_cast<int>(std::lround((meridian + 183.0) / 6.0));
    const bool is_south = parameters.GetNumber(kValFalseNorthing, 0.0) > 0.0;
    const int number = Tellurion::EpsgOfUtmZone(geodetic.Name().StdStr(), zone, is_south ? 'S' : 'N');
    const SystemPtr system = number != 0 ? Get(number) : nullptr;
    const bool is_same = system && !system->deprecated && system->easting_first &&
                         system->geodetic == geodetic.EpsgNumber() &&
                         IsSame(system->projection, projection, Sameness::Full);
    return is_same ? number : 0;
}

std::vector<const EpsgProjections::Row*> EpsgProjections::Find(const PJ::CProjection& projection,
                                                               const CoordSysDefinition& geodetic,
                                                               Sameness sameness) const {
    const std::string geodetic_name = geodetic.Name().StdStr();
    const int geodetic_number = geodetic.EpsgNumber();
    std::vector<std::pair<std::pair<bool, bool>, const Row*>> found;
    for (const Row& row : All()) {
        if (row.method != projection.GetMethod() || !IsNamedAfter(row.name, geodetic_name)) continue;
        const SystemPtr system = Get(row.number);
        if (system && system->geodetic == geodetic_number && IsSame(system->projection, projection, sameness))
            found.push_back({{row.deprecated, !system->easting_first}, &row});
    }
    std::ranges::stable_sort(found, {}, [](const auto& entry) { return entry.first; });
    std::vector<const Row*> rows;
    rows.reserve(found.size());
    for (const auto& entry : found)
        rows.push_back(entry.second);
    return rows;
}

}  // namespace GeoCalc::DB

#include "names/ErMapperSystems.h"

#include "crs/CoordSysDefinition.h"
#include "crs/DefinitionCaches.h"
#include "crs/OgrTexts.h"
#include "names/DatumNames.h"
#include "names/EpsgProjections.h"
#include "names/ErMapperOwnDatums.h"
#include "names/ErMapperProjections.h"
#include "names/ProjectionSource.h"

#include <Tellurion/BIdentifier.h>
#include <Tellurion/Numbers.h>

#include <proj_experimental.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace GeoCalc::DB {
namespace {

using Tellurion::BIdentifier;
using Tellurion::BLinearUnit;
using Tellurion::BString;
using Tellurion::CoordSysDefinition;
using Tellurion::FindByEpsg;
namespace Proj = Tellurion::Proj;

/// The number of "EPSG:27700"; 0 for any other text.
int EpsgNumberIn(const BString& name) {
    constexpr std::string_view kStart = "EPSG:";
    const std::string text = name.StdStr();
    return text.starts_with(kStart) ? Proj::ParseCode(text.c_str() + kStart.size()) : 0;
}

std::string UnitText(const BLinearUnit& unit, double metres) {
    BIdentifier epsg;
    std::string text = "UNIT[\"" + unit.GetName().StdStr() + "\"," + Tellurion::PrintShortest(metres);
    if (unit.GetIdentifier("EPSG", epsg)) text += ",AUTHORITY[\"EPSG\",\"" + epsg.Code.StdStr() + "\"]";
    return text + "]";
}

/// Well-known text 1 of a row on a geodetic system.
std::string WktOf(const ErMapperProjection& row, const CoordSysDefinition& geodetic) {
    std::string wkt = "PROJCS[\"" + std::string(row.name) + "\"," + geodetic.Wkt().StdStr() +
                      ",PROJECTION[\"" + std::string(row.method) + "\"]";
    for (const auto& [name, value] : row.Parameters())
        wkt += ",PARAMETER[\"" + std::string(name) + "\"," + Tellurion::PrintShortest(value) + "]";
    return wkt + "," + UnitText(*PJ::UnitOf(row), row.metres_per_unit) + "]";
}

/// Rows are rounded; an EPSG system that is as near as that is what they mean. Most
/// are exact, and those need no search through all systems.
Definition MakeProjected(const ErMapperProjection& row) {
    const Definition geodetic = FindByEpsg(OwnDatumOf(row));
    if (!geodetic) return nullptr;
    const EpsgProjections& systems = EpsgProjections::Instance();
    if (const int zone = systems.FindUtmZone(PJ::ReadProjection(row), *geodetic)) return FindByEpsg(zone);
    const Definition made = CoordSysDefinition::FromWkt(BString(WktOf(row, *geodetic)));
    if (!made) return nullptr;
    if (const int exact = made->EpsgNumber(); exact != 0) return FindByEpsg(exact);
    const auto same = systems.Find(PJ::ReadProjection(*made), *geodetic, Sameness::LessRestrictive);
    const Definition known = same.empty() ? nullptr : FindByEpsg(same.front()->number);
    return known ? known : made;
}

struct Foot {
    std::string_view ellipsoid;
    double metres;
};

// Axes above seven million are in the foot of the survey that defined the ellipsoid.
constexpr double kLargestInMetres = 7e6;
constexpr double kUsFoot = 1200.0 / 3937.0;
constexpr Foot kFeet[] = {
    {"WAROFFFT", 6378300.0 / 20926201.0},
    {"EVIMPFT", 12000000.0 / 39370147.0},
    {"CLA80IFT", 0.3047972654},
};

double SemiMajorInMetres(const ErMapperDatum& datum) {
    if (datum.semi_major_axis < kLargestInMetres) return datum.semi_major_axis;
    const auto* foot = std::ranges::find(kFeet, datum.ellipsoid, &Foot::ellipsoid);
    return datum.semi_major_axis * (foot == std::end(kFeet) ? kUsFoot : foot->metres);
}

/// A geographic system of the row's ellipsoid, called after the row.
Definition MakeGeodetic(const ErMapperDatum& datum) {
    PJ_CONTEXT* context = Proj::ThreadContext();
    const std::string name(datum.name);
    const Proj::Object axes(
        proj_create_ellipsoidal_2D_cs(context, PJ_ELLPS2D_LATITUDE_LONGITUDE, nullptr, 0.0));
    return CoordSysDefinition::Make(Proj::Object(proj_create_geographic_crs(
        context, name.c_str(), name.c_str(), std::string(datum.ellipsoid).c_str(), SemiMajorInMetres(datum),
        datum.inverse_flattening, nullptr, 0.0, nullptr, 0.0, axes.get())));
}

bool IsPlausibleName(std::string_view name) {
    constexpr std::size_t kLongestName = 32;
    return !name.empty() && name.size() <= kLongestName && std::ranges::all_of(name, [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
    });
}

/// From the dictionary that GDAL may have.
Definition FindInDictionary(const std::string& name) {
    if (!IsPlausibleName(name)) return nullptr;
    const std::string wkt = Tellurion::WktOfErMapperName(name);
    const Definition found = wkt.empty() ? nullptr : CoordSysDefinition::FromWkt(BString(wkt));
    return found && found->GetKind() != CoordSysDefinition::Kind::Other ? found : nullptr;
}

Definition MakeSystem(const BString& name) {
    if (const int number = EpsgNumberIn(name); number != 0) return FindByEpsg(number);
    const std::string text = name.StdStr();
    const ErMapperNames& names = ErMapperNames::Instance();
    if (const ErMapperProjection* row = names.FindProjection(text)) return MakeProjected(*row);
    if (const ErMapperDatum* datum = names.FindDatum(text))
        return datum->epsg != 0 ? FindByEpsg(datum->epsg) : MakeGeodetic(*datum);
    return FindInDictionary(text);
}

/// The horizontal geodetic system of or below a system.
Definition GeodeticOf(Definition system) {
    while (system && (system->IsCompound() || system->GetKind() == CoordSysDefinition::Kind::Projected))
        system = system->Base();
    return system && system->GetKind() == CoordSysDefinition::Kind::Geodetic ? system : nullptr;
}

}  // namespace

Definition FindErMapperSystem(const BString& name) {
    return Tellurion::DefinitionCaches::Instance().er_mapper_names.Get(name.GetUnits(),
                                                                       [&] { return MakeSystem(name); });
}

Definition FindErMapperGeodetic(const BString& name) {
    const ErMapperDatum* datum = ErMapperNames::Instance().FindDatum(name.StdStr());
    if (datum) return datum->epsg != 0 ? FindByEpsg(datum->epsg) : nullptr;
    if (EpsgNumberIn(name) != 0) return GeodeticOf(FindErMapperSystem(name));
    if (const int number = Tellurion::FindDatumByName(name.StdStr()); number != 0) return FindByEpsg(number);
    const Definition other = FindErMapperSystem(name);
    return other && other->GetKind() == CoordSysDefinition::Kind::Geodetic ? other : nullptr;
}

Definition FindErMapperDatum(const BString& name) {
    const Definition geodetic = FindErMapperGeodetic(name);
    const bool known = geodetic || !ErMapperNames::Instance().FindDatum(name.StdStr());
    return known ? geodetic : GeodeticOf(FindErMapperSystem(name));
}

BString ErMapperDatumNameOf(const CoordSysDefinition& system) {
    const ErMapperNames& names = ErMapperNames::Instance();
    const int number = system.GeodeticEpsgNumber();
    const ErMapperDatum* datum = number != 0 ? names.FindDatumByEpsg(number) : nullptr;
    if (number == 0) datum = names.FindDatum(system.DatumName().StdStr());
    return datum && datum->epsg == number ? BString(std::string(datum->name)) : BString();
}

BString ErMapperNameOf(const CoordSysDefinition& system) {
    if (system.GetKind() == CoordSysDefinition::Kind::Geodetic) return ErMapperDatumNameOf(system);
    const int number = system.GeodeticEpsgNumber();
    if (system.GetKind() != CoordSysDefinition::Kind::Projected || number == 0) return {};
    const PJ::CProjection projection = PJ::ReadProjection(system);
    // A name that is the datum's as well means longitude and latitude beside it.
    const BString datum = ErMapperDatumNameOf(system);
    for (const auto* entry : ErMapperProjections::Instance().FindNearlyEqual(projection))
        if (const BString name(std::string(entry->row->name)); entry->own_datum == number && name != datum)
            return name;
    return {};
}

BString OwnCodeOf(const CoordSysDefinition& system) {
    const int number = system.EpsgNumber();
    return number != 0 ? BString::Format("EPSG:%d", number) : system.Name();
}

}  // namespace GeoCalc::DB

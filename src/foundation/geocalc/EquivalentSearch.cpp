#include "geocalc/EquivalentSearch.h"

#include "crs/CoordSysDefinition.h"
#include "crs/LruCache.h"
#include "names/ErMapperProjections.h"
#include "names/ErMapperSystems.h"

#include <Tellurion/BString.h>
#include <Tellurion/Numbers.h>

namespace GeoCalc::DB {

using Tellurion::BString;

namespace {

CEquivalent EpsgEntry(int number, bool deprecated) {
    CIdentifiers identifiers;
    identifiers.Add(kValGc, BString::Format("EPSG:%d", number));
    identifiers.Add("EPSG", BString::Format("%d", number));
    return {identifiers, deprecated ? CEquivalent::kDeprecated : std::uint16_t{0}};
}

CEquivalent NameEntry(const BString& name) {
    CIdentifiers identifiers;
    identifiers.Add(kValGc, name);
    identifiers.Add(kErMapper, name);
    return {identifiers, 0};
}

std::vector<CEquivalent> FindProjected(const CS::CProjectedCoordSys& object, Sameness sameness) {
    std::vector<CEquivalent> found;
    const auto geodetic = object.GetGeodeticCoordSys().GetDefinition();
    const int number = geodetic->GeodeticEpsgNumber();
    if (number == 0) return found;
    const PJ::CProjection& projection = object.GetProjection();
    for (const auto* row : EpsgProjections::Instance().Find(projection, *geodetic, sameness))
        found.push_back(EpsgEntry(row->number, row->deprecated));
    for (const auto* entry : ErMapperProjections::Instance().FindNearlyEqual(projection))
        if (entry->own_datum == number && IsSame(entry->projection, projection, sameness))
            found.push_back(NameEntry(BString(std::string(entry->row->name))));
    return found;
}

/// Other systems go by the number that they state or are identified by.
std::vector<CEquivalent> FindOther(const CS::CCoordSys& object) {
    const int number = object.GetDefinition()->EpsgNumber();
    if (number == 0) return {};
    return {EpsgEntry(number, false)};
}

/// What says one geodetic system from another.
std::string GeodeticKey(const CS::CProjectedCoordSys& object) {
    const auto definition = object.GetGeodeticCoordSys().GetDefinition();
    const int number = definition->GeodeticEpsgNumber();
    return number != 0 ? std::to_string(number) : definition->Wkt().StdStr();
}

void AppendNumber(std::string& text, double number) {
    text += Tellurion::PrintShortest(number);
    text += ' ';
}

/// All that decides what the object is the same as.
std::string KeyOf(const CS::CProjectedCoordSys& object, Sameness sameness) {
    std::string key = GeodeticKey(object) + (sameness == Sameness::Full ? " = " : " ~ ");
    key += std::to_string(object.GetProjection().GetKind()) + ' ';
    AppendNumber(key, object.GetProjectedPoint().GetEast().GetUnits()->GetUnitsPerMeter());
    for (const CParameter& parameter : object.GetProjection().GetParameters().All()) {
        key += parameter.key + ' ';
        AppendNumber(key, parameter.quantity == CParameter::Quantity::Length ? parameter.length.GetInternal()
                                                                             : parameter.value);
    }
    return key;
}

}  // namespace

bool IsSame(const CS::CProjectedCoordSys& a, const CS::CProjectedCoordSys& b, Sameness sameness) {
    return a.GetProjectedPoint().GetEast().GetUnits()->GetUnitsPerMeter() ==
               b.GetProjectedPoint().GetEast().GetUnits()->GetUnitsPerMeter() &&
           GeodeticKey(a) == GeodeticKey(b) && IsSame(a.GetProjection(), b.GetProjection(), sameness);
}

std::vector<CEquivalent> FindEquivalents(const CS::CCoordSys& object, Sameness sameness) {
    const auto* projected = dynamic_cast<const CS::CProjectedCoordSys*>(&object);
    if (!projected) return FindOther(object);
    constexpr std::size_t kMostEntries = 256;
    static auto* const cache = new Tellurion::LruCache<std::vector<CEquivalent>>(kMostEntries);
    return cache->Get(BString(KeyOf(*projected, sameness)).GetUnits(),
                      [&] { return FindProjected(*projected, sameness); });
}

}  // namespace GeoCalc::DB

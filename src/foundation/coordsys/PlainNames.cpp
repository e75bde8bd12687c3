#include "coordsys/PlainNames.h"

#include "crs/DefinitionCaches.h"
#include "crs/Identification.h"
#include "crs/Names.h"
#include "crs/UnitTable.h"
#include "geocalc/CDataSource.h"
#include "names/DatumNames.h"
#include "names/ErMapperSystems.h"

#include <proj_experimental.h>

#include <charconv>
#include <string>

namespace Tellurion {
namespace {

constexpr std::string_view kGeographicNames =
    "LATLONG|LATLON|LONGLAT|LONLAT|LATITUDELONGITUDE|LL|GEOGRAPHIC|GEODETIC";

struct UtmZone {
    int number = 0;
    bool north = true;
};

/// "UTM12N", letters and digits only; false for another text or an impossible zone.
bool ParseUtm(std::string_view name, UtmZone& zone) {
    for (const std::string_view start : {"UTMZONE", "UTM"})
        if (name.starts_with(start)) {
            name.remove_prefix(start.size());
            const auto end = std::from_chars(name.data(), name.data() + name.size(), zone.number);
            const std::string_view rest(end.ptr,
                                        static_cast<std::size_t>(name.data() + name.size() - end.ptr));
            zone.north = rest == "N";
            return end.ec == std::errc() && (rest == "N" || rest == "S") && zone.number >= 1 &&
                   zone.number <= 60;
        }
    return false;
}

int FindDatum(std::string_view name) {
    const int known = FindDatumByName(name);
    if (known != 0) return known;
    const GeoCalc::DB::ErMapperDatum* datum =
        GeoCalc::DB::ErMapperNames::Instance().FindDatum(UpperAscii(LettersAndDigits(name)));
    return datum ? datum->epsg : 0;
}

/// The row of the unit table that a header's word stands for; empty for an unknown word.
BSharedPtr<BLinearUnit> FindUnit(std::string_view name) {
    const std::string plain = UpperAscii(LettersAndDigits(name));
    if (plain.empty() || ListHas("METER|METERS|METRE|METRES|M", plain))
        return BLinearUnit::GetLinearUnit({"GC", "METERS"});
    if (ListHas("FEET|FOOT|FT|INTERNATIONALFEET|INTERNATIONALFOOT", plain))
        return BLinearUnit::GetLinearUnit({"GC", "INTERNATIONAL FEET"});
    if (ListHas("USFEET|USFOOT|USSURVEYFEET|USSURVEYFOOT|SURVEYFEET|USFT", plain))
        return BLinearUnit::GetLinearUnit({"GC", "USFEET"});
    return {};
}

/// The zone's grid on a geodetic system, in metres, called after both.
Proj::Object MakeUtm(PJ* geodetic, const UtmZone& zone) {
    PJ_CONTEXT* context = Proj::ThreadContext();
    const Proj::Object grid(proj_create_conversion_utm(context, zone.number, zone.north));
    const Proj::Object axes(proj_create_cartesian_2D_cs(context, PJ_CART2D_EASTING_NORTHING, nullptr, 0.0));
    const std::string name =
        Proj::NameOf(geodetic) + " / UTM zone " + std::to_string(zone.number) + (zone.north ? "N" : "S");
    return Proj::Object(proj_create_projected_crs(context, name.c_str(), geodetic, grid.get(), axes.get()));
}

/// False origins stay where they are on the ground.
Proj::Object WithUnit(PJ* projected, const BLinearUnit& unit) {
    PJ_CONTEXT* context = Proj::ThreadContext();
    BIdentifier identifier;
    unit.GetIdentifier("EPSG", identifier);
    const Proj::Object changed(proj_crs_alter_cs_linear_unit(context, projected, unit.GetName().Utf8(),
                                                             1.0 / unit.GetUnitsPerMeter(), "EPSG",
                                                             identifier.Code.Utf8()));
    const std::string name = Proj::NameOf(projected) + " (" + unit.GetName().StdStr() + ")";
    return Proj::Object(changed ? proj_alter_name(context, changed.get(), name.c_str()) : nullptr);
}

CoordSysDefinition::Ptr FindUtm(const CoordSysDefinition& geodetic, const UtmZone& zone,
                                const BLinearUnit& unit) {
    const Proj::Object base = geodetic.CloneHorizontal();
    Proj::Object projected = MakeUtm(base.get(), zone);
    if (!projected) return nullptr;
    if (unit.GetUnitsPerMeter() != 1.0) return CoordSysDefinition::Make(WithUnit(projected.get(), unit));
    const int known = IdentifyEpsg(projected.get());
    return known != 0 ? FindByEpsg(known) : CoordSysDefinition::Make(std::move(projected));
}

/// A grid that ER Mapper has a name for.
CoordSysDefinition::Ptr FindErMapperGrid(std::string_view projection, std::string_view datum,
                                         std::string_view units) {
    const CoordSysDefinition::Ptr own = GeoCalc::DB::FindErMapperSystem(BString(UpperAscii(projection)));
    const CoordSysDefinition::Ptr geodetic = GeoCalc::DB::FindErMapperDatum(BString(UpperAscii(datum)));
    if (!own || !geodetic || own->GetKind() != CoordSysDefinition::Kind::Projected) return nullptr;
    GeoCalc::CS::CProjectedCoordSys object(own);
    object.SetGeodeticCoordSys(GeoCalc::CS::CGeodeticCoordSys(geodetic));
    if (!units.empty()) {
        const BSharedPtr<BLinearUnit> unit = FindUnit(units);
        if (!unit) return nullptr;
        object.SetUnits(unit);
    }
    return GeoCalc::DB::CDataSource::Instance().FindPreferred(object);
}

}  // namespace

CoordSysDefinition::Ptr FindByPlainNames(std::string_view projection, std::string_view datum,
                                         std::string_view units) {
    const int geodetic_number = FindDatum(datum);
    CoordSysDefinition::Ptr geodetic = geodetic_number != 0 ? FindByEpsg(geodetic_number) : nullptr;
    const std::string name = UpperAscii(LettersAndDigits(projection));
    if (ListHas(kGeographicNames, name)) return geodetic;
    UtmZone zone;
    const BSharedPtr<BLinearUnit> unit = FindUnit(units);
    if (!ParseUtm(name, zone)) return FindErMapperGrid(projection, datum, units);
    if (!geodetic || !unit) return nullptr;
    return FindUtm(*geodetic, zone, *unit);
}

}  // namespace Tellurion

#pragma once

#include <Tellurion/BCoordSys.h>
#include <Tellurion/BIdentifier.h>
#include <Tellurion/BString.h>
#include <Tellurion/Export.h>

namespace GeoCalc::DB {
class CDataSource;
}

namespace Tellurion {

/// Where coordinate systems come from. One for the process; safe to use from
/// several threads. Returned systems are new objects, the caller's.
class TELLURION_EXPORT BCoordSysRepository {
public:
    static BCoordSysRepository* Instance();  ///< never null; not the caller's

    /// As BCoordSys::FromWKT.
    BCoordSys* ReadCoordSysFromWKTString(const BString& wkt);

    /// A system from three plain names as chart and frame headers use them:
    /// "LAT-LONG" or "UTM-" with a zone and N or S; a datum such as "NAD83",
    /// "NORTH AMERICAN 1927" or an ER Mapper name; the unit of a projected system
    /// ("METERS", "FEET" ...). An ER Mapper projection name such as "NUTM12" with a datum
    /// serves too; its unit is its own unless one is named. Null for names that are not
    /// known, and for "NONE".
    BCoordSys* ReadCoordSysFromPlainTextStrings(const BString& projection, const BString& datum,
                                                const BString& units);

    /// The CoordSys clause of a MapInfo text file; it may run over several lines and
    /// carry Units and Bounds. Null without one; throws a BCoordSysException for a
    /// clause that cannot be understood.
    BCoordSys* ReadCoordSysFromFile(const BString& path);

    /// The same of a text that begins with the clause, the word CoordSys or what follows
    /// it.
    BCoordSys* ReadCoordSysFromMIFString(const BString& clause);

    /// The system as a MapInfo clause that begins with "CoordSys", without a line
    /// end; empty when it cannot be expressed in one.
    BString WriteCoordSysToMIFString(const BCoordSys& coordSys);

    /// The names of projection and datum in an ER Mapper header, "GEODETIC" for a system
    /// without projection; false, with both unchanged, unless there are both.
    bool WriteCoordSysToERMapperNames(const BCoordSys& coordSys, BString& projection, BString& datum) const;

    /// The system of ("EPSG", number), of ("ERMapper", name), where the name is that of a
    /// projection on its own datum, that of a datum, or "EPSG:" and a number, and of
    /// ("GC", code), the database's own; null when unknown.
    BCoordSys* GetCoordSys(const BIdentifier& identifier);

    /// The coordinate system database.
    const GeoCalc::DB::CDataSource* GetDSInstance() const;
    void* GetDSInstancePtr();  ///< the same, for changes

private:
    BCoordSysRepository() = default;
};

}  // namespace Tellurion

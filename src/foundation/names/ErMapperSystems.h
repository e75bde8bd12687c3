#pragma once

#include <Tellurion/BString.h>

#include <memory>

namespace Tellurion {
class CoordSysDefinition;
}

namespace GeoCalc::DB {

/// The issuer of the names that ER Mapper headers use.
inline constexpr char kErMapper[] = "ERMapper";

using Definition = std::shared_ptr<const Tellurion::CoordSysDefinition>;

/// The system of an ER Mapper name: a projection on its own datum, a datum, or
/// "EPSG:" and a number, as headers have it where the family has no name. An EPSG
/// system where one is the same. Null for an unknown name. Cached.
Definition FindErMapperSystem(const Tellurion::BString& name);

/// The geodetic system of a datum name; of "EPSG:" and the number of a projected
/// system the one below it. Null for an unknown name, and for a datum of which no
/// more than the ellipsoid is known.
Definition FindErMapperGeodetic(const Tellurion::BString& name);
/// The same with systems made of the ellipsoid.
Definition FindErMapperDatum(const Tellurion::BString& name);

/// The ER Mapper name of the system's datum; empty without one.
Tellurion::BString ErMapperDatumNameOf(const Tellurion::CoordSysDefinition& system);

/// The ER Mapper name of the system itself: of the projection when the datum is the
/// one that the name is based on, of the datum for a geodetic system. Else empty.
Tellurion::BString ErMapperNameOf(const Tellurion::CoordSysDefinition& system);

/// The code of the database's own: "EPSG:" and the number, or the name.
Tellurion::BString OwnCodeOf(const Tellurion::CoordSysDefinition& system);

}  // namespace GeoCalc::DB

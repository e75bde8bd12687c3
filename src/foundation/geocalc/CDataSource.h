#pragma once

#include "ErMapperNames.h"

#include <Tellurion/BString.h>
#include <Tellurion/Export.h>

namespace GeoCalc::DB {

/// The coordinate system database. One for the process; safe to use from several
/// threads.
class TELLURION_EXPORT CDataSource {
public:
    static CDataSource& Instance();

    /// The names of the ER Mapper family; read on first need.
    const ErMapperNames& GetERMapperNames() const { return ErMapperNames::Instance(); }
    /// Null for an unknown name; names are compared exactly.
    const ErMapperDatum* FindERMapperDatum(const Tellurion::BString& name) const;
    const ErMapperProjection* FindERMapperProjection(const Tellurion::BString& name) const;
    /// The ER Mapper datum name of an EPSG geodetic system; empty without one.
    Tellurion::BString GetERMapperDatumName(int geodeticEpsg) const;

private:
    CDataSource() = default;
};

}  // namespace GeoCalc::DB

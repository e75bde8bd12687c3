#pragma once

#include "CCoordSys.h"
#include "CEquivalent.h"
#include "CGeodeticCoordSys.h"
#include "CHorizontalDatum.h"
#include "CProjectedCoordSys.h"
#include "CProjectedPoint.h"

#include <GeoCalc/ErMapperNames.h>

#include <Tellurion/BString.h>
#include <Tellurion/Export.h>

#include <memory>
#include <mutex>
#include <vector>

namespace GeoCalc::DB {

/// The coordinate system database: the EPSG systems that PROJ knows, the names of the
/// ER Mapper family, and what was stored in this process. One for the process; safe to
/// use from several threads.
class TELLURION_EXPORT CDataSource {
public:
    static CDataSource& Instance();

    /// Object types.
    static constexpr int kProjectedCoordSys = 0x2000;

    using Objects = std::vector<std::unique_ptr<CS::CCoordSys>>;

    /// All projected systems, for any other type none: the EPSG systems by number, the
    /// ER Mapper projections, the stored ones. They are read when a part is asked for.
    Objects Search(int objectType) const;

    /// Null for an unknown code.
    std::unique_ptr<ML::CProjectedPoint> GetProjectedPoint(const Tellurion::BString& issuer,
                                                           const Tellurion::BString& code) const;
    std::unique_ptr<CS::CGeodeticCoordSys> GetGeodeticCoordSysNonThrow(const Tellurion::BString& issuer,
                                                                       const Tellurion::BString& code) const;
    std::unique_ptr<CS::CHorizontalDatum> GetHorizontalDatumNonThrow(const Tellurion::BString& issuer,
                                                                     const Tellurion::BString& code) const;

    /// The systems that are the same as an object, current ones before deprecated ones.
    std::vector<CEquivalent> Equivalent(const CS::CCoordSys& object) const;
    /// The same within what PJ::CProjection::IsNearlyEqual leaves open.
    std::vector<CEquivalent> EquivalentLessRestrictive(const CS::CCoordSys& object) const;

    /// The code of the database's own for the current entry that is the same as a projected object,
    /// nearly if none is fully; for a deprecated one if there is no other, empty if there is none.
    Tellurion::BString FindPreferredCode(const CS::CProjectedCoordSys& object) const;
    /// The system of that code; without one, what the object describes.
    CS::CCoordSys::Definition FindPreferred(const CS::CProjectedCoordSys& object) const;

    /// Stores a copy of a projected system under its code of the database's own; one of
    /// that code is replaced with `overwrite`. False when nothing was stored. `commit`
    /// has no effect: what is stored lives as long as the process.
    bool PutSerializable(int objectType, const CS::CCoordSys& object, bool overwrite, bool commit);

    /// The system of a code of the database's own, of ("EPSG", number) or ("ERMapper",
    /// name); null for an unknown one.
    CS::CCoordSys::Definition Find(const Tellurion::BString& issuer, const Tellurion::BString& code) const;

    /// The ER Mapper name that a walk through Search() for a nearly equal projection
    /// finds first, at the cost of a look-up; empty without one.
    Tellurion::BString FindERMapperName(const PJ::CProjection& projection) const;

    /// Whether that name, without a datum beside it, is read as the same place.
    bool IsERMapperNameFor(const Tellurion::BString& name, const CS::CCoordSys& system) const;

    /// The names of the ER Mapper family; read on first need.
    const ErMapperNames& GetERMapperNames() const { return ErMapperNames::Instance(); }

private:
    using Stored = std::shared_ptr<const CS::CProjectedCoordSys>;

    CDataSource() = default;
    std::vector<Stored> GetStored() const;
    std::vector<CEquivalent> FindSame(const CS::CCoordSys& object, bool restrictive) const;

    mutable std::mutex mutex_;
    std::vector<Stored> stored_;
};

}  // namespace GeoCalc::DB

#pragma once

#include "CCoordSys.h"
#include "CGeodeticCoordSys.h"
#include "CProjectedPoint.h"

#include <GeoCalc/CProjection.h>

#include <Tellurion/BString.h>
#include <Tellurion/Export.h>

#include <functional>
#include <memory>
#include <optional>

namespace GeoCalc::CS {

/// A projection of a geodetic coordinate system. Its parts are read when they are
/// first asked for; changing one changes the system.
class TELLURION_EXPORT CProjectedCoordSys : public CCoordSys {
public:
    explicit CProjectedCoordSys(const Definition& definition);
    /// An entry of the database: named and identified by the caller, its definition
    /// made when it is needed.
    explicit CProjectedCoordSys(std::function<Definition()> maker) : CCoordSys(std::move(maker)) {}
    /// The same with the projection already known.
    CProjectedCoordSys(std::function<Definition()> maker, const PJ::CProjection& projection);
    CProjectedCoordSys(const CProjectedCoordSys& other);
    ~CProjectedCoordSys() override;
    std::unique_ptr<CCoordSys> Clone() const override;
    Definition GetDefinition() const override;

    PJ::CProjection& GetProjection();
    const PJ::CProjection& GetProjection() const;

    CGeodeticCoordSys& GetGeodeticCoordSys();
    const CGeodeticCoordSys& GetGeodeticCoordSys() const;
    void SetGeodeticCoordSys(const CGeodeticCoordSys& geodetic);
    CHorizontalDatum* GetHorizontalDatum() override { return GetGeodeticCoordSys().GetHorizontalDatum(); }

    const ML::CProjectedPoint& GetProjectedPoint() const;
    /// Positions are in the point's unit from now on. The projection's lengths
    /// keep theirs until they are set again.
    void SetProjectedPoint(const ML::CProjectedPoint& point);
    /// Positions and the false origin are in the unit from now on.
    void SetUnits(const Tellurion::BSharedPtr<Tellurion::BLinearUnit>& unit);

private:
    struct Parts {
        std::optional<PJ::CProjection> projection;
        std::optional<CGeodeticCoordSys> geodetic;
        std::optional<ML::CProjectedPoint> point;
    };
    struct Built {
        Definition geodetic;
        double units_per_metre = 0.0;
        int changes = 0;
        Definition definition;
    };

    bool HasNewUnit() const;
    bool HasNewDatum() const;
    Definition Build() const;

    mutable Parts parts_;
    mutable Built built_;
};

}  // namespace GeoCalc::CS

#pragma once

#include <Tellurion/BIdentifier.h>
#include <Tellurion/BPoint.h>
#include <Tellurion/BSharedPtr.h>
#include <Tellurion/BString.h>
#include <Tellurion/Export.h>

#include <atomic>
#include <memory>

namespace GeoCalc::CS {
class CCoordSys;
}

namespace Tellurion {

class BLinearUnit;
class BUnit;
class CoordSysDefinition;

/// A coordinate system. Longitude comes before latitude and easting before
/// northing everywhere, whatever the system's own axes say. Const operations may
/// run in several threads on one object; what is costly (other texts, conversion,
/// identification) is made on first use and kept.
///
/// A raw pointer from a static operation is a new object, the caller's. Texts that
/// cannot be understood give null; nothing is written to stderr.
class TELLURION_EXPORT BCoordSys {
public:
    BCoordSys(const BCoordSys& other);
    BCoordSys& operator=(const BCoordSys& other);
    virtual ~BCoordSys();

    /// 1 geodetic (longitude and latitude), 3 projected; 0 for anything else. A
    /// compound system answers for its horizontal part.
    virtual int GetKind() const;
    /// True for a system that places positions on the Earth.
    virtual bool IsValid() const;
    /// Fills `out` with the issuer's code for the system: ("EPSG", "32633"), ("GC",
    /// "EPSG:32633"), ("ERMapper", "NUTM33"). False when that issuer has none; a name of
    /// ER Mapper's is the system's own on the datum of that name only.
    virtual bool GetIdentifier(const BString& issuer, BIdentifier& out) const;

    static constexpr int kKindGeodetic = 1;   ///< an answer of GetKind()
    static constexpr int kKindProjected = 3;  ///< an answer of GetKind()

    /// Reads a PRJ text file: well-known text, usually in ESRI's flavour. No text is read
    /// that names a file by its path, such as a grid of datum shifts: here it is logged, and
    /// FromWKT() throws a BCoordSysException.
    static BCoordSys* FromFile(const BString& path);
    /// Well-known text 1 in GDAL's and in ESRI's flavour, and well-known text 2.
    static BCoordSys* FromWKT(const BString& text);
    /// A number, or "EPSG:" and a number.
    static BCoordSys* FromEPSGCode(const BString& code);

    /// The system that a person names, in whatever words: "EPSG:25832" or a bare number, a
    /// code of another issuer such as "ESRI:102100", a pair such as "EPSG:25832+7837", a URN or
    /// URL of OGC, well-known text of any kind, PROJJSON, a PROJ string, a MapInfo clause, ER
    /// Mapper names, the path of a PRJ file, or the name of a system, such as "ETRS89 / UTM
    /// zone 32N". Null when nothing is known by it; throws a BCoordSysException for a MapInfo
    /// clause that cannot be understood. `understoodAs`, where given, becomes the kind of text.
    static BCoordSys* FromText(const BString& text, BString* understoodAs = nullptr);

    /// Replaces a file by ToPRJ(), as BFileReplacement does; true on success. A failure
    /// is logged, and the old file then stays.
    bool ToFile(const BString& path) const;
    /// Well-known text 1 in GDAL's flavour; of a compound system the horizontal
    /// part. Well-known text 2 of a system that version 1 cannot describe.
    BString ToWKT() const;
    /// The same of the whole system: with its vertical part, its third axis and the epoch of
    /// its coordinates.
    BString ToWholeWKT() const;
    BString ToWKT2() const;      ///< well-known text 2 of 2019, of the whole system
    BString ToPROJJSON() const;  ///< of the whole system; empty when it cannot describe it
    /// A PROJ string, which keeps the ellipsoid but not the name of the datum; empty when it
    /// cannot describe the system.
    BString ToPROJString() const;
    /// Well-known text 1 in ESRI's flavour. Web Mercator is named
    /// WGS_84_Pseudo_Mercator there, with a whole-numbered Auxiliary_Sphere_Type.
    BString ToPRJ() const;
    /// "EPSG:" and the number that the text states or, without one, that of the one
    /// EPSG system that is the same; empty when there is none.
    BString ToEPSGCode() const;
    BString GetName() const;  ///< as its text states it; may be empty

    /// The unit of the horizontal axes.
    BSharedPtr<BUnit> GetUnits() const;
    /// The unit of the vertical part; empty without one.
    BSharedPtr<BLinearUnit> GetVerticalUnits() const;
    /// The geodetic system under a projected one, the horizontal system of a
    /// compound one; null when there is none. A new object, the caller's.
    BCoordSys* GetBaseCoordSys() const;
    /// The vertical part of a compound system; null without one. A new object, the caller's.
    BCoordSys* GetVerticalCoordSys() const;
    /// The epoch of the coordinates as a decimal year; 0 when none is stated.
    double GetCoordinateEpoch() const;
    /// Fills `out` with the issuer's code for the datum: ("EPSG", "6326"),
    /// ("ERMapper", "WGS84"). False when that issuer has none.
    bool GetDatumIdentifier(const BString& issuer, BIdentifier& out) const;

    /// To longitude and latitude in degrees, on the system's own datum and prime
    /// meridian, and back; z is kept. Throws a BCoordSysException where the
    /// projection has no value.
    BPoint ConvertToGeodetic(const BPoint& point) const;
    BPoint ConvertFromGeodetic(const BPoint& point) const;  ///< the way back

    /// True when both are the same system by what they are: kind, datum, projection and
    /// heights, or by the same EPSG code. Names and the order of axes do not count.
    bool IsSame(const BCoordSys& other) const;
    /// True when both place the same coordinates within that many metres of each other on the
    /// Earth, all over the area of `other`. Heights do not count.
    bool IsSame(const BCoordSys& other, double toleranceMetres) const;
    /// That distance in metres, the largest found; infinite when there is no way to compare.
    double DistanceTo(const BCoordSys& other) const;
    /// True when there is a way from this system to `other`.
    bool CanConvertTo(const BCoordSys& other) const;
    /// The coordinates in `other` of a position in this system, across datums, horizontally; z
    /// is kept. Throws a BCoordSysException where there is no value or no way.
    BPoint ConvertTo(const BCoordSys& other, const BPoint& point) const;

    /// The database's object behind the system; this one's own, and lives as long.
    /// Changing it changes the system.
    GeoCalc::CS::CCoordSys* GetGCCoordSys() const;

    /// For the library's own use.
    explicit BCoordSys(std::shared_ptr<const CoordSysDefinition> definition);
    std::shared_ptr<const CoordSysDefinition> GetDefinition() const;  ///< for the library's own use

private:
    std::shared_ptr<const CoordSysDefinition> definition_;
    /// Made on first request; owned.
    mutable std::atomic<GeoCalc::CS::CCoordSys*> object_{nullptr};
};

}  // namespace Tellurion

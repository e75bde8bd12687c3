#pragma once

#include "crs/GeodeticConversion.h"
#include "crs/ProjObjects.h"

#include <Tellurion/BLinearUnit.h>
#include <Tellurion/BPoint.h>
#include <Tellurion/BString.h>
#include <Tellurion/BUnit.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace Tellurion {

/// What one coordinate system is; shared by all BCoordSys of the same text and never
/// changed. Its faces are made when they are first asked for and kept. Safe to use
/// from several threads.
class CoordSysDefinition {
public:
    using Ptr = std::shared_ptr<const CoordSysDefinition>;

    /// Of a coordinate reference system; null for any other object.
    static Ptr Make(Proj::Object crs, double epoch = 0.0);
    /// Of well-known text, which may state a coordinate epoch around it; null when it cannot
    /// be understood. Nothing is cached here. A text that names a file by its path is a
    /// BCoordSysException: PROJ would open it.
    static Ptr FromWkt(const BString& text);
    /// The same of any other text that PROJ understands: PROJJSON, a PROJ string, an identifier.
    static Ptr FromProjText(const std::string& text);
    /// Of a geodetic or projected EPSG system, or a compound one of these; else null.
    static Ptr FromEpsg(int number);

    enum class Kind { Other = 0, Geodetic = 1, Projected = 3 };
    /// Of a compound system, that of its horizontal part.
    Kind GetKind() const { return kind_; }
    bool IsCompound() const { return compound_; }
    const BString& Name() const { return name_; }

    /// Of the horizontal part: version 1, or 2 where 1 cannot describe it; and ESRI's.
    BString Wkt() const;
    BString Prj() const;
    /// Of the whole system, with vertical part and epoch: version 1 where that describes it.
    BString WholeWkt() const;
    BString Wkt2() const;
    BString ProjJson() const;
    BString ProjString() const;
    /// The epoch of the coordinates as a year; 0 when the text states none.
    double Epoch() const { return epoch_; }
    /// The number that the text states, or that of the one same system; 0 without.
    int EpsgNumber() const;
    /// The number of the datum of the horizontal part, stated or identified; 0 without.
    int DatumEpsgNumber() const;

    /// The horizontal part of a compound system, the geodetic system of a projected
    /// one; null for any other.
    Ptr Base() const;
    /// The vertical part of a compound system; null without one.
    Ptr Vertical() const;
    /// The number of the geodetic system of the horizontal part; 0 without.
    int GeodeticEpsgNumber() const;

    /// The unit of the horizontal axes; empty when there are none.
    BSharedPtr<BUnit> HorizontalUnit() const;
    /// The unit of the vertical axis; empty without one.
    BSharedPtr<BLinearUnit> VerticalUnit() const;

    /// False where there is no value; `point` is unchanged then.
    bool ToGeodetic(BPoint& point) const;
    bool FromGeodetic(BPoint& point) const;

    /// A copy of the horizontal part, without a shift to another datum.
    Proj::Object CloneHorizontal() const;
    /// The same with that shift, where the text states one.
    Proj::Object CloneShifted() const;
    /// A copy of the whole system, of two axes unless it has heights, without a shift.
    Proj::Object CloneUnshifted() const;
    /// A copy of the vertical part of a compound system; null without one.
    Proj::Object CloneVertical() const;

    /// The name of the datum of the horizontal part; empty without one.
    BString DatumName() const;
    /// The same system under another name, without the number that it states.
    Ptr Renamed(const BString& name) const;

private:
    /// The parts of a system. One that equals the part above it is left empty.
    struct Parts {
        Proj::Object whole;       ///< as the text says
        Proj::Object horizontal;  ///< two axes, with a shift to another datum
        Proj::Object plain;       ///< the horizontal part without that shift
        Proj::Object vertical;    ///< of a compound system

        PJ* Horizontal() const { return horizontal ? horizontal.get() : whole.get(); }
        PJ* Plain() const { return plain ? plain.get() : Horizontal(); }
    };
    static Parts Split(Proj::Object crs);

    CoordSysDefinition(Parts parts, double epoch);
    /// The faces that most ask for are those of the same system in the list; the text is read when
    /// another one is asked for.
    CoordSysDefinition(const CoordSysDefinition& listed, std::string text);
    static Ptr FromListedPrj(const std::string& text);
    const Parts& GetParts() const;
    CoordSysDefinition(const CoordSysDefinition&) = delete;
    CoordSysDefinition& operator=(const CoordSysDefinition&) = delete;

    template <class T, class Maker>
    T Face(std::optional<T>& face, Maker make) const;
    const GeodeticConversion& Conversion() const;
    int HorizontalEpsg() const;
    bool IsWebMercator() const;
    Proj::Object GetDatum() const;
    int StatedDatum() const;
    int FindDatum() const;
    BSharedPtr<BLinearUnit> FindVerticalUnit() const;
    Ptr MakeBase() const;

    Kind kind_ = Kind::Other;
    bool compound_ = false;
    double epoch_ = 0.0;
    BString name_;

    /// Guards all that follows: PROJ's objects, also where they only answer. One face
    /// may be made of another, hence the recursion.
    mutable std::recursive_mutex mutex_;
    mutable std::string unread_;  ///< the text that parts_ are still to be read from
    mutable Parts parts_;
    struct Faces {
        std::optional<BString> wkt;
        std::optional<BString> prj;
        std::optional<BString> whole_wkt;
        std::optional<int> epsg;
        std::optional<int> horizontal_epsg;
        std::optional<int> datum_epsg;
        std::optional<BSharedPtr<BUnit>> horizontal_unit;
        std::optional<BSharedPtr<BLinearUnit>> vertical_unit;
        std::optional<Ptr> base;
        std::optional<GeodeticConversion> conversion;
    };
    mutable Faces faces_;
};

}  // namespace Tellurion

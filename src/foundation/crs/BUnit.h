#pragma once

#include <Tellurion/BIdentifier.h>
#include <Tellurion/BSharedPtr.h>
#include <Tellurion/BString.h>
#include <Tellurion/Export.h>

namespace Tellurion {

/// A unit of length or angle. The base of lengths is the metre, that of angles the
/// degree. Immutable.
class TELLURION_EXPORT BUnit {
public:
    virtual ~BUnit();

    /// How many of this unit make one base unit: 1 for metres and for degrees,
    /// 3937/1200 for US survey feet, 0.001 for kilometres.
    virtual double GetUnitsPerBase() const;

    /// The unit of an identifier, under the issuer "GC" ("METERS", "USFEET",
    /// "INTERNATIONAL FEET", "DEGREES" ...) or "EPSG" ("9001" ...); empty when unknown.
    static BSharedPtr<BUnit> GetUnit(const BIdentifier& identifier);

    bool IsLinear() const;  ///< a length; otherwise an angle
    /// The name in the manner of well-known text, such as "metre" or "US survey foot".
    BString GetName() const;
    /// Fills `out` with the issuer's code for this unit; false when it has none.
    bool GetIdentifier(const BString& issuer, BIdentifier& out) const;

    /// A unit that has no identifier, of `basePerUnit` metres or degrees.
    BUnit(const BString& name, double basePerUnit, bool linear);

protected:
    struct Row;
    explicit BUnit(const Row& row);  ///< of the library's own table

private:
    friend struct UnitTable;
    const Row* row_ = nullptr;
    BString name_;
    double units_per_base_;
    bool linear_;
};

}  // namespace Tellurion

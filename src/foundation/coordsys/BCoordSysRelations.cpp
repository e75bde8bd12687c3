#include <Tellurion/BCoordSys.h>

#include "coordsys/SystemFromText.h"
#include "crs/SystemTransformation.h"

#include <Tellurion/BCoordSysException.h>

// What a coordinate system is to a text that a person writes, and to other systems.
namespace Tellurion {

BCoordSys* BCoordSys::FromText(const BString& text, BString* understoodAs) {
    NamedSystem found = FindByText(text);
    if (understoodAs) *understoodAs = found.understood_as;
    return found.definition ? new BCoordSys(std::move(found.definition)) : nullptr;
}

bool BCoordSys::IsSame(const BCoordSys& other) const {
    return IsIdentical(*GetDefinition(), *other.GetDefinition());
}

bool BCoordSys::IsSame(const BCoordSys& other, double toleranceMetres) const {
    return DistanceTo(other) <= toleranceMetres;
}

double BCoordSys::DistanceTo(const BCoordSys& other) const {
    return DistanceBetween(GetDefinition(), other.GetDefinition());
}

bool BCoordSys::CanConvertTo(const BCoordSys& other) const {
    return SystemTransformation::Find(GetDefinition(), other.GetDefinition())->IsPossible();
}

BPoint BCoordSys::ConvertTo(const BCoordSys& other, const BPoint& point) const {
    constexpr const char* kSource = "BCoordSys::ConvertTo";
    const auto way = SystemTransformation::Find(GetDefinition(), other.GetDefinition());
    if (!way->IsPossible())
        throw BCoordSysException(
            "The coordinates cannot be converted.", kSource,
            BString::Format("No transformation from %s to %s is available.", GetName(), other.GetName()));
    BPoint converted = point;
    if (!way->Apply(converted))
        throw BCoordSysException("The coordinates cannot be converted.", kSource,
                                 BString::Format("%s has no value for (%.9g, %.9g) of %s.", other.GetName(),
                                                 point.x, point.y, GetName()));
    return converted;
}

}  // namespace Tellurion

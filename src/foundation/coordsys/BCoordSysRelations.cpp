#include <Tellurion/BCoordSys.h>

#include "coordsys/SystemFromText.h"

// What a coordinate system is to a text that a person writes.
namespace Tellurion {

BCoordSys* BCoordSys::FromText(const BString& text, BString* understoodAs) {
    NamedSystem found = FindByText(text);
    if (understoodAs) *understoodAs = found.understood_as;
    return found.definition ? new BCoordSys(std::move(found.definition)) : nullptr;
}

}  // namespace Tellurion

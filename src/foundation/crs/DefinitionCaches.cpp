#include "crs/DefinitionCaches.h"

namespace Tellurion {

DefinitionCaches& DefinitionCaches::Instance() {
    static auto* const instance = new DefinitionCaches;
    return *instance;
}

CoordSysDefinition::Ptr FindByWkt(const BString& text) {
    return DefinitionCaches::Instance().well_known_texts.Get(
        text.GetUnits(), [&] { return CoordSysDefinition::FromWkt(text); });
}

CoordSysDefinition::Ptr FindByEpsg(int number) {
    return DefinitionCaches::Instance().codes.Get(BString::Format("%d", number).GetUnits(),
                                                  [&] { return CoordSysDefinition::FromEpsg(number); });
}

}  // namespace Tellurion

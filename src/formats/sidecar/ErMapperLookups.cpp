#include "sidecar/CoordSysLookups.h"

#include <Tellurion/BCoordSysRepository.h>

namespace MapAnchor {

using Tellurion::BCoordSys;
using Tellurion::BCoordSysRepository;
using Tellurion::BIdentifier;
using Tellurion::BSharedPtr;
using Tellurion::BString;

namespace {

constexpr const char* kErMapper = "ERMapper";

BString Upper(BString text) {
    return text.ToUpper();
}

BSharedPtr<BCoordSys> GetSystem(const BString& issuer, const BString& code) {
    return BSharedPtr<BCoordSys>(BCoordSysRepository::Instance()->GetCoordSys({issuer, code}));
}

BSharedPtr<BCoordSys> GetSystemInAnyCase(const BString& code) {
    const BSharedPtr<BCoordSys> found = GetSystem(kErMapper, code);
    return found ? found : GetSystem(kErMapper, Upper(code));
}

BSharedPtr<BCoordSys> FindGeodetic(const BString& datum) {
    const BSharedPtr<BCoordSys> plain(BCoordSysRepository::Instance()->ReadCoordSysFromPlainTextStrings(
        "LAT-LONG", Upper(datum), "METERS"));
    return plain ? plain : GetSystemInAnyCase(datum);
}

}  // namespace

BSharedPtr<BCoordSys> FindERMapperCoordSys(const BString& projection, const BString& datum, const int&) {
    if (projection.IsEmpty()) return {};
    if (projection == BString("GEODETIC")) return FindGeodetic(datum);
    return GetSystemInAnyCase(projection);
}

bool GetERMapperProjectionName(BString& name, const BSharedPtr<BCoordSys>& coordSys) {
    if (!coordSys || coordSys->GetKind() == BCoordSys::kKindProjected) return false;
    BIdentifier identifier;
    if (!coordSys->GetDatumIdentifier(kErMapper, identifier)) return false;
    name = identifier.Code;
    return true;
}

}  // namespace MapAnchor

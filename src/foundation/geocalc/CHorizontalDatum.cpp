#include "geocalc/CHorizontalDatum.h"

#include "crs/CoordSysDefinition.h"
#include "names/ErMapperSystems.h"

namespace GeoCalc::CS {

using Tellurion::BString;

CHorizontalDatum::CHorizontalDatum(const Definition& geodetic) : geodetic_(geodetic) {
    SetName(geodetic->DatumName());
    GetIdentifiers().Add(kValGc, GetName());
    const int number = geodetic->DatumEpsgNumber();
    if (number != 0) GetIdentifiers().Add("EPSG", BString::Format("%d", number));
    const BString name = DB::ErMapperDatumNameOf(*geodetic);
    if (!name.IsEmpty()) GetIdentifiers().Add(DB::kErMapper, name);
}

CHorizontalDatum::~CHorizontalDatum() = default;

}  // namespace GeoCalc::CS

#include "geocalc/CVerticalReference.h"

#include "crs/CoordSysDefinition.h"
#include "crs/ProjObjects.h"

namespace GeoCalc::CS::VR {
namespace {

using Tellurion::BString;
namespace Proj = Tellurion::Proj;

void Describe(CSerializable& object, const BString& name, int epsg) {
    object.SetName(name);
    object.GetIdentifiers().Add(kValGc, name);
    if (epsg != 0) object.GetIdentifiers().Add("EPSG", BString::Format("%d", epsg));
}

Proj::Object DatumOf(const ::PJ* vertical) {
    Proj::Object datum(proj_crs_get_datum(Proj::ThreadContext(), vertical));
    if (!datum) datum.reset(proj_crs_get_datum_ensemble(Proj::ThreadContext(), vertical));
    return datum;
}

}  // namespace

CVerticalDatum::CVerticalDatum(const BString& name, int epsg) {
    Describe(*this, name, epsg);
}

CVerticalReference::CVerticalReference(const BString& name, int epsg) {
    Describe(*this, name, epsg);
}

CVerticalDatum::~CVerticalDatum() = default;
CVerticalReference::~CVerticalReference() = default;

std::unique_ptr<CVerticalReference> CVerticalReference::Make(
    const Tellurion::CoordSysDefinition& definition) {
    const Proj::Object vertical = definition.CloneVertical();
    if (!vertical) return nullptr;
    std::unique_ptr<CVerticalReference> reference(
        new CVerticalReference(Proj::NameOf(vertical.get()), Proj::StatedEpsg(vertical.get())));
    if (const Proj::Object datum = DatumOf(vertical.get()))
        reference->datum_ = CVerticalDatum(Proj::NameOf(datum.get()), Proj::StatedEpsg(datum.get()));
    return reference;
}

}  // namespace GeoCalc::CS::VR

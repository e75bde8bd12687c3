#include "geocalc/CDataSource.h"

#include <string>

namespace GeoCalc::DB {

using Tellurion::BString;

CDataSource& CDataSource::Instance() {
    static CDataSource instance;
    return instance;
}

const ErMapperDatum* CDataSource::FindERMapperDatum(const BString& name) const {
    return GetERMapperNames().FindDatum(name.StdStr());
}

const ErMapperProjection* CDataSource::FindERMapperProjection(const BString& name) const {
    return GetERMapperNames().FindProjection(name.StdStr());
}

BString CDataSource::GetERMapperDatumName(int geodeticEpsg) const {
    const ErMapperDatum* datum = GetERMapperNames().FindDatumByEpsg(geodeticEpsg);
    return datum ? BString(std::string(datum->name)) : BString();
}

}  // namespace GeoCalc::DB

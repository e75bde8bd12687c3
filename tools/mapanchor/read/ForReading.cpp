#include "read/ReadOptions.h"

#include <MapAnchor/BMapAnchor.h>

namespace Tool {

using MapAnchor::BMapAnchor;

ReadOptions::ReadOptions() {
    params.SetInteger(BMapAnchor::kValErsCodes, 1);
    params.SetInteger(BMapAnchor::kValPDFWide, 1);
}

MapAnchor::BReadingOptions ReadOptions::ForReading() const {
    MapAnchor::BReadingOptions reading;
    if (type) reading.SetType(*type);
    reading.SetFlags(flags);
    reading.SetSize(width.value_or(0), height.value_or(0));
    reading.SetFindsSize(true);
    reading.SetMathType(fit);
    if (pdf_box) reading.SetPdfBox(*pdf_box);
    reading.SetPdfStrict(pdf_by_rules);
    if (pdf_page != 1) reading.SetPdfPage(pdf_page);
    reading.SetPdfShown(pdf_shown);
    reading.SetListsPdfPages(pdf_list_pages);
    reading.SetExplains(explains);
    for (const Tellurion::BString& key : {BMapAnchor::kValPDFMap, BMapAnchor::kValPDFPassword})
        if (params.HasProperty(key)) reading.SetParam(key, params.GetString(key, ""));
    reading.SetResolution(dpi);
    reading.SetSource(Tellurion::BString(source));
    reading.SetCoordSys(crs, overrides_crs);
    return reading;
}

}  // namespace Tool

// Which dialect of geospatial PDF a page speaks.

#include "objects/CPDFArray.h"
#include "objects/CPDFDictionary.h"
#include "objects/CPDFDocument.h"
#include "objects/CPDFObject.h"
#include "objects/CPDFPage.h"

#include <podofo/podofo.h>

namespace VellumLib {
namespace {

/// Through a reference or held directly.
CPDFDictionary EitherWay(CPDFDocument& document, const CPDFDictionary& holder, const char* key) {
    try {
        return document.GetDictionaryFromReference(holder.GetReference(key));
    } catch (const PoDoFo::PdfError&) {
        return holder.GetDictionary(key);
    }
}

bool NamesSystem(const CPDFDictionary& system) {
    return system.HasKey("Type") && (system.HasKey("WKT") || system.HasKey("EPSG"));
}

bool IsUsable(CPDFDocument& document, const CPDFDictionary& viewport) {
    constexpr int kFewestNumbers = 8;
    const CPDFDictionary measure = EitherWay(document, viewport, "Measure");
    if (!measure.HasKey("GCS") || !measure.HasKey("GPTS") || !measure.HasKey("LPTS")) return false;
    const bool enough = measure.GetArray("GPTS").GetSize() >= kFewestNumbers;
    const CPDFDictionary system = EitherWay(document, measure, "GCS");
    return enough && NamesSystem(system);
}

/// The first entry alone decides, whatever the others hold.
bool HasUsableViewport(CPDFDocument& document, const CPDFDictionary& page) {
    if (!page.HasKey("VP")) return false;
    const CPDFArray viewports = page.GetArray("VP");
    if (viewports.GetSize() == 0) return false;
    const CPDFObject first = viewports[0];
    if (!first.IsDictionary()) return false;
    const CPDFDictionary viewport = first.GetDictionary();
    return viewport.HasKey("Measure") && IsUsable(document, viewport);
}

}  // namespace

std::int32_t CPDFPage::GetSpatialKind() const {
    const CPDFDictionary page = GetDictionary();
    if (HasUsableViewport(*document_, page)) return kSpatialMeasure;
    return page.HasKey("LGIDict") ? kSpatialLGIDict : kSpatialNone;
}

}  // namespace VellumLib

#include <MapAnchor/BGeoPDFPages.h>

#include "PdfFunctions.h"

namespace MapAnchor {

BGeoPDFPages BGeoPDFPages::List(const Tellurion::BString& file) {
    return ListPages(file);
}

BGeoPDFPages BGeoPDFPages::Describe(const Tellurion::BString& file, const Tellurion::BParamList* params) {
    return DescribePage(file, params);
}

}  // namespace MapAnchor

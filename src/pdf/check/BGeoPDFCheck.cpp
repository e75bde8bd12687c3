#include <MapAnchor/BGeoPDFCheck.h>

#include "PdfFunctions.h"

namespace MapAnchor {

std::vector<BDiagnostic> BGeoPDFCheck::Of(const Tellurion::BString& file) {
    return CheckFile(file);
}

}  // namespace MapAnchor

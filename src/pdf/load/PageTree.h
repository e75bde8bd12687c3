#pragma once

#include <podofo/podofo.h>

namespace VellumLib {

/// Throws PageNotFound where the way down to that page is too long or comes back to
/// itself. To be asked before PoDoFo looks for a page: it goes down by recursion, and
/// where it gives up it is one level short on that thread ever after.
void RequireReachablePage(PoDoFo::PdfMemDocument& document, int index);

}  // namespace VellumLib

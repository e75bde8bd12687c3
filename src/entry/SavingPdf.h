#pragma once

#include <MapAnchor/BDiagnostic.h>
#include <MapAnchor/BSavingOptions.h>
#include <Tellurion/BGeoReference.h>
#include <Tellurion/BString.h>

#include <vector>

namespace MapAnchor {

/// What goes to the writer of PDF so that a raster fills a box of the page.
struct PagePlacement {
    Tellurion::BGeoReference reference;
    BSavingOptions options;                ///< with the size and resolution for the writer
    BSavingOptions read_options;           ///< the same for reading back
    std::vector<BDiagnostic> diagnostics;  ///< such as a raster that does not fill the box
};

/// The writer starts at the page's origin and knows the raster's size and resolution. A box that
/// begins elsewhere is reached by a finer raster over the whole of the page:
///
///     +-----------------+ the page     columns and rows of the finer raster count from here
///     |   +--------+    |
///     |   | raster |    |              its own corner is at (box.left, box.top)
///     |   +--------+    |
///     o-----------------+
///
/// Without a resolution the raster is as wide as the box; without a size it fills the box at the
/// resolution. Throws a BReadParametersException for a size that is not known.
PagePlacement PlaceOnPage(const Tellurion::BString& file, const Tellurion::BGeoReference& reference,
                          const BSavingOptions& options);

}  // namespace MapAnchor

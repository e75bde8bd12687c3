#pragma once

#include <MapAnchor/BDiagnostic.h>
#include <MapAnchor/Export.h>
#include <Tellurion/BString.h>

#include <vector>

namespace MapAnchor {

/// Compares the maps of a PDF with what ISO 32000-2 asks of viewports and measures, and the two
/// dialects of a page with each other. A file that passes may still be read by few: other readers
/// have rules of their own.
class MAPANCHOR_EXPORT BGeoPDFCheck {
public:
    /// What is wrong, in the order of the pages: at most 1,000 diagnostics, each with the page, the
    /// map and the key as its place. Errors break the standard, warnings are doubts. Empty for a
    /// file without maps. Never throws for what the file holds.
    static std::vector<BDiagnostic> Of(const Tellurion::BString& file);
};

}  // namespace MapAnchor

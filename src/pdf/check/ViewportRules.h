#pragma once

#include "wide/WidePages.h"
#include "wide/WideValue.h"

#include <MapAnchor/BDiagnostic.h>
#include <Tellurion/BString.h>

#include <functional>
#include <string>

namespace MapAnchor {

/// Takes one finding: the id, the sentence, the key within the map.
using Finding = std::function<void(BDiagnostic::ESeverity severity, const char* id, const std::string& text,
                                   const std::string& key)>;

/// What ISO 32000-2 asks of an entry of a page's "VP" whose measure is a geospatial one. Other
/// viewports pass.
void CheckViewport(const VellumLib::WidePage& page, const VellumLib::WideValue& viewport,
                   const Finding& found);

}  // namespace MapAnchor

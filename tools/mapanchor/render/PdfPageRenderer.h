#pragma once

#include "terminal/Console.h"

#include <MapAnchor/BGeoPDFPage.h>

#include <string>

namespace Tool {

std::string RenderPdfPage(const MapAnchor::BGeoPDFPage& page, const Console& console);

}  // namespace Tool

#pragma once

#include "terminal/Console.h"

#include <MapAnchor/BGeoPDFPage.h>

#include <nlohmann/json.hpp>

namespace Tool {

std::string RenderPdfPage(const MapAnchor::BGeoPDFPage& page, const Console& console);
nlohmann::ordered_json PdfPageJson(const MapAnchor::BGeoPDFPage& page);

}  // namespace Tool

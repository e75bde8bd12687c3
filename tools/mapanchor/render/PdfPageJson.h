#pragma once

#include <MapAnchor/BGeoPDFPage.h>

#include <nlohmann/json.hpp>
#include <vector>

namespace Tool {

nlohmann::ordered_json PdfPageJson(const MapAnchor::BGeoPDFPage& page);

const char* WordFor(MapAnchor::BGeoPDFPage::EDialect dialect);

/// A box of a page, by the name that people know it under.
struct NamedBox {
    const char* name;
    const MapAnchor::BGeoPDFBox& box;
};
/// Those of the page, which must outlive them.
std::vector<NamedBox> BoxesOf(const MapAnchor::BGeoPDFPage& page);

}  // namespace Tool

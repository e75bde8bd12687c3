#pragma once

#include "export/SaveParts.h"

#include <podofo/podofo.h>

#include <Tellurion/BString.h>

#include <array>
#include <string>

namespace MapAnchor {

/// One map of a page, ready to be written.
struct MapToWrite {
    Tellurion::BString system_text;  ///< well-known
    Tellurion::BString system_code;  ///< "EPSG:32633", or empty
    Tellurion::BString system_name;
    Tellurion::BString unit_name;
    Tellurion::BString name = "AllLayers";  ///< of the viewport
    bool projected = false;
    double width = 0.0;  ///< of the raster on the page, in the units of the page
    double height = 0.0;
    std::array<double, 2> origin{};  ///< of its lower left corner
    TiePoints points;                ///< from its top left corner
};

/// The longest edge that the rules allow for a page.
constexpr double kLongestEdge = 14400.0;

// The objects of a map as they are in a file. All numbers have all their digits.

/// The viewport of the page.
std::string ViewportText(const MapToWrite& map, const PoDoFo::PdfReference& measure);
std::string MeasureText(const MapToWrite& map, const PoDoFo::PdfReference& system);
std::string SystemText(const MapToWrite& map);
std::string ReferenceText(const PoDoFo::PdfReference& reference);
/// A string: ASCII as it is, with its brackets escaped; other text as UTF-16 with its mark.
std::string StringText(const Tellurion::BString& text);

}  // namespace MapAnchor

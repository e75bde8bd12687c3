#include "sidecar/kml/GroundOverlay.h"

#include "raster/gdal/XmlTree.h"

#include <Tellurion/Numbers.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>

namespace MapAnchor {

using namespace Tellurion;
using Corner = GroundOverlay::Corner;

namespace {

constexpr double kTurn = 360.0;

std::optional<double> NumberIn(const char* text) {
    std::string_view rest = text;
    double value = 0.0;
    if (!ScanDouble(rest, value) || !std::isfinite(value)) return std::nullopt;
    return value;
}

bool ParseBox(CPLXMLNode* box, GroundOverlay& overlay, std::string& fault) {
    std::array<double, 4> sides{};
    const std::array<const char*, 4> names = {"north", "south", "east", "west"};
    for (std::size_t i = 0; i < sides.size(); ++i) {
        const auto value = NumberIn(CPLGetXMLValue(box, names.at(i), ""));
        if (!value) fault = std::string("its LatLonBox has no number ") + names.at(i);
        if (!value) return false;
        sides.at(i) = *value;
    }
    if (NumberIn(CPLGetXMLValue(box, "rotation", "0")).value_or(1.0) != 0.0) {
        fault = "its LatLonBox has a rotation, which is not read";
        return false;
    }
    const double east = sides[2] < sides[3] ? sides[2] + kTurn : sides[2];
    overlay = {{{{sides[3], sides[0]}, {east, sides[0]}, {east, sides[1]}, {sides[3], sides[1]}}}, true};
    return true;
}

bool ParseQuad(CPLXMLNode* quad, GroundOverlay& overlay, std::string& fault) {
    std::string_view text = CPLGetXMLValue(quad, "coordinates", "");
    fault = "its gx:LatLonQuad has no four corners";
    for (const std::size_t corner : {3U, 2U, 1U, 0U}) {
        Corner& at = overlay.corners.at(corner);
        text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
        if (!ScanDouble(text, at.longitude) || !text.starts_with(',')) return false;
        text.remove_prefix(1);
        if (!ScanDouble(text, at.latitude)) return false;
        text.remove_prefix(std::min(text.find_first_of(" \t\r\n"), text.size()));  // a height
        if (!std::isfinite(at.longitude) || !std::isfinite(at.latitude)) return false;
    }
    fault.clear();
    return true;
}

}  // namespace

bool ParseKml(const BString& file, GroundOverlay& overlay, std::string& fault) {
    const XmlTree tree = ReadXml(file);
    fault = "it is not an XML document of at most 16 MiB";
    if (!tree) return false;
    CPLStripXMLNamespace(tree.get(), nullptr, TRUE);
    CPLXMLNode* const found = CPLSearchXMLNode(tree.get(), "=GroundOverlay");
    fault = "it has no GroundOverlay";
    if (!found) return false;
    if (CPLXMLNode* const box = CPLGetXMLNode(found, "LatLonBox")) return ParseBox(box, overlay, fault);
    if (CPLXMLNode* const quad = CPLGetXMLNode(found, "LatLonQuad")) return ParseQuad(quad, overlay, fault);
    fault = "its GroundOverlay has neither LatLonBox nor gx:LatLonQuad";
    return false;
}

}  // namespace MapAnchor

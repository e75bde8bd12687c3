#include "sidecar/kml/GroundOverlay.h"

#include <Tellurion/BException.h>
#include <Tellurion/Numbers.h>
#include <Tellurion/XmlText.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

namespace MapAnchor {

using namespace Tellurion;
using Corner = GroundOverlay::Corner;

namespace {

constexpr double kTurn = 360.0;

/// The position of a pixel on the globe.
class Globe {
public:
    explicit Globe(const BGeoReference& reference)
        : reference_(reference), wgs84_(BCoordSys::FromText("EPSG:4326")) {}

    std::optional<Corner> At(double column, double row) const {
        double x = column;
        double y = row;
        if (!wgs84_ || !reference_.MathTransform->ConvertSourceToTarget(x, y)) return std::nullopt;
        const BPoint there = reference_.CoordSys->ConvertTo(*wgs84_, BPoint(x, y, 0.0));
        if (!std::isfinite(there.x) || !std::isfinite(there.y)) return std::nullopt;
        return Corner{there.x, there.y};
    }

private:
    const BGeoReference& reference_;
    std::unique_ptr<BCoordSys> wgs84_;
};

/// On the side of the globe where another longitude is.
double Near(double longitude, double other) {
    return other + std::remainder(longitude - other, kTurn);
}

double Length(const Corner& a, const Corner& b) {
    return std::hypot(a.longitude - b.longitude, a.latitude - b.latitude);
}

/// Sides that leave the parallel or meridian by less than a thousandth of a pixel are along it.
bool IsBox(const std::array<Corner, 4>& c, double width, double height) {
    constexpr double kSlack = 1e-3;
    const double dx = kSlack * Length(c[0], c[1]) / width;
    const double dy = kSlack * Length(c[0], c[3]) / height;
    return std::fabs(c[0].latitude - c[1].latitude) < dy && std::fabs(c[3].latitude - c[2].latitude) < dy &&
           std::fabs(c[0].longitude - c[3].longitude) < dx &&
           std::fabs(c[1].longitude - c[2].longitude) < dx && c[1].longitude > c[0].longitude &&
           c[0].latitude > c[3].latitude;
}

std::string Element(const char* name, double value) {
    const std::string tag = name;
    return std::string("<")
        .append(tag)
        .append(">")
        .append(PrintShortest(value))
        .append("</")
        .append(tag)
        .append(">");
}

std::string Placement(const GroundOverlay& overlay) {
    const auto& c = overlay.corners;
    if (overlay.is_box)
        return "    <LatLonBox>" + Element("north", c[0].latitude) + Element("south", c[2].latitude) +
               Element("east", c[2].longitude) + Element("west", c[0].longitude) + "</LatLonBox>\n";
    std::string text = "    <gx:LatLonQuad><coordinates>";
    for (const int corner : {3, 2, 1, 0}) {  // from the lower left one, counterclockwise
        const Corner& at = c[static_cast<std::size_t>(corner)];
        if (corner != 3) text += ' ';
        text.append(PrintShortest(at.longitude)).append(",").append(PrintShortest(at.latitude));
    }
    return text + "</coordinates></gx:LatLonQuad>\n";
}

}  // namespace

GroundOverlay OverlayOf(const BGeoReference& reference, long width, long height) {
    const Globe globe(reference);
    const auto w = static_cast<double>(width);
    const auto h = static_cast<double>(height);
    GroundOverlay overlay;
    const std::array<std::pair<double, double>, 4> pixels = {{{0, 0}, {w, 0}, {w, h}, {0, h}}};
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const auto corner = globe.At(pixels.at(i).first, pixels.at(i).second);
        if (!corner)
            throw BException(BString("OverlayOf"),
                             BString("a corner of the raster has no longitude and latitude"));
        overlay.corners.at(i) = *corner;
        overlay.corners.at(i).longitude = Near(corner->longitude, overlay.corners[0].longitude);
    }
    overlay.is_box = IsBox(overlay.corners, w, h);
    return overlay;
}

double InteriorError(const GroundOverlay& overlay, const BGeoReference& reference, long width, long height) {
    constexpr int kSteps = 8;
    constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();
    const Globe globe(reference);
    const auto& c = overlay.corners;
    const auto w = static_cast<double>(width);
    const auto h = static_cast<double>(height);
    const double across = std::min(Length(c[0], c[1]), Length(c[3], c[2])) / w;
    const double down = std::min(Length(c[0], c[3]), Length(c[1], c[2])) / h;
    double worst = 0.0;
    for (int i = 0; i <= kSteps; ++i) {
        for (int j = 0; j <= kSteps; ++j) {
            const double u = static_cast<double>(i) / kSteps;
            const double v = static_cast<double>(j) / kSteps;
            const auto there = globe.At(u * w, v * h);
            if (!there) return kUnknown;
            const auto blend = [&](double Corner::*part) {
                return (1 - v) * ((1 - u) * c[0].*part + u * c[1].*part) +
                       v * ((1 - u) * c[3].*part + u * c[2].*part);
            };
            const double longitude = blend(&Corner::longitude);
            worst = std::max(worst, std::hypot((Near(there->longitude, longitude) - longitude) / across,
                                               (there->latitude - blend(&Corner::latitude)) / down));
        }
    }
    return worst;
}

std::string FormatKml(const GroundOverlay& overlay, const std::string& name, const std::string& image) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<kml xmlns=\"http://www.opengis.net/kml/2.2\" "
           "xmlns:gx=\"http://www.google.com/kml/ext/2.2\">\n"
           "  <GroundOverlay>\n    <name>" +
           XmlEscaped(name) + "</name>\n    <Icon><href>" + XmlEscaped(image) + "</href></Icon>\n" +
           Placement(overlay) + "  </GroundOverlay>\n</kml>\n";
}

}  // namespace MapAnchor

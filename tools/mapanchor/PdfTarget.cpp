#include "PdfTarget.h"

#include <MapAnchor/BGeoPDFPage.h>
#include <MapAnchor/BMapAnchor.h>
#include <Tellurion/BException.h>
#include <Tellurion/BFileUtilities.h>

#include <algorithm>
#include <cmath>
#include <numbers>

using MapAnchor::BGeoPDFBox;
using MapAnchor::BGeoPDFPage;
using MapAnchor::BMapAnchor;
using namespace Tellurion;

namespace {

constexpr double kPointsPerInch = 72.0;
/// Of a sphere as large as the Earth, in metres; enough for a distance of pixels.
constexpr double kEarthRadius = 6371008.8;

double GroundDistance(const BPoint& a, const BPoint& b) {
    const double radians = std::numbers::pi / 180.0;
    const double north = (b.y - a.y) * radians;
    const double east = std::remainder(b.x - a.x, 360.0) * radians * std::cos(a.y * radians);
    return kEarthRadius * std::hypot(north, east);
}

BPoint ToGeodetic(const BGeoReference& reference, const BPoint& world) {
    return reference.CoordSys->GetKind() == BCoordSys::kKindProjected
               ? reference.CoordSys->ConvertToGeodetic(world)
               : world;
}

bool IsComplete(const BGeoReference& reference) {
    return reference.HasMathTransform() && reference.HasCoordSys();
}

}  // namespace

bool IsPdfName(const std::string& file) {
    return BFileUtilities::GetExtension(BString(file)).ToLower() == BString(".pdf");
}

std::optional<RasterSize> SizeOfPage(const std::string& pdf, double dpi) {
    const BGeoPDFPage page = BGeoPDFPage::Describe(BString(pdf));
    const BGeoPDFBox& box = page.MediaBox;
    if (!page.Loaded || !box.Present) return std::nullopt;
    const RasterSize size{std::lround((box.Right - box.Left) * dpi / kPointsPerInch),
                          std::lround((box.Top - box.Bottom) * dpi / kPointsPerInch)};
    if (size.width < 1 || size.height < 1) return std::nullopt;
    return size;
}

std::optional<Closeness> CompareAtCorners(const std::string& pdf, const BGeoReference& meant, RasterSize size,
                                          std::string& fault) {
    try {
        BGeoReference saved;
        BMapAnchor::Read(EReferenceType::GeoPDF, BString(pdf), saved, size.width, size.height,
                         EMathTransformType::Affine, 0, nullptr);
        if (!IsComplete(meant) || !IsComplete(saved)) {
            fault = "one of the two references has no transform or no coordinate system";
            return std::nullopt;
        }
        Closeness worst;
        const double right = static_cast<double>(size.width);
        const double bottom = static_cast<double>(size.height);
        for (const BPoint& corner :
             {BPoint(0, 0, 0), BPoint(right, 0, 0), BPoint(right, bottom, 0), BPoint(0, bottom, 0)}) {
            const BPoint here = ToGeodetic(meant, meant.MathTransform->ConvertSourceToTarget(corner));
            const BPoint there = ToGeodetic(saved, saved.MathTransform->ConvertSourceToTarget(corner));
            const BPoint world = saved.CoordSys->GetKind() == BCoordSys::kKindProjected
                                     ? saved.CoordSys->ConvertFromGeodetic(here)
                                     : here;
            const BPoint pixel = saved.MathTransform->ConvertTargetToSource(world);
            worst.pixels = std::max(worst.pixels, std::hypot(pixel.x - corner.x, pixel.y - corner.y));
            worst.metres = std::max(worst.metres, GroundDistance(here, there));
        }
        return worst;
    } catch (const BException& error) {
        fault = error.what();
        return std::nullopt;
    }
}

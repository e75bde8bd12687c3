#include "export/SaveParts.h"

#include "PdfParameters.h"
#include "export/BMapAnchorGCPSampler.h"
#include "export/WebMercatorText.h"

#include <MapAnchor/BGeoReferenceInvalidCoordSysException.h>
#include <Tellurion/BException.h>

#include <cmath>

namespace MapAnchor {

using Tellurion::BCoordSys;
using Tellurion::BException;
using Tellurion::BGeoReference;
using Tellurion::BIdentifier;
using Tellurion::BKeyValuePairs;
using Tellurion::BPoint;
using Tellurion::BPointPair;
using Tellurion::BString;
using VellumLib::CPDFPathPoint;

namespace {

constexpr const char* kSource = "BRefGeoPDF::Write";
constexpr double kPointsPerInch = 72.0;
constexpr unsigned char kStrictCoordSysBit = 2;
constexpr std::size_t kFewestPoints = 4;

CPDFPathPoint PointAt(double x, double y) {
    CPDFPathPoint point;
    point.x = x;
    point.y = y;
    return point;
}

void AddTiePoint(TiePoints& points, const CPDFPathPoint& pixel, const CPDFPathPoint& world) {
    if (!std::isfinite(world.x) || !std::isfinite(world.y))
        throw BException("Could not generate Tie points", kSource, "A control point is not finite.");
    points.pixels.push_back(pixel);
    points.worlds.push_back(world);
}

void RequireTransform(const BGeoReference& reference) {
    if (!reference.HasMathTransform())
        throw BException("Could not generate Tie points", kSource, "No Tie points found");
}

/// The reference's own points. True when there are enough of them to go by.
bool AddControlPoints(TiePoints& points, const BGeoReference& reference, bool projected, double scale) {
    for (const BPointPair& pair : reference.PointPairVector) {
        if (!pair.Enabled) continue;
        const BPoint world = projected ? reference.CoordSys->ConvertToGeodetic(pair.World) : pair.World;
        AddTiePoint(points, PointAt(pair.Column * scale, pair.Row * scale), PointAt(world.x, world.y));
    }
    return points.pixels.size() >= kFewestPoints;
}

/// Points that stand for the transform.
bool AddSampledPoints(TiePoints& points, const BGeoReference& reference, bool projected, double scale,
                      long width, long height) {
    BMapAnchorGCPSampler sampler(reference, projected);
    const double right = static_cast<double>(width);
    const double bottom = static_cast<double>(height);
    if (!sampler.Sample(PointAt(0.0, bottom), PointAt(right, 0.0))) return false;
    for (std::size_t i = 0; i < sampler.GetPixelPoints().size(); ++i) {
        const CPDFPathPoint& pixel = sampler.GetPixelPoints()[i];
        AddTiePoint(points, PointAt(pixel.x * scale, pixel.y * scale), sampler.GetWorldPoints()[i]);
    }
    return true;
}

}  // namespace

double PointsPerPixel(const BKeyValuePairs* params) {
    double resolution = kPointsPerInch;
    if (params && params->HasProperty(PdfParameters::kResolution))
        resolution = params->GetDouble(PdfParameters::kResolution, kPointsPerInch);
    return kPointsPerInch / resolution;
}

void RequirePageSize(double width, double height) {
    if (std::isfinite(width) && std::isfinite(height) && width > 0.0 && height > 0.0) return;
    throw BException("Could not generate Tie points", kSource,
                     BString::Format("The page has no valid size (%f by %f points).", width, height));
}

void RequireReference(const BGeoReference& reference) {
    if (!reference.HasCoordSys())
        throw BException("Coordinate system is required", "BRefPDF:Write", BString());
}

BString SystemText(const BCoordSys& system, unsigned char flags) {
    const BString wkt = system.ToPRJ();
    if (wkt.IsEmpty() && (flags & kStrictCoordSysBit) != 0)
        throw BGeoReferenceInvalidCoordSysException(
            kSource,
            BString::Format("Couldn't generate a valid WKT string from CoordSys <%ls>", system.GetName()));
    return RewriteWebMercator(wkt);
}

BString SystemCode(const BCoordSys& system) {
    try {
        return system.ToEPSGCode();
    } catch (...) {
        return BString();
    }
}

BString NameOf(const BCoordSys& system) {
    try {
        return system.GetName();
    } catch (...) {
        return BString();
    }
}

BString UnitNameOf(const BCoordSys& system) {
    try {
        BIdentifier identifier;
        const auto unit = system.GetUnits();
        if (unit && unit->GetIdentifier("GC", identifier)) return identifier.Code;
    } catch (...) {
    }
    return BString();
}

bool CollectTiePoints(const BGeoReference& reference, bool to_geodetic, double scale, long width, long height,
                      TiePoints& points) {
    if (reference.PointPairVector.size() >= kFewestPoints)
        return AddControlPoints(points, reference, to_geodetic, scale);
    RequireTransform(reference);
    return AddSampledPoints(points, reference, to_geodetic, scale, width, height);
}

}  // namespace MapAnchor

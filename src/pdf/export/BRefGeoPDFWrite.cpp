#include "BRefGeoPDF.h"

#include "PdfParameters.h"
#include "export/BExportGeoPDF.h"
#include "export/BMapAnchorGCPSampler.h"
#include "export/MovedAside.h"
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
using Tellurion::BParamList;
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

double PointsPerPixel(const BKeyValuePairs* params) {
    double resolution = kPointsPerInch;
    if (params && params->HasProperty(PdfParameters::kResolution))
        resolution = params->GetDouble(PdfParameters::kResolution, kPointsPerInch);
    return kPointsPerInch / resolution;
}

/// A page without extent, or one that a resolution of zero blows up, has no place for
/// a point.
void RequirePageSize(double width, double height) {
    if (std::isfinite(width) && std::isfinite(height) && width > 0.0 && height > 0.0) return;
    throw BException("Could not generate Tie points", kSource,
                     BString::Format("The page has no valid size (%f by %f points).", width, height));
}

void AddTiePoint(BExportGeoPDF& out, const CPDFPathPoint& pixel, const CPDFPathPoint& world) {
    if (!std::isfinite(world.x) || !std::isfinite(world.y))
        throw BException("Could not generate Tie points", kSource, "A control point is not finite.");
    out.AddTiePoint(pixel, world);
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

/// Names that the file can do without.
void SetNames(BExportGeoPDF& out, const BCoordSys& system) {
    try {
        out.SetCoordSysName(system.GetName());
        BIdentifier identifier;
        const auto unit = system.GetUnits();
        if (unit && unit->GetIdentifier("GC", identifier)) out.SetUnitName(identifier.Code);
    } catch (...) {
    }
}

/// The reference's own points. True when there are enough of them to go by.
bool AddControlPoints(BExportGeoPDF& out, const BGeoReference& reference, bool projected, double scale) {
    for (const BPointPair& pair : reference.PointPairVector) {
        if (!pair.Enabled) continue;
        const BPoint world = projected ? reference.CoordSys->ConvertToGeodetic(pair.World) : pair.World;
        AddTiePoint(out, PointAt(pair.Column * scale, pair.Row * scale), PointAt(world.x, world.y));
    }
    return out.GetTiePointCount() >= kFewestPoints;
}

/// Points that stand for the transform.
bool AddSampledPoints(BExportGeoPDF& out, const BGeoReference& reference, bool projected, double scale,
                      long width, long height) {
    BMapAnchorGCPSampler sampler(reference, projected);
    const double right = static_cast<double>(width);
    const double bottom = static_cast<double>(height);
    if (!sampler.Sample(PointAt(0.0, bottom), PointAt(right, 0.0))) return false;
    for (std::size_t i = 0; i < sampler.GetPixelPoints().size(); ++i) {
        const CPDFPathPoint& pixel = sampler.GetPixelPoints()[i];
        AddTiePoint(out, PointAt(pixel.x * scale, pixel.y * scale), sampler.GetWorldPoints()[i]);
    }
    return true;
}

/// Runs `step`; when it throws, the user's PDF goes back to its place.
template <class Step>
auto OrRestore(MovedAside& original, Step step) {
    try {
        return step();
    } catch (...) {
        original.Restore();
        throw;
    }
}

void RequireReference(const BGeoReference& reference) {
    if (!reference.HasCoordSys())
        throw BException("Coordinate system is required", "BRefPDF:Write", BString());
}

void RequireTransform(const BGeoReference& reference) {
    if (!reference.HasMathTransform())
        throw BException("Could not generate Tie points", kSource, "No Tie points found");
}

}  // namespace

bool BRefGeoPDF::Write(const BString& file, const BGeoReference& reference, long width, long height,
                       const BParamList* params) {
    return Write(&file, 0, reference, width, height, params);
}

bool BRefGeoPDF::Write(const BString* file, unsigned char flags, const BGeoReference& reference, long width,
                       long height, const BKeyValuePairs* params) {
    MovedAside original(file ? *file : BString());
    BExportGeoPDF out;
    out.SetSourcePath(original.Name());
    out.SetDestinationPath(original.Destination());
    out.SetWorkPath(original.WorkName());
    const double scale = PointsPerPixel(params);
    const double page_width = static_cast<double>(width) * scale;
    const double page_height = static_cast<double>(height) * scale;
    out.SetPageSize(page_width, page_height);

    const bool projected = OrRestore(original, [&] {
        RequireReference(reference);
        RequirePageSize(page_width, page_height);
        const BCoordSys& system = *reference.CoordSys;
        const BString wkt = SystemText(system, flags);
        const BString code = SystemCode(system);
        SetNames(out, system);
        out.SetCoordSysTexts(&wkt, &code);
        return system.GetKind() == BCoordSys::kKindProjected;
    });
    const bool tied = OrRestore(original, [&] {
        if (reference.PointPairVector.size() >= kFewestPoints)
            return AddControlPoints(out, reference, projected, scale);
        RequireTransform(reference);
        return AddSampledPoints(out, reference, projected, scale, width, height);
    });
    if (!tied) return false;  // the PDF stays under the temporary name
    if (out.Export())
        original.ReplaceByResult();
    else
        original.RestoreIfGone();
    return true;
}

}  // namespace MapAnchor

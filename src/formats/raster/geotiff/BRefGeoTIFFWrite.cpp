#include "common/Strictness.h"
#include "raster/gdal/CoordEpoch.h"
#include "raster/gdal/VerticalUnit.h"
#include "raster/geotiff/BRefGeoTIFF.h"
#include "raster/geotiff/GdalUpdate.h"

#include <MapAnchor/BGeoReferenceInvalidCoordSysException.h>
#include <MapAnchor/BGeoReferenceWriteException.h>
#include <Tellurion/BException.h>
#include <Tellurion/BFileAccessException.h>
#include <Tellurion/BLogger.h>
#include <Tellurion/BResourceException.h>

#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace MapAnchor {

using Tellurion::BCoordSys;
using Tellurion::BException;
using Tellurion::BFileAccessException;
using Tellurion::BGeoReference;
using Tellurion::BLogger;
using Tellurion::BPointPair;
using Tellurion::BResourceException;
using Tellurion::BString;
using Tellurion::ELogSeverity;

namespace {

constexpr const char* kSource = "BRefGeoTIFF::Write";

/// How a part that GDAL refused is named.
struct Refusal {
    const char* heading;
    const char* detail;
};

constexpr Refusal kPointsRefused = {"Failed to set GCP's", "Error in SetGCP's."};
constexpr Refusal kTransformRefused = {"Failed to set Transform", "Error in SetTransform."};
constexpr Refusal kSystemRefused = {"Failed to set Projection", "Error in SetProjection."};

void Require(bool taken, const Refusal& refusal) {
    if (!taken) throw BException(refusal.heading, kSource, refusal.detail);
}

/// The whole system, with its vertical part.
BString TextOfCoordSys(const BGeoReference& reference) {
    return reference.HasCoordSys() ? reference.CoordSys->ToWholeWKT() : BString();
}

/// GDAL takes a system with the epoch of its coordinates as an object only.
bool PutSystem(GDALDataset& raster, const BGeoReference& reference, const BString& text) {
    const double epoch = reference.CoordSys->GetCoordinateEpoch();
    if (epoch == 0.0) return raster.SetProjection(text.Ascii()) == CE_None;
    const std::unique_ptr<OGRSpatialReference> system = SystemAtEpoch(text, epoch);
    return system && raster.SetSpatialRef(system.get()) == CE_None;
}

/// What the file says already stays; area registration is never written.
void MarkPointRegistration(GDALDataset& raster, const BGeoReference& reference) {
    constexpr const char* kKey = "AREA_OR_POINT";
    if (reference.IsPixelAsPointRegistered() && !raster.GetMetadataItem(kKey, ""))
        raster.SetMetadataItem(kKey, "Point", "");
}

/// GDAL's records of the enabled points; `names` holds their texts.
std::vector<GDAL_GCP> RecordsOf(const std::vector<BPointPair>& pairs, std::deque<std::string>& names) {
    std::vector<GDAL_GCP> records;
    static char no_info[] = "";
    for (const BPointPair& pair : pairs) {
        if (!pair.Enabled) continue;
        names.emplace_back(pair.Name.Ascii());
        records.push_back({names.back().data(), no_info, static_cast<double>(pair.Column),
                           static_cast<double>(pair.Row), pair.World.x, pair.World.y, pair.World.z});
    }
    return records;
}

bool PutPoints(GDALDataset& raster, const BGeoReference& reference, const BString& text) {
    std::deque<std::string> names;
    const std::vector<GDAL_GCP> records = RecordsOf(reference.PointPairVector, names);
    const int count = static_cast<int>(records.size());
    const double epoch = text.IsEmpty() ? 0.0 : reference.CoordSys->GetCoordinateEpoch();
    if (epoch == 0.0)
        return raster.SetGCPs(count, records.data(), text.IsEmpty() ? nullptr : text.Ascii()) == CE_None;
    const std::unique_ptr<OGRSpatialReference> system = SystemAtEpoch(text, epoch);
    return system && raster.SetGCPs(count, records.data(), system.get()) == CE_None;
}

bool PutTransform(GDALDataset& raster, const BGeoReference& reference) {
    double a, b, c, d, e, f;
    reference.MathTransform->GetAffineParameters(a, b, c, d, e, f);
    double geotransform[6] = {c, a, b, f, d, e};
    return raster.SetGeoTransform(geotransform) == CE_None;
}

/// On the road by name a refusal of the points is forgiven when the vertical unit is
/// taken, and only then is that unit written at all.
enum class OnPointsRefused { Throw, TryVerticalUnit };

/// True when the raster took a part of the reference. Points stand in the place of the
/// transform through them.
bool Put(GDALDataset& raster, const BGeoReference& reference, const BString& text,
         OnPointsRefused on_points_refused) {
    MarkPointRegistration(raster, reference);
    const bool has_points = !reference.PointPairVector.empty();
    if (has_points)
        Require(
            PutPoints(raster, reference, text) || (on_points_refused == OnPointsRefused::TryVerticalUnit &&
                                                   WriteVerticalUnit(raster, reference)),
            kPointsRefused);
    else if (reference.HasMathTransform())
        Require(PutTransform(raster, reference), kTransformRefused);
    if (!text.IsEmpty()) Require(PutSystem(raster, reference, text), kSystemRefused);
    return has_points || reference.HasMathTransform() || !text.IsEmpty();
}

void RequireNone(const std::string& fault, const BString& file) {
    if (!fault.empty())
        throw BGeoReferenceWriteException(
            kSource, BString::Format("Failed writing GeoTIFF file <%ls>: %s", file, fault));
}

/// A raster that GDAL opens may still be one that it must not write.
void RequireOpen(const GdalUpdate& update, const BString& file, const BString& failure) {
    if (update.IsOpen()) return RequireNone(update.Refusal(), file);
    BLogger::Instance()->WriteLine(ELogSeverity::Error, "BRefGeoTIFF::Write Failed to open file <%ls>", file);
    throw BFileAccessException(kSource, failure);
}

/// The coordinate system as the raster tells it now; null when it tells none.
std::unique_ptr<BCoordSys> CoordSysWritten(const BString& file, bool with_points) {
    BString text;
    {
        const Tellurion::QuietGdal quiet;
        const GdalRaster raster = OpenRaster(file);
        if (raster) text = TextOf(with_points ? raster->GetGCPSpatialRef() : raster->GetSpatialRef());
    }
    return std::unique_ptr<BCoordSys>(text.IsEmpty() ? nullptr : BCoordSys::FromWKT(text));
}

/// Not every system finds room in every file.
void RequireCoordSysWritten(const BString& file, const BGeoReference& reference) {
    const auto written = CoordSysWritten(file, !reference.PointPairVector.empty());
    if (written && written->IsValid()) return;
    throw BGeoReferenceInvalidCoordSysException(
        kSource, BString::Format("Unable to save Coordinate System <%ls> to GeoTIFF file <%ls>",
                                 reference.CoordSys->GetName(), file));
}

}  // namespace

bool BRefGeoTIFF::Write(const BString& file, const BGeoReference& reference) {
    GdalUpdate update(file);
    RequireOpen(update, file, "GeoTIFF write could not open file");
    const bool written =
        Put(update.Raster(), reference, TextOfCoordSys(reference), OnPointsRefused::TryVerticalUnit);
    RequireNone(update.Close(), file);
    return written;
}

void BRefGeoTIFF::Write(const BString& file, const unsigned int& flags, const BGeoReference& reference) {
    const bool strict = reference.HasCoordSys() && Strictness(flags).CoordSys() == OnFailure::Throw;
    GdalUpdate update(file);
    if (!update.MemoryFault().empty()) throw BResourceException(kSource, update.MemoryFault());
    RequireOpen(update, file, BString::Format("GeoTIFF write could not open file <%ls>.", file));
    const BString text = TextOfCoordSys(reference);
    if (strict && text.IsEmpty())
        throw BGeoReferenceInvalidCoordSysException(
            kSource, BString::Format("Couldn't generate a valid WKT string from CoordSys <%ls>",
                                     reference.CoordSys->GetName()));
    Put(update.Raster(), reference, text, OnPointsRefused::Throw);
    WriteVerticalUnit(update.Raster(), reference);
    RequireNone(update.Close(), file);
    if (strict) RequireCoordSysWritten(file, reference);
}

}  // namespace MapAnchor

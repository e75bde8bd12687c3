#include "common/policy/Strictness.h"
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

#include <cpl_vsi.h>

#include <deque>
#include <memory>
#include <string>
#include <string_view>
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

/// What GDAL adds to the pixels of control points between writing and reading them in a TIFF
/// whose positions are those of pixel centres: 1 in GDAL 3.6. Found out once.
double ShiftOfPoints() {
    static const double shift = [] {
        constexpr const char* kName = "/vsimem/mapanchor-shift-of-points.tif";
        constexpr double kPixel = 2.0;
        static char nothing[] = "";
        GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName("GTiff");
        const GDAL_GCP point = {nothing, nothing, kPixel, kPixel, 1.0, 1.0, 0.0};
        if (GdalRaster made{driver ? driver->Create(kName, 4, 4, 1, GDT_Byte, nullptr) : nullptr}) {
            made->SetMetadataItem("AREA_OR_POINT", "Point");
            made->SetGCPs(1, &point, static_cast<const char*>(nullptr));
        }
        const GdalRaster raster = ReopenRaster("GTiff", kName);
        const double found =
            raster && raster->GetGCPCount() == 1 ? raster->GetGCPs()->dfGCPPixel - kPixel : 0.0;
        VSIUnlink(kName);
        return found;
    }();
    return shift;
}

/// The same for this raster.
double ShiftOfPoints(GDALDataset& raster) {
    const char* const registration = raster.GetMetadataItem("AREA_OR_POINT", "");
    const GDALDriver* const driver = raster.GetDriver();
    const bool is_concerned = registration && std::string_view(registration) == "Point" && driver &&
                              std::string_view(driver->GetDescription()) == "GTiff";
    return is_concerned ? ShiftOfPoints() : 0.0;
}

/// GDAL's records of the enabled points; `names` holds their texts.
std::vector<GDAL_GCP> RecordsOf(const std::vector<BPointPair>& pairs, double shift,
                                std::deque<std::string>& names) {
    std::vector<GDAL_GCP> records;
    static char no_info[] = "";
    for (const BPointPair& pair : pairs) {
        if (!pair.Enabled) continue;
        names.emplace_back(pair.Name.Ascii());
        records.push_back({names.back().data(), no_info, static_cast<double>(pair.Column) - shift,
                           static_cast<double>(pair.Row) - shift, pair.World.x, pair.World.y, pair.World.z});
    }
    return records;
}

bool PutPoints(GDALDataset& raster, const BGeoReference& reference, const BString& text) {
    std::deque<std::string> names;
    const std::vector<GDAL_GCP> records = RecordsOf(reference.PointPairVector, ShiftOfPoints(raster), names);
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

/// What becomes of the system of a raster when a reference without one is saved.
bool IsReplaced(const Tellurion::BParamList* params) {
    static const BString kKey(BRefGeoTIFF::kReplaceSystemKey);
    return params && params->GetInteger(kKey, 0) != 0;
}

/// By name, a refusal of the points is forgiven when the vertical unit is
/// taken, and only then is that unit written at all.
enum class OnPointsRefused { Throw, TryVerticalUnit };

/// True when the raster took a part of the reference. Points stand in the place of the
/// transform through them.
bool Put(GDALDataset& raster, const BGeoReference& reference, const BString& text,
         OnPointsRefused on_points_refused, bool replaces) {
    MarkPointRegistration(raster, reference);
    const bool has_points = !reference.PointPairVector.empty();
    if (has_points)
        Require(
            PutPoints(raster, reference, text) || (on_points_refused == OnPointsRefused::TryVerticalUnit &&
                                                   WriteVerticalUnit(raster, reference)),
            kPointsRefused);
    else if (reference.HasMathTransform())
        Require(PutTransform(raster, reference), kTransformRefused);
    if (!text.IsEmpty())
        Require(PutSystem(raster, reference, text), kSystemRefused);
    else if (replaces && (has_points || reference.HasMathTransform()))
        raster.SetSpatialRef(nullptr);
    return has_points || reference.HasMathTransform() || !text.IsEmpty();
}

void RequireNone(const std::string& fault, const BString& file) {
    if (!fault.empty())
        throw BGeoReferenceWriteException(
            kSource, BString::Format("Failed writing GeoTIFF file <%ls>: %s", file, fault));
}

/// A raster that GDAL opens may still be one that it must not write.
void RequireOpen(const GdalUpdate& update, const BString& file, const BString& failure) {
    RequireNone(update.Refusal(), file);
    if (update.IsOpen()) return;
    BLogger::Instance()->WriteLine(ELogSeverity::Error, "BRefGeoTIFF::Write Failed to open file <%ls>", file);
    throw BFileAccessException(kSource, failure);
}

/// The coordinate system that the raster has now; null without one.
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

bool BRefGeoTIFF::Write(const BString& file, const BGeoReference& reference,
                        const Tellurion::BParamList* params) {
    GdalUpdate update(file);
    RequireOpen(update, file, "GeoTIFF write could not open file");
    const bool written = Put(update.Raster(), reference, TextOfCoordSys(reference),
                             OnPointsRefused::TryVerticalUnit, IsReplaced(params));
    RequireNone(update.Close(), file);
    return written;
}

void BRefGeoTIFF::Write(const BString& file, const unsigned int& flags, const BGeoReference& reference,
                        const Tellurion::BParamList* params) {
    const bool strict = reference.HasCoordSys() && Strictness(flags).CoordSys() == OnFailure::Throw;
    GdalUpdate update(file);
    if (!update.MemoryFault().empty()) throw BResourceException(kSource, update.MemoryFault());
    RequireOpen(update, file, BString::Format("GeoTIFF write could not open file <%ls>.", file));
    const BString text = TextOfCoordSys(reference);
    if (strict && text.IsEmpty())
        throw BGeoReferenceInvalidCoordSysException(
            kSource, BString::Format("Couldn't generate a valid WKT string from CoordSys <%ls>",
                                     reference.CoordSys->GetName()));
    Put(update.Raster(), reference, text, OnPointsRefused::Throw, IsReplaced(params));
    WriteVerticalUnit(update.Raster(), reference);
    RequireNone(update.Close(), file);
    if (strict) RequireCoordSysWritten(file, reference);
}

}  // namespace MapAnchor

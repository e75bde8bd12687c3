#include "raster/geotiff/BRefGeoTIFF.h"

#include "common/policy/ReferenceFormat.h"

#include "common/points/StoreControlPoints.h"
#include "common/policy/Strictness.h"
#include "common/storing/StoreTransform.h"
#include "raster/geotiff/KnownRasters.h"
#include "raster/geotiff/StoreGdalReference.h"

#include <MapAnchor/BGeoReferenceInvalidCoordSysException.h>
#include <MapAnchor/BGeoReferenceInvalidReferenceFileException.h>
#include <Tellurion/BCoordSysRepository.h>
#include <Tellurion/BException.h>
#include <Tellurion/BLogger.h>
#include <Tellurion/ReferenceTags.h>

#include <memory>

namespace MapAnchor {

using Tellurion::BCoordSys;
using Tellurion::BCoordSysRepository;
using Tellurion::BException;
using Tellurion::BGeoReference;
using Tellurion::BLogger;
using Tellurion::BSharedPtr;
using Tellurion::BString;
using Tellurion::ELogSeverity;
using Tellurion::EMathTransformType;

namespace {

constexpr const char* kSource = "BRefGeoTIFF::Read";

constexpr const char* kPointsDifferLog =
    "BRefGeoTIFF::Read # of points in the header differs from the # of points listed.";
/// Two blanks, and no affine is attempted: a text that hosts know.
constexpr const char* kPointsDifferTolerantLog =
    "BRefGeoTIFF::Read # of points in the header differs from the # of points listed.  Attempting to build "
    "an Affine Transform.";

constexpr FailureTexts kTexts = {
    .source = kSource,
    .affine_line =
        "BRefGeoTIFF::Read TIFFTAG_GEOPIXELSCALE / TIFFTAG_GEOTIEPOINTS Failure setting the BGeoReference "
        "ERROR (%ls)",
    .points_line = "BRefGeoTIFF::Read Failure setting the BMathTransform ERROR (%ls)"};

/// How the reads by name and by type handle a fault.
struct ReadPolicy {
    OnFailure file;       ///< points that differ in number, a pixel without size
    OnFailure transform;  ///< points or terms that make no transform
    OnFailure coord_sys;  ///< a text that is not understood
};

constexpr ReadPolicy kTolerant = {OnFailure::GoOn, OnFailure::GoOn, OnFailure::GoOn};

ReadPolicy Typed(unsigned int flags) {
    const Strictness strictness(flags);
    return {OnFailure::Throw, strictness.Transform(), strictness.CoordSys()};
}

/// True for a list that is as long as stated, whether or not a transform fits it.
bool StorePoints(const GdalReference& raster, const ReadPolicy& policy, RasterExtent extent,
                 BGeoReference& reference) {
    if (!raster.PointsDiffer()) {
        StoreControlPoints(reference, raster.points, EMathTransformType::Affine, extent, policy.transform,
                           kTexts);
        return true;
    }
    if (policy.file == OnFailure::Throw) {
        BLogger::Instance()->WriteLine(ELogSeverity::Error, kPointsDifferLog);
        throw BGeoReferenceInvalidReferenceFileException(
            kSource, BString::Format(
                         "Number of points specified in the GeoTIFF (%d) differs from the number read (%d).",
                         raster.point_count, raster.points.size()));
    }
    reference.SetPointPairVector(raster.points, EMathTransformType::None);
    BLogger::Instance()->WriteLine(ELogSeverity::Error, kPointsDifferTolerantLog);
    return false;
}

/// A column and a row must lead somewhere; which way does not matter.
void RequireSize(const BString& file, const AffineTerms& t) {
    if ((t.a != 0.0 || t.b != 0.0) && (t.e != 0.0 || t.d != 0.0)) return;
    BLogger::Instance()->WriteLine(ELogSeverity::Error,
                                   "BRefGeoTIFF::Read Failure XDimenions and/or YDimension is zero!");
    throw BGeoReferenceInvalidReferenceFileException(
        kSource, BString::Format(
                     "File <%ls> is an invalid GeoTIFF file.  XDimension and/or YDimension is zero", file));
}

bool StoreTerms(const BString& file, const GdalReference& raster, const ReadPolicy& policy,
                BGeoReference& reference) {
    if (!raster.terms) return false;
    if (policy.file == OnFailure::Throw) RequireSize(file, *raster.terms);
    return StoreAffine(reference, *raster.terms, policy.transform, kTexts);
}

/// The system of a text; null with `failure` set when there is none.
BCoordSys* FindCoordSys(const BString& text, BString& failure) {
    failure = BString::Format("Failed to get the coordinate system based on the WKT string <%s>.", text);
    try {
        return BCoordSysRepository::Instance()->ReadCoordSysFromWKTString(text);
    } catch (const BException& error) {
        const BString message = error.GetDetailedMessage();
        failure = BString::Format("Failed parsing wkt string <%s> with error <%ls>", text, message);
        BLogger::Instance()->WriteLine(
            ELogSeverity::Error, "BRefGeoTIFF::Read could not find CoordinateSystem {wkt : %s} ERROR (%ls).",
            text, message);
    }
    return nullptr;
}

bool StoreCoordSys(const GdalReference& raster, OnFailure on_failure, BGeoReference& reference) {
    BString failure;
    for (const BString& text : raster.well_known_texts) {
        if (BCoordSys* system = FindCoordSys(text, failure)) {
            reference.SetCoordSys(BSharedPtr<BCoordSys>(system));
            return true;
        }
    }
    if (!failure.IsEmpty() && on_failure == OnFailure::Throw)
        throw BGeoReferenceInvalidCoordSysException(kSource, failure);
    return false;
}

void StoreVerticalUnit(const GdalReference& raster, BGeoReference& reference) {
    if (raster.vertical_unit) reference.SetVerticalUnit(raster.vertical_unit);
    if (!reference.HasVerticalUnit() && raster.auxiliary_vertical_unit)
        reference.SetVerticalUnit(raster.auxiliary_vertical_unit);
}

/// True when something was stored that places the raster.
bool Store(const BString& file, const GdalReference& raster, const ReadPolicy& policy, RasterExtent extent,
           BGeoReference& reference) {
    const bool placed = raster.point_count > 0 ? StorePoints(raster, policy, extent, reference)
                                               : StoreTerms(file, raster, policy, reference);
    if (raster.pixel_is_point) reference.SetPixelAsPointRegistered(true);
    const bool named = StoreCoordSys(raster, policy.coord_sys, reference);
    StoreVerticalUnit(raster, reference);
    return placed || named;
}

}  // namespace

bool StoreGdalReference(const BString& file, const GdalReference& raster, long width, long height,
                        BGeoReference& reference) {
    return Store(file, raster, kTolerant, {width, height}, reference);
}

bool BRefGeoTIFF::Read(const BString& file, BGeoReference& reference, long width, long height) {
    const auto raster = ReadRaster(file, RasterKinds::OfName);
    return raster && Store(file, *raster, kTolerant, {width, height}, reference);
}

void BRefGeoTIFF::Read(const BString& file, const unsigned int& flags, BGeoReference& reference, long width,
                       long height) {
    const auto raster = ReadRaster(file, RasterKinds::All);
    if (!raster)
        throw BGeoReferenceInvalidReferenceFileException(
            kSource,
            BString::Format("Could not open the file <%ls> as a GeoReference file for reading.", file));
    Store(file, *raster, Typed(flags), {width, height}, reference);
}

ReferenceFormat BRefGeoTIFF::Format() {
    return {
        .name = "TIF",
        .title = "GeoTIFF and other rasters that GDAL opens",
        .type = Tellurion::EReferenceType::GeoTIFF,
        .typed_read =
            [](const ReadCall& call) {
                Read(call.file, call.flags, call.reference, call.width, call.height);
            },
        .typed_save = [](const SaveCall& call) { Write(call.file, call.flags, call.reference, call.params); },
        .named_read =
            [](const ReadCall& call) { return Read(call.file, call.reference, call.width, call.height); },
        .named_save = [](const SaveCall& call) { return Write(call.file, call.reference, call.params); },
        .read_extensions = {Tellurion::REFERENCE_TIF_TAG.GetUnits(), Tellurion::REFERENCE_TIFF_TAG.GetUnits(),
                            u".ddf", u".dem", u".dt0", u".dt1", u".dt2", u".dt3", u".dt4", u".dt5", u".asc",
                            u".adf"},
        .save_extensions = {Tellurion::REFERENCE_TIF_TAG.GetUnits(),
                            Tellurion::REFERENCE_TIFF_TAG.GetUnits()},
        .in_place = true,
        .coord_sys = Keeps::Always,
        .vertical_unit = Keeps::ByType,
        .rotation = true,
        .points = true,
        .skips_disabled_points = true,
        .point_heights = true,
        .datum_shift = true};
}

}  // namespace MapAnchor

#include "raster/gdal/GdalReference.h"

#include "raster/gdal/CoordEpoch.h"
#include "raster/gdal/GdalOrigins.h"
#include "raster/gdal/GdalRaster.h"

#include "common/policy/ReadNotes.h"
#include "raster/gdal/VerticalUnit.h"

#include <Tellurion/QuietGdal.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>

namespace MapAnchor {

using Tellurion::BPointPair;
using Tellurion::BString;

namespace {

const char* Registration(GDALDataset& dataset) {
    return dataset.GetMetadataItem("AREA_OR_POINT", "");
}

bool IsPointRegistered(GDALDataset& raster, GDALDataset* auxiliary) {
    const char* registration = Registration(raster);
    if (!registration && auxiliary) registration = Registration(*auxiliary);
    return registration && std::strcmp(registration, "Point") == 0;
}

/// A control point names a whole pixel: the fraction is dropped. What no pixel can be
/// ends at the bounds of 32 bits, what is no number at 0.
long WholePixel(double position) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (std::isnan(position)) return 0;
    return static_cast<long>(std::clamp<double>(position, Limits::min(), Limits::max()));
}

std::vector<BPointPair> PairsOf(const GDAL_GCP* points, int count) {
    std::vector<BPointPair> pairs;
    pairs.reserve(static_cast<std::size_t>(count));
    for (const GDAL_GCP* point = points; point != points + count; ++point)
        pairs.emplace_back(WholePixel(point->dfGCPPixel), WholePixel(point->dfGCPLine), point->dfGCPX,
                           point->dfGCPY, point->dfGCPZ, point->pszId, true);
    return pairs;
}

/// What the points lose by being whole pixels.
void NoteFractions(const GDAL_GCP* points, const std::vector<BPointPair>& pairs, const BString& file) {
    if (!ReadNotes::Current()) return;
    DroppedFractions dropped;
    for (std::size_t i = 0; i < pairs.size(); ++i)
        dropped.Count(points[i].dfGCPPixel, points[i].dfGCPLine, pairs[i].Column, pairs[i].Row);
    dropped.Report(file);
}

/// The raster's size and the files beside it, for whoever wants to know. True when there is
/// no other file.
bool NoteFiles(GDALDataset& raster, const ConfinedFiles* confined) {
    ReadNotes* const notes = ReadNotes::Current();
    if (!notes) return false;
    const std::size_t known = notes->files.size();
    notes->SetRasterSize(raster.GetRasterXSize(), raster.GetRasterYSize());
    const std::unique_ptr<char*, decltype(&CSLDestroy)> files(raster.GetFileList(), CSLDestroy);
    for (char** name = files.get(); name && *name; ++name)
        if (std::strcmp(*name, raster.GetDescription()) != 0)
            notes->files.emplace_back(confined ? confined->PathOf(*name) : std::string(*name));
    return notes->files.size() == known;
}

bool IsGeoTiff(GDALDataset& raster) {
    GDALDriver* const driver = raster.GetDriver();
    return driver && std::strcmp(driver->GetDescription(), "GTiff") == 0;
}

/// Count and list may come from different files; no more is read than the list holds.
void ReadPoints(GDALDataset& raster, GDALDataset* auxiliary, const BString& file, GdalReference& out) {
    out.point_count = raster.GetGCPCount();
    if (out.point_count == 0 && auxiliary) out.point_count = auxiliary->GetGCPCount();
    if (out.point_count <= 0) return;
    GDALDataset* owner = &raster;
    if (!owner->GetGCPs() && auxiliary) owner = auxiliary;
    const GDAL_GCP* list = owner->GetGCPs();
    if (!list) return;
    out.points = PairsOf(list, std::clamp(owner->GetGCPCount(), 0, out.point_count));
    NoteFractions(list, out.points, file);
}

std::optional<AffineTerms> ReadTerms(GDALDataset& raster, GDALDataset* auxiliary) {
    double gt[6] = {};
    bool found = raster.GetGeoTransform(gt) != CE_Failure;
    if (!found && auxiliary) found = auxiliary->GetGeoTransform(gt) != CE_Failure;
    if (!found) return std::nullopt;
    return AffineTerms{gt[1], gt[2], gt[0], gt[4], gt[5], gt[3]};
}

/// An empty text of the raster's own is an answer, which the auxiliary file does not
/// overrule; that is asked where the raster has a text, which may be a bad one.
void ReadTexts(GDALDataset& raster, GDALDataset* auxiliary, GdalReference& out) {
    const BString own = TextOf(out.point_count > 0 ? raster.GetGCPSpatialRef() : raster.GetSpatialRef());
    if (own.IsEmpty()) return;
    out.well_known_texts.push_back(own);
    const BString second = auxiliary ? TextOf(auxiliary->GetSpatialRef()) : BString();
    if (!second.IsEmpty()) out.well_known_texts.push_back(second);
}

}  // namespace

std::optional<GdalReference> ReadGdalReference(const BString& file, RasterKinds kinds, Sidecars sidecars) {
    const Tellurion::QuietGdal quiet;
    const GdalRaster raster = OpenRaster(file, kinds, sidecars);
    if (!raster) return std::nullopt;
    const GdalRaster auxiliary = OpenAuxiliary(raster);
    GdalReference out;
    out.pixel_is_point = IsPointRegistered(*raster, auxiliary.get());
    ReadPoints(*raster, auxiliary.get(), file, out);
    if (out.point_count <= 0) out.terms = ReadTerms(*raster, auxiliary.get());
    ReadTexts(*raster, auxiliary.get(), out);
    out.vertical_unit = ReadVerticalUnit(*raster);
    if (auxiliary) out.auxiliary_vertical_unit = ReadVerticalUnit(*auxiliary);
    const bool is_alone = NoteFiles(*raster, raster.get_deleter().files.get());
    out.is_lone_geotiff = is_alone && !auxiliary && IsGeoTiff(*raster);
    NoteGdalOrigins(*raster, out, file);
    return IsUsable(raster) ? std::optional(std::move(out)) : std::nullopt;
}

bool ReadRasterSize(const BString& file, long& width, long& height) {
    const Tellurion::QuietGdal quiet;
    const GdalRaster raster = OpenRaster(file);
    if (!raster || raster->GetRasterXSize() <= 0 || raster->GetRasterYSize() <= 0) return false;
    width = raster->GetRasterXSize();
    height = raster->GetRasterYSize();
    return true;
}

}  // namespace MapAnchor

#include "raster/geotiff/RasterState.h"

#include <Tellurion/BString.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace MapAnchor {

using Tellurion::BString;

namespace {

/// A raster may have 65,535 bands; those of one file are alike.
constexpr int kMaxBands = 16;

std::string OffsetOfBlock(GDALRasterBand& band, int column, int row) {
    const BString item = BString::Format("BLOCK_OFFSET_%d_%d", column, row);
    const char* const offset = band.GetMetadataItem(item.Ascii(), "TIFF");
    return offset ? offset : "";
}

RasterState::Band StateOf(GDALRasterBand& band) {
    RasterState::Band state;
    state.type = band.GetRasterDataType();
    band.GetBlockSize(&state.block_width, &state.block_height);
    if (state.block_width <= 0 || state.block_height <= 0) return state;
    state.first_block = OffsetOfBlock(band, 0, 0);
    state.last_block = OffsetOfBlock(band, (band.GetXSize() - 1) / state.block_width,
                                     (band.GetYSize() - 1) / state.block_height);
    return state;
}

bool IsClose(double wanted, double found, double tolerance) {
    return std::fabs(wanted - found) <= tolerance || (std::isnan(wanted) && std::isnan(found));
}

bool IsClose(const std::array<double, 6>& wanted, const std::array<double, 6>& found) {
    double pixel = 0.0;
    for (const int term : {1, 2, 4, 5})
        pixel = std::max(pixel, std::fabs(wanted[static_cast<std::size_t>(term)]));
    for (std::size_t term = 0; term < wanted.size(); ++term) {
        const double digits = 16 * std::numeric_limits<double>::epsilon() * std::fabs(wanted[term]);
        if (!IsClose(wanted[term], found[term], 1e-6 * pixel + digits)) return false;
    }
    return true;
}

/// A TIFF with this transform is written without one.
constexpr std::array<double, 6> kIdentity = {0, 1, 0, 0, 0, 1};

bool IsClose(const std::optional<std::array<double, 6>>& wanted,
             const std::optional<std::array<double, 6>>& found) {
    if (!wanted) return true;
    return found ? IsClose(*wanted, *found) : *wanted == kIdentity;
}

}  // namespace

RasterState::Layout RasterState::LayoutOf(GDALDataset& raster) {
    Layout layout;
    layout.width = raster.GetRasterXSize();
    layout.height = raster.GetRasterYSize();
    layout.band_count = raster.GetRasterCount();
    for (int band = 1; band <= std::min(layout.band_count, kMaxBands); ++band)
        layout.bands.push_back(StateOf(*raster.GetRasterBand(band)));
    return layout;
}

RasterState RasterState::Of(GDALDataset& raster, Costly wanted) {
    RasterState state;
    if (wanted.layout) state.layout = LayoutOf(raster);
    state.point_count = raster.GetGCPCount();
    std::array<double, 6> transform{};
    if (state.point_count == 0 && raster.GetGeoTransform(transform.data()) == CE_None)
        state.transform = transform;
    const OGRSpatialReference* const system = !wanted.system          ? nullptr
                                              : state.point_count > 0 ? raster.GetGCPSpatialRef()
                                                                      : raster.GetSpatialRef();
    if (system) state.system = *system;
    const char* const registration =
        wanted.registration ? raster.GetMetadataItem("AREA_OR_POINT", "") : nullptr;
    if (registration) state.registration = registration;
    return state;
}

bool HasOtherSystem(const RasterState& wanted, const RasterState& found) {
    return !wanted.system.IsEmpty() && !found.system.IsEmpty() && !wanted.system.IsSame(&found.system);
}

std::string DifferenceOf(const RasterState& wanted, const RasterState& found) {
    if (!(wanted.layout == found.layout)) return "the raster's blocks would not be where they are";
    if (wanted.point_count != found.point_count) return "the control points would not be read back";
    if (!IsClose(wanted.transform, found.transform)) return "the transform would not be read back";
    return {};
}

}  // namespace MapAnchor

#pragma once

#include <gdal_priv.h>
#include <ogr_spatialref.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace MapAnchor {

/// What an update must leave alone, and what it was asked to set, as a dataset shows it.
struct RasterState {
    struct Band {
        GDALDataType type = GDT_Unknown;
        int block_width = 0;
        int block_height = 0;
        /// Where the TIFF driver keeps the blocks in the file; empty for other drivers.
        std::string first_block, last_block;
        bool operator==(const Band&) const = default;
    };
    struct Layout {
        int width = 0;
        int height = 0;
        int band_count = 0;
        std::vector<Band> bands;  ///< the first ones
        bool operator==(const Layout&) const = default;
    };

    Layout layout;
    std::optional<std::array<double, 6>> transform;  ///< in GDAL's order
    int point_count = 0;
    OGRSpatialReference system;  ///< empty for none
    std::string registration;    ///< AREA_OR_POINT; empty where it is not stated

    /// What is worth to be left out: GDAL builds a coordinate system for the last two, which is
    /// most of opening a raster.
    struct Costly {
        bool layout = true;
        bool system = true;
        bool registration = true;
    };
    static RasterState Of(GDALDataset& raster, Costly wanted);
    static Layout LayoutOf(GDALDataset& raster);
};

/// Why `found`, which was read back, is not what `wanted` says; empty when it is. The
/// transform may differ by a millionth of a pixel: some files store it in other terms.
/// Systems are not compared: not every system finds room in every file.
std::string DifferenceOf(const RasterState& wanted, const RasterState& found);

/// True when another system was found in place of the one that was set.
bool HasOtherSystem(const RasterState& wanted, const RasterState& found);

}  // namespace MapAnchor

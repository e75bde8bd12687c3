// TAB and ERS files written here, opened by GDAL with a raster beside them.

#include <ogr_spatialref.h>

#include "GdalFiles.h"
#include "Outcomes.h"

#include <cmath>

namespace MapAnchor {
namespace {

using namespace Tellurion;

bool IsSameSystem(const OGRSpatialReference* got, int epsg) {
    OGRSpatialReference expected;
    expected.importFromEPSG(epsg);
    const char* const options[] = {"IGNORE_DATA_AXIS_TO_SRS_AXIS_MAPPING=YES", "CRITERION=EQUIVALENT",
                                   nullptr};
    return got && got->IsSame(&expected, options);
}

TEST(SidecarPeer, PlacesTheRasterAndNamesItsSystemInTab) {
    const std::tuple<int, double, double, double> cases[] = {
        {32633, 10, 500000, 4100000},   {2154, 100, 600000, 6800000}, {27700, 25, 400000, 300000},
        {2277, 100, 3000000, 10100000}, {4326, 0.01, 10, 50},         {3857, 10, -13692297, 6274861}};
    for (const auto& [epsg, pixel, x, y] : cases)
        for (const char* sidecar : {"map.tab", "map.ers"}) {
            const bool tab = std::string(sidecar) == "map.tab", feet = epsg == 2277;
            const TempFolder folder;
            const std::string image = GdalFiles::MakeTiff(folder / "map.tif", 3);
            const double turn = tab ? 0.25 * pixel : 0;
            const BGeoReference saved =
                References::Of(std::to_string(epsg), {pixel, turn, x, turn, -pixel, y});
            EXPECT_EQ(Roads::Save(folder / sidecar, saved, image, 20, 10).type, "");
            const auto dataset = GdalFiles::Open(tab ? image : folder / sidecar);
            ASSERT_TRUE(dataset) << sidecar;
            double t[6] = {};
            EXPECT_EQ(dataset->GetGeoTransform(t), CE_None);
            // GDAL reads the cell sizes of ERS as feet; in the format they are metres.
            const double cell = !tab && feet ? pixel * 1200.0 / 3937.0 : pixel;
            const double expected[] = {x, cell, turn, y, turn, -cell};
            for (std::size_t i = 0; i < 6; ++i)
                EXPECT_NEAR(t[i], expected[i], 1e-9 * std::max(1.0, std::abs(expected[i])))
                    << epsg << sidecar;
            // GDAL has no names of ER Mapper.
            EXPECT_EQ(IsSameSystem(dataset->GetSpatialRef(), epsg), tab) << epsg << sidecar;
        }
}

}  // namespace
}  // namespace MapAnchor

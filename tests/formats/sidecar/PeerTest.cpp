// TAB and ERS files written here, opened by GDAL with a raster beside them.

#include <ogr_spatialref.h>

#include <gtest/gtest.h>

#include "GdalFiles.h"
#include "LogCapture.h"
#include "References.h"
#include "Roads.h"
#include "TempFolder.h"

#include <array>

namespace MapAnchor {
namespace {

using namespace Tellurion;

struct PeerCase {
    const char* name;
    const char* epsg;
    double pixel, x, y;
    bool system_in_tab = true;
    bool system_in_ers = false;  ///< GDAL has no dictionary of ER Mapper's names
};

constexpr PeerCase kCases[] = {
    {"metres", "32633", 10, 500000, 4100000},
    {"conic", "2154", 100, 600000, 6800000},
    {"shifted_datum", "27700", 25, 400000, 300000},
    // GDAL knows this projection by its angles and takes the false origin for metres.
    {"feet", "2277", 100, 3000000, 10100000, false},
    {"degrees", "4326", 0.01, 10, 50},
    {"web_mercator", "3857", 10, -13692297, 6274861},
};

std::array<double, 6> GdalTerms(GDALDataset& dataset) {
    double t[6] = {};
    EXPECT_EQ(dataset.GetGeoTransform(t), CE_None);
    return {t[1], t[2], t[0], t[4], t[5], t[3]};
}

void ExpectTerms(const std::array<double, 6>& got, const std::array<double, 6>& expected) {
    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_NEAR(got[i], expected[i], 1e-9 * std::max(1.0, std::abs(expected[i]))) << "term " << i;
}

bool IsSameSystem(const OGRSpatialReference* got, const char* epsg) {
    OGRSpatialReference expected;
    expected.importFromEPSG(std::atoi(epsg));
    const char* const options[] = {"IGNORE_DATA_AXIS_TO_SRS_AXIS_MAPPING=YES", "CRITERION=EQUIVALENT",
                                   nullptr};
    return got && got->IsSame(&expected, options);
}

TEST(SidecarPeer, TabFilesPlaceTheRasterAndItsSystem) {
    for (const PeerCase& test : kCases) {
        SCOPED_TRACE(test.name);
        for (const double turn : {0.0, 0.25}) {
            const TempFolder folder;
            const std::string image = GdalFiles::MakeTiff(folder / "map.tif");
            BGeoReference reference = References::WithAffine(test.pixel, test.pixel * turn, test.x,
                                                             test.pixel * turn, -test.pixel, test.y);
            References::SetSystem(reference, test.epsg);
            ASSERT_EQ(Roads::Save(folder / "map.tab", reference, image, 20, 10).type, "");
            const auto dataset = GdalFiles::Open(image);
            ASSERT_TRUE(dataset);
            ExpectTerms(GdalTerms(*dataset), References::Terms(reference));
            EXPECT_EQ(IsSameSystem(dataset->GetSpatialRef(), test.epsg), test.system_in_tab);
        }
    }
}

TEST(SidecarPeer, ErsHeadersPlaceTheRaster) {
    for (const PeerCase& test : kCases) {
        SCOPED_TRACE(test.name);
        const TempFolder folder;
        const std::string image = GdalFiles::MakeTiff(folder / "image.tif", 3);
        BGeoReference reference = References::WithAffine(test.pixel, 0, test.x, 0, -test.pixel, test.y);
        References::SetSystem(reference, test.epsg);
        ASSERT_EQ(Roads::Save(folder / "map.ers", reference, image, 20, 10).type, "");
        const auto dataset = GdalFiles::Open(folder / "map.ers");
        ASSERT_TRUE(dataset);
        EXPECT_EQ(dataset->GetRasterXSize(), 20);
        EXPECT_EQ(dataset->GetRasterYSize(), 10);
        std::array<double, 6> expected = References::Terms(reference);
        // GDAL takes the cell sizes for feet; here they are metres, as the format has it.
        if (std::string(test.name) == "feet")
            for (const std::size_t size : {0U, 4U})
                expected[size] *= 1200.0 / 3937.0;
        ExpectTerms(GdalTerms(*dataset), expected);
        EXPECT_EQ(IsSameSystem(dataset->GetSpatialRef(), test.epsg), test.system_in_ers);
    }
}

}  // namespace
}  // namespace MapAnchor

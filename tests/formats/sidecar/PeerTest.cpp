// TAB and ERS files written here, opened by GDAL with a raster beside them.

#include <ogr_spatialref.h>

#include "GdalFiles.h"
#include "Outcomes.h"

namespace MapAnchor {
namespace {

using namespace Tellurion;

struct PeerCase {
    const char* name;
    const char* epsg;
    double pixel, x, y;
    bool system_in_tab = true;
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

void ExpectTerms(GDALDataset& dataset, const Six& expected) {
    double t[6] = {};
    EXPECT_EQ(dataset.GetGeoTransform(t), CE_None);
    const Six got = {t[1], t[2], t[0], t[4], t[5], t[3]};
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

/// Saves a sidecar of a raster of 20 by 10 pixels and opens one of the two by GDAL.
GdalFiles::Dataset OpenByGdal(const std::string& sidecar, const std::string& image, const std::string& opened,
                              const PeerCase& test, BGeoReference& reference) {
    References::SetSystem(reference, test.epsg);
    EXPECT_EQ(Roads::Save(sidecar, reference, image, 20, 10).type, "");
    GdalFiles::Dataset dataset = GdalFiles::Open(opened);
    EXPECT_TRUE(dataset);
    return dataset;
}

TEST(SidecarPeer, TabFilesPlaceTheRasterAndItsSystem) {
    for (const PeerCase& test : kCases) {
        SCOPED_TRACE(test.name);
        for (const double turn : {0.0, 0.25}) {
            const TempFolder folder;
            const std::string image = GdalFiles::MakeTiff(folder / "map.tif");
            BGeoReference reference = References::WithAffine(test.pixel, test.pixel * turn, test.x,
                                                             test.pixel * turn, -test.pixel, test.y);
            const auto dataset = OpenByGdal(folder / "map.tab", image, image, test, reference);
            ExpectTerms(*dataset, References::Terms(reference));
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
        const auto dataset = OpenByGdal(folder / "map.ers", image, folder / "map.ers", test, reference);
        EXPECT_EQ(dataset->GetRasterXSize(), 20);
        EXPECT_EQ(dataset->GetRasterYSize(), 10);
        Six expected = References::Terms(reference);
        // GDAL takes the cell sizes for feet; here they are metres, as the format has it.
        if (std::string(test.name) == "feet")
            for (const std::size_t size : {0U, 4U})
                expected[size] *= 1200.0 / 3937.0;
        ExpectTerms(*dataset, expected);
        // GDAL has no dictionary of ER Mapper's names.
        EXPECT_FALSE(IsSameSystem(dataset->GetSpatialRef(), test.epsg));
    }
}

}  // namespace
}  // namespace MapAnchor

#include <gtest/gtest.h>

#include "TempFolder.h"

#include <MapAnchor/BThumbnail.h>

#include <gdal_priv.h>

#include <memory>
#include <vector>

namespace {

using MapAnchor::BThumbnail;

struct ThumbnailCase {
    const char* name;
    const char* content;
    int width;
    int height;
    std::vector<int> values;  ///< band after band
};

std::vector<int> PixelsOf(const std::string& png) {
    GDALAllRegister();
    const std::unique_ptr<GDALDataset> picture(GDALDataset::Open(png.c_str()));
    if (!picture) return {};
    std::vector<int> values;
    for (int i = 1; i <= picture->GetRasterCount(); ++i) {
        std::vector<int> band(
            static_cast<std::size_t>(picture->GetRasterXSize() * picture->GetRasterYSize()));
        EXPECT_EQ(picture->GetRasterBand(i)->RasterIO(
                      GF_Read, 0, 0, picture->GetRasterXSize(), picture->GetRasterYSize(), band.data(),
                      picture->GetRasterXSize(), picture->GetRasterYSize(), GDT_Int32, 0, 0, nullptr),
                  CE_None);
        values.insert(values.end(), band.begin(), band.end());
    }
    return values;
}

TEST(Thumbnail, ShowsThePixels) {
    const TempFolder folder;
    const std::string grid = "\nxllcorner 0\nyllcorner 0\ncellsize 1\n";
    const ThumbnailCase cases[] = {
        {"bytes.pgm", "P5 2 2 255\n\x01\x7f\x80\xff", 2, 2, {1, 127, 128, 255}},
        {"colours.ppm", "P6 2 1 255\n\x01\x02\x03\xf0\xf1\xf2", 2, 1, {1, 240, 2, 241, 3, 242}},
        {"averaged.pgm", "P5 4 2 255\n\x10\x20\x44\x44\x30\x44\x44\x44", 2, 1, {41, 68}},
        {"stretched.asc", "ncols 3\nnrows 1@NODATA_value -9\n1000 -9 3000\n", 3, 1, {0, 0, 255, 255, 0, 255}},
        {"flat.asc", "ncols 2\nnrows 1@5 5\n", 2, 1, {128, 128}},
    };
    for (const ThumbnailCase& test : cases) {
        std::string content = test.content;
        if (const std::size_t at = content.find('@'); at != std::string::npos) content.replace(at, 1, grid);
        const std::string file = folder.Write(test.name, content);
        const BThumbnail made = BThumbnail::Of(file.c_str(), test.width, test.height);
        EXPECT_EQ(made.GetWidth(), test.width) << test.name << made.GetFailureText().StdStr();
        EXPECT_EQ(made.GetHeight(), test.height) << test.name;
        EXPECT_EQ(PixelsOf(folder.Write(std::string(test.name) + ".png", made.GetPng())), test.values)
            << test.name;
    }
    const BThumbnail none = BThumbnail::Of(folder.Write("none.tif", "II").c_str(), 9, 9);
    EXPECT_FALSE(none.HasPicture());
    EXPECT_FALSE(none.GetFailureText().IsEmpty());
}

}  // namespace

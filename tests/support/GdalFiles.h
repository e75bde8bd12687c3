#pragma once

#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// Rasters as GDAL alone makes and reads them.
namespace GdalFiles {

struct Closer {
    void operator()(GDALDataset* dataset) const { GDALClose(GDALDataset::ToHandle(dataset)); }
};
using Dataset = std::unique_ptr<GDALDataset, Closer>;

inline Dataset Open(const std::string& path, GDALAccess access = GA_ReadOnly) {
    GDALAllRegister();
    return Dataset(GDALDataset::FromHandle(GDALOpen(path.c_str(), access)));
}

/// A TIFF of 20 by 10 pixels whose values differ; `finish` may add to it.
inline std::string MakeTiff(
    const std::string& path, int bands = 1,
    const std::function<void(GDALDataset&)>& finish = [](GDALDataset&) {}) {
    GDALAllRegister();
    auto* driver = GetGDALDriverManager()->GetDriverByName("GTiff");
    char little[] = "ENDIANNESS=LITTLE";
    char* options[] = {little, nullptr};
    const Dataset made(driver->Create(path.c_str(), 20, 10, bands, GDT_Byte, options));
    std::vector<std::uint8_t> pixels(200);
    for (int band = 1; band <= bands; ++band) {
        for (std::size_t i = 0; i < pixels.size(); ++i)
            pixels[i] = static_cast<std::uint8_t>(i * 7 + static_cast<std::size_t>(band) * 31);
        EXPECT_EQ(made->GetRasterBand(band)->RasterIO(GF_Write, 0, 0, 20, 10, pixels.data(), 20, 10, GDT_Byte,
                                                      0, 0, nullptr),
                  CE_None);
    }
    finish(*made);
    return path;
}

/// Every pixel of every band; empty when the raster does not open.
inline std::vector<std::uint8_t> Pixels(const std::string& path) {
    const Dataset raster = Open(path);
    if (!raster) return {};
    const int width = raster->GetRasterXSize();
    const int height = raster->GetRasterYSize();
    const int bands = raster->GetRasterCount();
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(width * height * bands));
    EXPECT_EQ(raster->RasterIO(GF_Read, 0, 0, width, height, pixels.data(), width, height, GDT_Byte, bands,
                               nullptr, 0, 0, 0, nullptr),
              CE_None);
    return pixels;
}

/// A raster of 20 by 10 pixels in GDAL's own text form, which opens under any name.
inline std::string VrtText(const std::string& reference, const std::string& bands) {
    return "<VRTDataset rasterXSize=\"20\" rasterYSize=\"10\">" + reference + bands + "</VRTDataset>";
}

inline std::string VrtBand(int number, const std::string& content) {
    return "<VRTRasterBand dataType=\"Byte\" band=\"" + std::to_string(number) + "\">" + content +
           "</VRTRasterBand>";
}

inline std::string Vrt(const std::string& reference) {
    return VrtText(reference, VrtBand(1, "<ColorInterp>Gray</ColorInterp>"));
}

/// How many datasets are open in this process.
inline int CountOpen() {
    int count = 0;
    GDALDataset::GetOpenDatasets(&count);
    return count;
}

}  // namespace GdalFiles

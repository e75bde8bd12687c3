// Reads the files whose names come on stdin as a program of one's own does by GDAL, in as many
// threads as the argument says: opens each, asks for its size, transform, points, system as WKT and
// AREA_OR_POINT, and closes it. The peer of `mapanchor batch`.

#include <gdal_priv.h>

#include <atomic>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

struct Closer {
    void operator()(GDALDataset* raster) const { GDALClose(raster); }
};

std::size_t LengthOfAnswers(const std::string& name) {
    const std::unique_ptr<GDALDataset, Closer> raster(
        GDALDataset::Open(name.c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY));
    if (!raster) return 0;
    double terms[6];
    std::size_t length = raster->GetGeoTransform(terms) == CE_None ? 6 : 0;
    length += static_cast<std::size_t>(raster->GetRasterXSize() + raster->GetRasterYSize());
    length += static_cast<std::size_t>(raster->GetGCPCount());
    if (const OGRSpatialReference* system = raster->GetSpatialRef()) {
        char* text = nullptr;
        const char* const options[] = {"FORMAT=WKT2_2019", nullptr};
        system->exportToWkt(&text, options);
        length += text ? std::string(text).size() : 0;
        CPLFree(text);
    }
    if (const char* point = raster->GetMetadataItem("AREA_OR_POINT")) length += std::string(point).size();
    return length;
}

}  // namespace

int main(int count, char** words) {
    GDALAllRegister();
    CPLPushErrorHandler(CPLQuietErrorHandler);
    std::vector<std::string> names;
    for (std::string name; std::getline(std::cin, name);)
        names.push_back(std::move(name));
    std::atomic<std::size_t> next = 0;
    std::atomic<std::size_t> length = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < (count > 1 ? std::atoi(words[1]) : 1); ++i)
        threads.emplace_back([&] {
            for (std::size_t at = next++; at < names.size(); at = next++)
                length += LengthOfAnswers(names[at]);
        });
    for (std::thread& thread : threads)
        thread.join();
    std::cout << names.size() << " files, " << length << " bytes of answers\n";
    return 0;
}

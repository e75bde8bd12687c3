#pragma once

#include <MapAnchor/BMapAnchor.h>

#include <functional>
#include <string>
#include <vector>

/// A file whose georeferencing is saved.
struct Subject {
    std::string name;
    std::string file;
    Tellurion::EReferenceType type;
    std::function<void(const std::string& path)> make;  ///< the file as it is before the save
    bool by_tool = false;
    bool other_disk = false;  ///< for temporary files
    bool is_new = false;      ///< there is no file before the save
};

/// Some 40 kinds of TIFF, the text files, PDF, and some of them by the command line.
std::vector<Subject> AllSubjects();

/// What GDAL alone reads from a raster; empty when it does not open.
struct RasterState {
    std::string pixels;
    std::string reference;
};
RasterState DescribeRaster(const std::string& path);

#pragma once

#include <MapAnchor/Export.h>
#include <Tellurion/BString.h>

#include <string>

namespace MapAnchor {

/// A small picture of a raster, for lists and previews. This is the one place where the library
/// reads pixels. It takes a few seconds and little memory, whatever the raster's size, and never
/// throws for the file's sake. Of damaged files GDAL's drivers may still read for long or end
/// the process: for files that are not trusted, call it in a process of its own, as the tool does.
class MAPANCHOR_EXPORT BThumbnail {
public:
    /// Of a raster that GDAL reads, by the rules of BGdalAccess, in at most that many pixels; a
    /// smaller raster keeps its size.
    static BThumbnail Of(const Tellurion::BString& file, int maxWidth, int maxHeight);

    bool HasPicture() const { return !png_.empty(); }   ///< false when there is a failure
    const std::string& GetPng() const { return png_; }  ///< the bytes of a PNG file
    int GetWidth() const { return width_; }             ///< of the picture, in pixels
    int GetHeight() const { return height_; }           ///< as GetWidth()
    /// Why there is no picture; else empty.
    const Tellurion::BString& GetFailureText() const { return failure_; }

private:
    std::string png_;
    int width_ = 0;
    int height_ = 0;
    Tellurion::BString failure_;
};

}  // namespace MapAnchor

#include <MapAnchor/BThumbnail.h>

#include "raster/gdal/Thumbnail.h"

#include <algorithm>
#include <exception>

namespace MapAnchor {

using Tellurion::BString;

BThumbnail BThumbnail::Of(const BString& file, int maxWidth, int maxHeight) {
    constexpr int kMaxSide = 4096;
    BThumbnail result;
    std::string why_not;
    try {
        auto made = MakeThumbnail(file, std::clamp(maxWidth, 1, kMaxSide), std::clamp(maxHeight, 1, kMaxSide),
                                  why_not);
        if (made) {
            result.png_ = std::move(made->png);
            result.width_ = made->width;
            result.height_ = made->height;
        }
    } catch (const std::exception& error) {
        why_not = error.what();
    }
    result.failure_ = BString(why_not);
    return result;
}

}  // namespace MapAnchor

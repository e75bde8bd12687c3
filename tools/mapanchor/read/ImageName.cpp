#include "read/ImageName.h"

#include <Tellurion/BFileUtilities.h>

#include <filesystem>

namespace Tool {

std::string ImageNameFor(const std::string& target, const std::string& raster) {
    namespace fs = std::filesystem;
    const std::string name = Tellurion::BFileUtilities::GetFileName(Tellurion::BString(raster)).StdStr();
    const Tellurion::BString extension =
        Tellurion::BFileUtilities::GetExtension(Tellurion::BString(target)).ToLower();
    if (extension != Tellurion::BString(".vrt") && extension != Tellurion::BString(".kml")) return name;
    std::error_code error;
    const fs::path path =
        fs::proximate(fs::absolute(raster, error), fs::absolute(target, error).parent_path(), error);
    return error ? name : path.string();
}

}  // namespace Tool

#include "raster/gdal/GdalSettings.h"

#include <Tellurion/Ascii.h>

#include <cpl_conv.h>
#include <cpl_string.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace MapAnchor {
namespace {

bool MayMatter(std::string_view setting) {
    constexpr std::string_view kStarts[] = {
        "GTIFF_",           "GDAL_GEOREF", "GDAL_PAM", "GDAL_DISABLE_READDIR", "GDAL_SKIP",
        "GDAL_ENABLE_TIFF", "OSR_",        "USE_RRD",  "ESRI_XML_PAM",         "TIFF_"};
    static constexpr std::string_view kInitials =
        "GOUETgouet";  // an environment is long, and asked of each file
    static_assert(std::all_of(std::begin(kStarts), std::end(kStarts), [](std::string_view start) {
        return kInitials.find(start[0]) != std::string_view::npos;
    }));
    if (setting.empty() || kInitials.find(setting[0]) == std::string_view::npos) return false;
    return std::any_of(std::begin(kStarts), std::end(kStarts), [setting](std::string_view start) {
        return setting.size() >= start.size() &&
               std::equal(start.begin(), start.end(), setting.begin(),
                          [](char wanted, char found) { return wanted == Tellurion::UpperAscii(found); });
    });
}

bool AnyMatters(const char* const* settings) {
    for (; settings && *settings; ++settings)
        if (MayMatter(*settings)) return true;
    return false;
}

}  // namespace

bool HasGdalSettings() {
    if (AnyMatters(environ)) return true;
    const CPLStringList process(CPLGetConfigOptions());
    const CPLStringList thread(CPLGetThreadLocalConfigOptions());
    return AnyMatters(process.List()) || AnyMatters(thread.List());
}

}  // namespace MapAnchor

#include "batch/GdalParts.h"

#include <Tellurion/BLogger.h>
#include <Tellurion/BUnsupportedFileTypeException.h>

#include <dlfcn.h>

#include <string_view>

namespace Tool {

namespace {

/// Beside libTellurion, where the library looks for its modules.
std::string FileOfParts() {
    Dl_info library;
    const auto own = reinterpret_cast<const void*>(&Tellurion::BLogger::Instance);
    const std::string file = dladdr(own, &library) != 0 && library.dli_fname ? library.dli_fname : "";
    return file.substr(0, file.rfind('/') + 1) + "libmapanchor-tool.so." + MAPANCHOR_SOVERSION;
}

const GdalParts& LoadParts() {
    const std::string file = FileOfParts();
    void* const handle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    const char* const reason = handle ? nullptr : dlerror();
    void* const symbol = handle ? dlsym(handle, "mapanchor_tool_parts") : nullptr;
    const GdalParts* const parts = symbol ? reinterpret_cast<const GdalParts* (*)()>(symbol)() : nullptr;
    if (parts && std::string_view(parts->version) == MAPANCHOR_VERSION) return *parts;
    throw Tellurion::BUnsupportedFileTypeException(
        "mapanchor",
        Tellurion::BString("indexes, and footprints that are hard to cut, need the module <" + file +
                           "> of version " + MAPANCHOR_VERSION + ", which cannot be loaded" +
                           (reason ? std::string(": ") + reason : std::string()) +
                           "; install the package libmapanchor" + MAPANCHOR_SOVERSION + "-gdal."));
}

const GdalParts& Parts() {
    static const GdalParts& parts = LoadParts();
    return parts;
}

}  // namespace

std::optional<Footprint> CutAtAntimeridian(const std::vector<Position>& line) {
    return Parts().cut_at_antimeridian(line);
}

bool Contains(const Footprint& outer, const Footprint& inner) {
    return Parts().contains(outer, inner);
}

std::unique_ptr<Index> MakeIndex(const std::string& file, bool overwrite) {
    return Parts().make_index(file, overwrite);
}

}  // namespace Tool

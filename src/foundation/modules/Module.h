#pragma once

#include <Tellurion/Export.h>

#include <atomic>
#include <mutex>
#include <string>

namespace Tellurion {

/// What the one C function of a module returns. The version comes first in every release, and
/// nothing else is looked at unless it is the library's own.
struct ModuleTable {
    const char* version;
    const void* functions;
};

/// A part of the library in a file of its own, so that only those who need them load GDAL,
/// PoDoFo and Qt:
///
///     libMapAnchor.so.0 --> Module --> libmapanchor-gdal.so.0 --> libgdal.so
///         |      ^                        |
///         |      +---- exported texts, notes and exceptions
///         +--> libTellurion.so.0, beside which the module is looked for, and nowhere else
///
/// It is loaded by the first call of Functions(), once, by any thread, and stays loaded.
class TELLURION_EXPORT Module {
public:
    /// `name` as in "gdal"; `purpose` is the subject of the message where it is missing, such
    /// as "GeoTIFF and other rasters"; `below` as for LoadLibrary.
    constexpr Module(const char* name, const char* purpose, const char* below = "")
        : name_(name), purpose_(purpose), below_(below) {}

    /// The table of its functions. A BUnsupportedFileTypeException, which names the file and
    /// the remedy, where the module is not installed, cannot be loaded or is of another version;
    /// std::bad_alloc where there is no memory for it.
    const void* Functions();
    /// The same, but null where it was not loaded yet.
    const void* FunctionsIfLoaded() const { return functions_.load(std::memory_order_acquire); }
    /// False where Functions() would throw.
    bool IsThere();

private:
    const void* Load() const;
    std::string File() const;

    const char* name_;
    const char* purpose_;
    const char* below_;
    std::mutex mutex_;
    std::atomic<const void*> functions_{nullptr};
};

}  // namespace Tellurion

#include "modules/Module.h"

#include "io/LibraryOnDemand.h"

#include <Tellurion/BUnsupportedFileTypeException.h>

#include <dlfcn.h>
#include <unistd.h>

#include <cstring>

namespace Tellurion {
namespace {

constexpr const char* kSource = "Module::Functions";
constexpr const char* kFunction = "mapanchor_module";

/// Where this library was loaded from, with the slash at its end.
std::string OwnFolder() {
    static const char own = 0;
    Dl_info info;
    if (dladdr(&own, &info) == 0 || !info.dli_fname) return {};
    const std::string file = info.dli_fname;
    return file.substr(0, file.rfind('/') + 1);
}

[[noreturn]] void Fail(const std::string& text) {
    throw BUnsupportedFileTypeException(kSource, BString(text));
}

}  // namespace

std::string Module::File() const {
    return OwnFolder() + "libmapanchor-" + name_ + ".so." + MAPANCHOR_SOVERSION;
}

const void* Module::Load() const {
    const std::string file = File();
    const std::string remedy = std::string("install the package libmapanchor") + MAPANCHOR_SOVERSION + "-" +
                               name_ + " of version " + MAPANCHOR_MODULE_VERSION + ".";
    if (access(file.c_str(), F_OK) != 0)
        Fail(std::string(purpose_) + " need the module <" + file + ">, which is not installed; " + remedy);
    std::string reason;
    void* const handle = LoadLibrary(file, reason, below_);
    if (!handle) Fail("The module <" + file + "> cannot be loaded: " + reason + "; " + remedy);
    void* const symbol = dlsym(handle, kFunction);
    const auto function = reinterpret_cast<const ModuleTable* (*)()>(symbol);
    const ModuleTable* const table = function ? function() : nullptr;
    if (!table || !table->version || std::strcmp(table->version, MAPANCHOR_MODULE_VERSION) != 0)
        Fail("The module <" + file + "> is of version " +
             (table && table->version ? table->version : "unknown") + ", the library of version " +
             MAPANCHOR_MODULE_VERSION + "; " + remedy);
    return table->functions;
}

const void* Module::Functions() {
    if (const void* const loaded = FunctionsIfLoaded()) return loaded;
    const std::lock_guard lock(mutex_);
    if (const void* const loaded = FunctionsIfLoaded()) return loaded;
    const void* const functions = Load();
    functions_.store(functions, std::memory_order_release);
    return functions;
}

bool Module::IsThere() {
    try {
        return Functions() != nullptr;
    } catch (const BUnsupportedFileTypeException&) {
        return false;
    }
}

}  // namespace Tellurion

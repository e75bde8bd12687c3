#include "io/LibraryOnDemand.h"

#include <Tellurion/BUnsupportedFileTypeException.h>

#include <dlfcn.h>
#include <sys/resource.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <new>
#include <sstream>

namespace Tellurion {
namespace {

constexpr const char* kSource = "LibraryOnDemand::Function";

/// Of any library; kept to the end of the process.
std::atomic<const BString*> first_failure = nullptr;

/// The loader gives no number of the error. That it cannot map a file has other reasons, too, where the
/// process may have all the memory that it wants.
bool IsForMemory(const std::string& reason) {
    rlimit limit{};
    const bool is_limited = getrlimit(RLIMIT_AS, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY;
    return reason.find("Cannot allocate memory") != std::string::npos ||
           (is_limited && (reason.find("failed to map") != std::string::npos ||
                           reason.find("cannot map") != std::string::npos));
}

/// Loads all but the first. One that is missing or fails is left to that one, which may need it no more.
void LoadEach(const std::string& names) {
    // By this variable another library may be found, with other libraries below it. Those that are
    // loaded here ask for variables, too, so that no thread may change one now anyway.
    if (std::getenv("LD_LIBRARY_PATH")) return;  // NOLINT(concurrency-mt-unsafe)
    std::istringstream each(names);
    std::string name;
    if (!(each >> name)) return;
    if (void* const present = dlopen(name.c_str(), RTLD_LAZY | RTLD_NOLOAD)) {
        dlclose(present);
        return;
    }
    while (each >> name)
        static_cast<void>(dlopen(name.c_str(), RTLD_LAZY | RTLD_LOCAL));
}

}  // namespace

/// Functions are looked up when they are called: the libraries below GDAL and PoDoFo have tens of
/// thousands.
void* LoadLibrary(const std::string& file, std::string& reason, const char* below) {
    LoadEach(below);
    void* const handle = dlopen(file.c_str(), RTLD_LAZY | RTLD_LOCAL);
    if (handle) return handle;
    const char* const words = dlerror();
    reason = words ? words : "unknown reason";
    if (IsForMemory(reason)) throw std::bad_alloc();
    return nullptr;
}

void LibraryOnDemand::Fail(const std::string& reason) const {
    const BString text(std::string(need_) + ", but the library <" + file_ + "> cannot be used: " + reason +
                       "; install the one that MapAnchor was built with.");
    auto kept = std::make_unique<const BString>(text);
    const BString* none = nullptr;
    if (first_failure.compare_exchange_strong(none, kept.get())) static_cast<void>(kept.release());
    throw BUnsupportedFileTypeException(kSource, text);
}

void LibraryOnDemand::RequireAll() {
    if (const BString* const text = first_failure) throw BUnsupportedFileTypeException(kSource, *text);
}

void* LibraryOnDemand::Function(const char* name) {
    const std::lock_guard lock(mutex_);
    std::string reason;
    if (!handle_) handle_ = LoadLibrary(file_, reason, below_);
    if (!handle_) Fail(reason);
    void* const function = dlsym(handle_, name);
    if (!function) Fail(std::string("it has no function ") + name);
    return function;
}

}  // namespace Tellurion

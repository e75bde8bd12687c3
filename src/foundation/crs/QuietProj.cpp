#include "crs/QuietProj.h"

#include "crs/OgrTexts.h"

#include <proj.h>

#include <mutex>

namespace Tellurion {
namespace {

struct Hush {
    std::mutex mutex;
    int count = 0;
    PJ_LOG_LEVEL before = PJ_LOG_NONE;
};

Hush& TheHush() {
    static auto* const hush = new Hush;
    return *hush;
}

/// GDAL's own context of a thread starts as a copy of the default one, and reports PROJ's
/// failures to the host for the rest of the thread's life: it is made before the hush of this
/// thread, and outside that of another. Under the lock.
void MakeContextOfGdal() {
    thread_local bool made = false;
    if (made) return;
    const bool hushed = TheHush().count > 0;
    if (hushed) proj_log_level(nullptr, TheHush().before);
    made = MakeProjContextOfGdal();
    if (hushed) proj_log_level(nullptr, PJ_LOG_NONE);
}

}  // namespace

QuietProj::QuietProj() {
    const std::lock_guard lock(TheHush().mutex);
    MakeContextOfGdal();
    if (TheHush().count++ == 0) TheHush().before = proj_log_level(nullptr, PJ_LOG_NONE);
}

QuietProj::~QuietProj() {
    const std::lock_guard lock(TheHush().mutex);
    if (--TheHush().count == 0) proj_log_level(nullptr, TheHush().before);
}

}  // namespace Tellurion

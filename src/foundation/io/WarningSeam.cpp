#include "io/WarningSeam.h"

#include <mutex>
#include <utility>

namespace Tellurion {
namespace {

struct Kept {
    std::mutex mutex;
    WarningSeam seam;
};

Kept& TheKept() {
    static auto* const kept = new Kept;
    return *kept;
}

}  // namespace

void SetWarningSeam(WarningSeam seam) {
    const std::lock_guard lock(TheKept().mutex);
    TheKept().seam = std::move(seam);
}

WarningSeam GetWarningSeam() {
    const std::lock_guard lock(TheKept().mutex);
    return TheKept().seam;
}

}  // namespace Tellurion

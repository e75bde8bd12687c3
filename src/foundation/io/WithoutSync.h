#pragma once

#include <Tellurion/Export.h>

namespace Tellurion {

/// While one lives, this thread's files are not waited for until they are on the disk. A
/// process that is killed still leaves the old or the new file; a power failure may not.
class TELLURION_EXPORT WithoutSync {
public:
    WithoutSync();
    ~WithoutSync();
    WithoutSync(const WithoutSync&) = delete;
    WithoutSync& operator=(const WithoutSync&) = delete;

    /// True while one of this thread lives.
    static bool IsOn();
};

}  // namespace Tellurion

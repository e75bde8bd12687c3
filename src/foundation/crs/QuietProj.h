#pragma once

#include <Tellurion/Export.h>

namespace Tellurion {

/// While one lives, in any thread, PROJ's default context prints nothing on stderr: libraries
/// under GDAL, such as libgeotiff, use it, or contexts made after it, to look things up.
/// Afterwards it is as talkative as it was.
class TELLURION_EXPORT QuietProj {
public:
    QuietProj();
    ~QuietProj();
    QuietProj(const QuietProj&) = delete;
    QuietProj& operator=(const QuietProj&) = delete;
};

}  // namespace Tellurion

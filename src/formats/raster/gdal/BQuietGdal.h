#pragma once

#include <MapAnchor/Export.h>
#include <Tellurion/BString.h>

#include <memory>

namespace MapAnchor {

/// For hosts that call GDAL themselves: while one lives, GDAL's errors in this thread reach
/// no error handler of the host, and PROJ prints nothing on stderr. Afterwards CPLGetLastError*
/// report again what they reported before. It must end in the thread that made it; of several,
/// the newest ends first.
class MAPANCHOR_EXPORT BQuietGdal {
public:
    BQuietGdal();
    ~BQuietGdal();
    BQuietGdal(const BQuietGdal&) = delete;
    BQuietGdal& operator=(const BQuietGdal&) = delete;

    /// The text of the first failure that GDAL reported since; empty where it reported none.
    Tellurion::BString FirstFailure() const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace MapAnchor

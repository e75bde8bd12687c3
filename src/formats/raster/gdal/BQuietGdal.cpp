#include "raster/gdal/BQuietGdal.h"

#include <Tellurion/QuietGdal.h>

namespace MapAnchor {

struct BQuietGdal::State {
    Tellurion::QuietGdal quiet;
};

BQuietGdal::BQuietGdal() : state_(std::make_unique<State>()) {}
BQuietGdal::~BQuietGdal() = default;

Tellurion::BString BQuietGdal::FirstFailure() const {
    return Tellurion::BString(state_->quiet.FirstFailure().c_str());
}

}  // namespace MapAnchor

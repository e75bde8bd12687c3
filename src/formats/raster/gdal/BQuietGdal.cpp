#include "raster/gdal/BQuietGdal.h"

#include "raster/gdal/QuietErrors.h"

namespace MapAnchor {

struct BQuietGdal::State {
    std::unique_ptr<QuietErrors> errors = MakeQuietErrors();
};

BQuietGdal::BQuietGdal() : state_(std::make_unique<State>()) {}
BQuietGdal::~BQuietGdal() = default;

Tellurion::BString BQuietGdal::FirstFailure() const {
    return state_->errors->FirstFailure();
}

}  // namespace MapAnchor

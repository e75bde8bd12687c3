#include "raster/gdal/QuietErrors.h"

#include <Tellurion/QuietGdal.h>

namespace MapAnchor {
namespace {

class OfGdal final : public QuietErrors {
public:
    Tellurion::BString FirstFailure() const override { return {quiet_.FirstFailure().c_str()}; }

private:
    Tellurion::QuietGdal quiet_;
};

}  // namespace

std::unique_ptr<QuietErrors> MakeQuietErrors() {
    return std::make_unique<OfGdal>();
}

}  // namespace MapAnchor

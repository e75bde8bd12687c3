#include <MapAnchor/BWarningBox.h>

#include <Tellurion/WarningSeam.h>

#include <utility>

namespace MapAnchor {

void BWarningBox::Replace(Box box) {
    Tellurion::SetWarningSeam(std::move(box));
}

}  // namespace MapAnchor

#include <Tellurion/BTransform.h>

namespace Tellurion {

BTransform::~BTransform() = default;

}  // namespace Tellurion

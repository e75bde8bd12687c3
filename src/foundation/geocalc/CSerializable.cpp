#include "geocalc/CSerializable.h"

namespace GeoCalc {

CSerializable::~CSerializable() = default;

}  // namespace GeoCalc

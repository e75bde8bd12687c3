#include "read/Conversion.h"

#include <Tellurion/BCoordSysException.h>

namespace Tool {

using Tellurion::BCoordSys;
using Tellurion::BPoint;

Conversion::Conversion(const BCoordSys& from, const BCoordSys& to)
    : from_(from), to_(to), possible_(from.CanConvertTo(to)) {}

std::optional<Position> Conversion::Convert(const Position& position) const {
    if (!possible_) return std::nullopt;
    try {
        const BPoint to = from_.ConvertTo(to_, BPoint(position.x, position.y, 0.0));
        return Position{to.x, to.y};
    } catch (const Tellurion::BCoordSysException&) {
        return std::nullopt;
    }
}

}  // namespace Tool

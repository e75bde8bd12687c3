#include <Tellurion/BPointPair.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace Tellurion {
namespace {

std::int32_t Clamp(long value) {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(std::clamp<long>(value, Limits::min(), Limits::max()));
}

}  // namespace

BPoint::~BPoint() = default;

BPointPair::BPointPair(long column, long row, double worldX, double worldY, double worldZ, BString name,
                       bool enabled)
    : Name(std::move(name)),
      Column(Clamp(column)),
      Row(Clamp(row)),
      World(worldX, worldY, worldZ),
      Enabled(enabled) {}

BPointPair::~BPointPair() = default;

}  // namespace Tellurion

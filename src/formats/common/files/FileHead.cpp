#include "common/files/FileHead.h"

#include <algorithm>

namespace MapAnchor {

bool FileHead::Grow() {
    constexpr std::size_t kFirst = 4096;  // what an open file has at hand
    constexpr std::size_t kFactor = 4;
    const std::size_t had = bytes_.size();
    const std::size_t wanted = std::min(limit_, std::max(kFirst, had * kFactor));
    if (wanted == had) return false;
    bytes_.resize(wanted);
    bytes_.resize(had + file_.Read(bytes_.data() + had, wanted - had));
    return bytes_.size() > had;
}

}  // namespace MapAnchor

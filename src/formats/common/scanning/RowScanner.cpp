#include "common/scanning/RowScanner.h"

#include "common/scanning/Text.h"

#include <Tellurion/Numbers.h>

#include <algorithm>
#include <limits>

namespace MapAnchor {

bool RowScanner::Whole(std::int32_t& value) {
    using Limits = std::numeric_limits<std::int32_t>;
    long number = 0;
    if (!Tellurion::ScanLong(rest_, number)) return false;
    value = static_cast<std::int32_t>(std::clamp<long>(number, Limits::min(), Limits::max()));
    return true;
}

bool RowScanner::Real(double& value) {
    return Tellurion::ScanDouble(rest_, value);
}

bool RowScanner::Literal(std::string_view text) {
    const std::string_view rest = WithoutLeadingBlanks(rest_);
    if (rest.substr(0, text.size()) != text) return false;
    rest_ = rest.substr(text.size());
    return true;
}

void RowScanner::SkipBlanks() {
    rest_ = WithoutLeadingBlanks(rest_);
}

}  // namespace MapAnchor

#pragma once

#include <Tellurion/Export.h>

#include <string>
#include <string_view>

namespace Tellurion {

/// Numbers in text, the same in every locale: the decimal mark is always a point.

/// Cuts a number off the front of `text` by the rules of strtod: white space, a
/// sign, then a decimal or hexadecimal number, "inf" or "nan". False, with `text`
/// and `value` unchanged, when there is none. Too large gives infinity, too small 0.
TELLURION_EXPORT bool ScanDouble(std::string_view& text, double& value);

/// The same for a decimal whole number; clamped to the range of long.
TELLURION_EXPORT bool ScanLong(std::string_view& text, long& value);

/// The number at the front of `text`, 0 when there is none; what follows is ignored.
TELLURION_EXPORT double ParseDouble(std::string_view text);

/// The decimal whole number at the front of `text`, 0 when there is none; clamped to the range of long.
TELLURION_EXPORT long ParseLong(std::string_view text);

/// As printf's "%.*f".
TELLURION_EXPORT std::string PrintFixed(double value, int decimals);

/// The fewest digits that read back as the same double; without an exponent in the
/// range of coordinates, 1e-5 to 1e16.
TELLURION_EXPORT std::string PrintShortest(double value);

}  // namespace Tellurion

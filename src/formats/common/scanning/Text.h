#pragma once

#include <Tellurion/Ascii.h>

#include <algorithm>
#include <string_view>

namespace MapAnchor {

using Tellurion::IsBlank;
using Tellurion::LowerAscii;

inline std::string_view WithoutLeadingBlanks(std::string_view text) {
    const auto* const first = std::find_if_not(text.begin(), text.end(), IsBlank);
    return text.substr(static_cast<std::size_t>(first - text.begin()));
}

/// True when `lower`, a text in lower case, is in `text` in any case.
inline bool ContainsInAnyCase(std::string_view text, std::string_view lower) {
    return std::search(text.begin(), text.end(), lower.begin(), lower.end(),
                       [](char a, char b) { return LowerAscii(a) == b; }) != text.end();
}

}  // namespace MapAnchor

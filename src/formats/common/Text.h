#pragma once

#include <algorithm>
#include <string_view>

namespace MapAnchor {

// Narrow text by the rules of the C locale, whatever the host's is.

constexpr bool IsBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

constexpr char LowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

inline std::string_view WithoutLeadingBlanks(std::string_view text) {
    const auto* const first = std::find_if_not(text.begin(), text.end(), IsBlank);
    return text.substr(static_cast<std::size_t>(first - text.begin()));
}

/// True when `lower`, a text in lower case, stands in `text` in any case.
inline bool ContainsInAnyCase(std::string_view text, std::string_view lower) {
    return std::search(text.begin(), text.end(), lower.begin(), lower.end(),
                       [](char a, char b) { return LowerAscii(a) == b; }) != text.end();
}

}  // namespace MapAnchor

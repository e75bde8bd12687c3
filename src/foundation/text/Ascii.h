#pragma once

#include <algorithm>
#include <string>
#include <string_view>

/// Narrow text by the rules of the C locale, whatever the locale of the host is.
namespace Tellurion {

constexpr bool IsBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

constexpr bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

constexpr char LowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr char UpperAscii(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

constexpr bool IsLetterOrDigit(char c) {
    const char upper = UpperAscii(c);
    return (upper >= 'A' && upper <= 'Z') || IsDigit(c);
}

inline std::string LowerAscii(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) { return LowerAscii(c); });
    return lower;
}

inline std::string UpperAscii(std::string_view text) {
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), [](char c) { return UpperAscii(c); });
    return upper;
}

}  // namespace Tellurion

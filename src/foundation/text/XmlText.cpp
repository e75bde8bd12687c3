#include "common/scanning/XmlText.h"

#include <algorithm>

namespace MapAnchor {
namespace {

bool IsContinuation(unsigned char byte) {
    return (byte & 0xC0U) == 0x80U;
}

/// The bytes of the character that begins there; 0 for none that XML has.
std::size_t LengthOfCharacter(std::string_view text) {
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(0);
    if (first < 0x80U) return first >= 0x20U || first == '\t' || first == '\n' || first == '\r' ? 1 : 0;
    const std::size_t length = first >= 0xF5U   ? 0
                               : first >= 0xF0U ? 4
                               : first >= 0xE0U ? 3
                               : first >= 0xC2U ? 2
                                                : 0;
    if (length == 0 || text.size() < length) return 0;
    for (std::size_t i = 1; i < length; ++i)
        if (!IsContinuation(byte(i))) return 0;
    const bool is_overlong = (first == 0xE0U && byte(1) < 0xA0U) || (first == 0xF0U && byte(1) < 0x90U);
    const bool is_surrogate = first == 0xEDU && byte(1) >= 0xA0U;
    const bool is_no_character = text.starts_with("\xEF\xBF\xBE") || text.starts_with("\xEF\xBF\xBF");
    const bool is_beyond = first == 0xF4U && byte(1) >= 0x90U;
    return is_overlong || is_surrogate || is_no_character || is_beyond ? 0 : length;
}

}  // namespace

std::string XmlCharacters(std::string_view utf8) {
    std::string text;
    while (!utf8.empty()) {
        const std::size_t length = LengthOfCharacter(utf8);
        text += length == 0 ? std::string_view("?") : utf8.substr(0, length);
        utf8.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return text;
}

std::string XmlEscaped(std::string_view utf8) {
    std::string text;
    for (const char c : XmlCharacters(utf8)) {
        switch (c) {
            case '&':
                text += "&amp;";
                break;
            case '<':
                text += "&lt;";
                break;
            case '>':
                text += "&gt;";
                break;
            case '"':
                text += "&quot;";
                break;
            default:
                text += c;
        }
    }
    return text;
}

}  // namespace MapAnchor

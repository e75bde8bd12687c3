#include <Tellurion/XmlText.h>

#include "text/Unicode.h"

#include <algorithm>

namespace Tellurion {
namespace {

bool IsInXml(char32_t code) {
    if (code < 0x20) return code == '\t' || code == '\n' || code == '\r';
    return code != 0xFFFE && code != 0xFFFF;
}

}  // namespace

std::string XmlCharacters(std::string_view utf8) {
    std::string text;
    while (!utf8.empty()) {
        const Unicode::Decoded one = Unicode::DecodeOne(utf8);
        const bool is_held = one.length > 0 && IsInXml(one.code);
        const std::size_t length = std::max<std::size_t>(one.length, 1);
        text += is_held ? utf8.substr(0, length) : std::string_view("?");
        utf8.remove_prefix(length);
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

}  // namespace Tellurion

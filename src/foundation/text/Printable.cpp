#include <Tellurion/Printable.h>

#include "text/Unicode.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>

namespace Tellurion {
namespace {

using Unicode::Decoded;

struct Range {
    char32_t first;
    char32_t last;
};

/// Behind ASCII, in order.
constexpr Range kUnprintable[] = {
    {0x7F, 0x9F},         // DEL and the second set of control characters
    {0x61C, 0x61C},       // Arabic letter mark
    {0x200E, 0x200F},     // left-to-right and right-to-left mark
    {0x2028, 0x202E},     // separators of lines and paragraphs, embeddings, overrides
    {0x2066, 0x206F},     // isolates and deprecated format characters
    {0xFFF9, 0xFFFB},     // interlinear annotations
    {0xFFFE, 0xFFFF},     // noncharacters, which XML forbids
    {0xE0000, 0xE007F}};  // tags: characters that are not seen

bool IsPrintable(char32_t code) {
    if (code < 0x7F) return code >= 0x20 || code == '\t';
    return std::none_of(std::begin(kUnprintable), std::end(kUnprintable),
                        [code](const Range& range) { return code >= range.first && code <= range.last; });
}

bool IsPlain(char c) {
    return (c >= 0x20 && c < 0x7F) || c == '\t';
}

void AppendHex(std::string& out, const char* mark, char32_t value, std::size_t digits) {
    std::array<char, 8> hex{};
    const auto end =
        std::to_chars(hex.data(), hex.data() + hex.size(), static_cast<std::uint32_t>(value), 16);
    const auto count = static_cast<std::size_t>(end.ptr - hex.data());
    out.append(mark).append(digits > count ? digits - count : 0, '0').append(hex.data(), count);
}

void AppendEscape(std::string& out, char32_t code) {
    if (code == '\n')
        out += "\\n";
    else if (code == '\r')
        out += "\\r";
    else if (code < 0x80)
        AppendHex(out, "\\x", code, 2);
    else if (code < 0x10000)
        AppendHex(out, "\\u", code, 4);
    else
        AppendHex(out, "\\U", code, 8);
}

void AppendJsonEscape(std::string& out, char32_t code) {
    constexpr char32_t kPlane = 0x10000;
    if (code < kPlane) return AppendHex(out, "\\u", code, 4);
    AppendHex(out, "\\u", 0xD800 + ((code - kPlane) >> 10U), 4);
    AppendHex(out, "\\u", 0xDC00 + ((code - kPlane) & 0x3FFU), 4);
}

/// `text` with `escape` for what is not printable and `bad_byte` for bytes that are not UTF-8.
template <class Keep, class Escape, class BadByte>
std::string Replace(std::string_view text, Keep keep, Escape escape, BadByte bad_byte) {
    const auto* const odd = std::find_if_not(text.begin(), text.end(), IsPlain);
    std::string out(text.begin(), odd);
    for (auto i = out.size(); i < text.size();) {
        const Decoded one = Unicode::DecodeOne(text.substr(i));
        const std::size_t length = std::max<std::size_t>(one.length, 1);
        if (one.length == 0)
            bad_byte(out, static_cast<unsigned char>(text[i]));
        else if (IsPrintable(one.code) || keep(one.code))
            out += text.substr(i, length);
        else
            escape(out, one.code);
        i += length;
    }
    return out;
}

}  // namespace

std::string Printable(std::string_view text) {
    return Replace(
        text, [](char32_t) { return false; }, AppendEscape,
        [](std::string& out, unsigned char byte) { AppendHex(out, "\\x", byte, 2); });
}

std::string PrintableJson(std::string_view json) {
    return Replace(
        json, [](char32_t code) { return code == '\n'; }, AppendJsonEscape,
        [](std::string& out, unsigned char) { out += "\xEF\xBF\xBD"; });
}

bool IsUtf8(std::string_view bytes) {
    return Unicode::IsUtf8(bytes);
}

}  // namespace Tellurion

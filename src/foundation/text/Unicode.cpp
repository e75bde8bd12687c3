#include "text/Unicode.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace Tellurion::Unicode {
namespace {

constexpr char16_t kReplacement = 0xFFFD;
constexpr char16_t kRawByte = 0xDC00;

constexpr bool IsHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}
constexpr bool IsLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}
constexpr bool IsRawByte(char16_t unit) {
    return unit >= kRawByte + 0x80 && unit <= kRawByte + 0xFF;
}

void AppendUtf16(std::u16string& out, char32_t code) {
    if (code < 0x10000) {
        out.push_back(static_cast<char16_t>(code));
        return;
    }
    code -= 0x10000;
    out.push_back(static_cast<char16_t>(0xD800 + (code >> 10)));
    out.push_back(static_cast<char16_t>(0xDC00 + (code & 0x3FF)));
}

void AppendUtf8(std::string& out, char32_t code) {
    const auto tail = [&](unsigned shift) {
        out.push_back(static_cast<char>(0x80U | ((code >> shift) & 0x3FU)));
    };
    if (code < 0x80) {
        out.push_back(static_cast<char>(code));
    } else if (code < 0x800) {
        out.push_back(static_cast<char>(0xC0U | (code >> 6)));
        tail(0);
    } else if (code < 0x10000) {
        out.push_back(static_cast<char>(0xE0U | (code >> 12)));
        tail(6);
        tail(0);
    } else {
        out.push_back(static_cast<char>(0xF0U | (code >> 18)));
        tail(12);
        tail(6);
        tail(0);
    }
}

/// The code point at `index`, which moves on; lone surrogates come back as they are.
char32_t NextCode(std::u16string_view units, std::size_t& index) {
    const char32_t first = units[index++];
    if (!IsHighSurrogate(first) || index == units.size() || !IsLowSurrogate(units[index])) return first;
    return 0x10000 + ((first - 0xD800) << 10) + (units[index++] - 0xDC00U);
}

std::size_t AsciiPrefix(std::string_view bytes) {
    std::size_t length = 0;
    while (length < bytes.size() && static_cast<unsigned char>(bytes[length]) < 0x80)
        ++length;
    return length;
}

// Bytes 0x80 to 0x9F of Windows-1252.
constexpr std::array<char16_t, 32> kWindows1252 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

}  // namespace

Decoded DecodeOne(std::string_view bytes) {
    const auto lead = static_cast<unsigned char>(bytes[0]);
    if (lead < 0x80) return {lead, 1};
    const std::size_t length = lead >= 0xF0 ? 4U : lead >= 0xE0 ? 3U : 2U;
    if (lead < 0xC2 || lead > 0xF4 || bytes.size() < length) return {};
    char32_t code = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(bytes[i]);
        if ((next & 0xC0U) != 0x80U) return {};
        code = (code << 6) | (next & 0x3FU);
    }
    constexpr std::array<char32_t, 5> kLeast = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = code >= 0xD800 && code < 0xE000;
    if (code < kLeast[length] || code > 0x10FFFF || surrogate) return {};
    return {code, length};
}

std::u16string FromUtf8(std::string_view bytes) {
    const std::size_t plain = AsciiPrefix(bytes);
    std::u16string out(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(plain));
    out.reserve(bytes.size());
    for (std::size_t i = plain; i < bytes.size();) {
        const Decoded one = DecodeOne(bytes.substr(i));
        if (one.length == 0) {
            out.push_back(static_cast<char16_t>(kRawByte + static_cast<unsigned char>(bytes[i++])));
            continue;
        }
        AppendUtf16(out, one.code);
        i += one.length;
    }
    return out;
}

std::string ToUtf8(std::u16string_view units) {
    // Nearly all names and texts are ASCII, and a loop without branches is many times faster.
    std::string out(units.size(), '\0');
    unsigned any = 0;
    for (std::size_t i = 0; i < units.size(); ++i) {
        out[i] = static_cast<char>(units[i]);
        any |= units[i];
    }
    if (any < 0x80) return out;
    out.clear();
    for (std::size_t i = 0; i < units.size();) {
        if (IsRawByte(units[i])) {
            out.push_back(static_cast<char>(units[i++] - kRawByte));
            continue;
        }
        const char32_t code = NextCode(units, i);
        AppendUtf8(out, IsHighSurrogate(code) || IsLowSurrogate(code) ? kReplacement : code);
    }
    return out;
}

bool IsUtf8(std::string_view bytes) {
    for (std::size_t i = AsciiPrefix(bytes); i < bytes.size();) {
        const Decoded one = DecodeOne(bytes.substr(i));
        if (one.length == 0) return false;
        i += one.length;
    }
    return true;
}

std::u16string FromWindows1252(std::string_view bytes) {
    std::u16string out;
    out.reserve(bytes.size());
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        out.push_back(byte >= 0x80 && byte < 0xA0 ? kWindows1252[byte - 0x80U] : byte);
    }
    return out;
}

std::string ToWindows1252(std::u16string_view units, bool& lossy) {
    std::string out;
    out.reserve(units.size());
    for (std::size_t i = 0; i < units.size(); ++i) {
        const char16_t unit = units[i];
        const auto* const high = std::find(kWindows1252.begin(), kWindows1252.end(), unit);
        if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF)) {
            out.push_back(static_cast<char>(unit));
        } else if (high != kWindows1252.end()) {
            out.push_back(static_cast<char>(0x80 + (high - kWindows1252.begin())));
        } else if (unit >= kRawByte + 0x80 && unit <= kRawByte + 0xFF) {
            out.push_back(static_cast<char>(unit - kRawByte));
        } else {
            out.push_back('?');
            lossy = true;
            if ((unit & 0xFC00U) == 0xD800 && i + 1 < units.size()) ++i;  // a pair is one character
        }
    }
    return out;
}

std::u16string FromWide(std::wstring_view text) {
    std::u16string out;
    out.reserve(text.size());
    for (const wchar_t c : text) {
        const auto code = static_cast<char32_t>(c);
        if constexpr (sizeof(wchar_t) == 2) {
            out.push_back(static_cast<char16_t>(code));
        } else {
            AppendUtf16(out, code > 0x10FFFF ? char32_t{kReplacement} : code);
        }
    }
    return out;
}

std::wstring ToWide(std::u16string_view units) {
    std::wstring out;
    out.reserve(units.size());
    for (std::size_t i = 0; i < units.size();) {
        if constexpr (sizeof(wchar_t) == 2) {
            out.push_back(static_cast<wchar_t>(units[i++]));
        } else {
            out.push_back(static_cast<wchar_t>(NextCode(units, i)));
        }
    }
    return out;
}

// Latin-1, Latin Extended-A, Greek and Cyrillic: the scripts that extensions, unit
// and datum names are written in. Anything else keeps its case.
char16_t ToLower(char16_t unit) {
    if (unit >= u'A' && unit <= u'Z') return static_cast<char16_t>(unit + 32);
    if (unit < 0x80) return unit;
    if (unit >= 0xC0 && unit <= 0xDE && unit != 0xD7) return static_cast<char16_t>(unit + 32);
    const bool even_upper =
        (unit >= 0x100 && unit <= 0x137 && unit != 0x130) || (unit >= 0x14A && unit <= 0x177);
    if (even_upper) return static_cast<char16_t>(unit | 1);
    const bool odd_upper = (unit >= 0x139 && unit <= 0x148) || (unit >= 0x179 && unit <= 0x17E);
    if (odd_upper) return unit % 2 ? static_cast<char16_t>(unit + 1) : unit;
    if (unit == 0x178) return 0xFF;
    if (unit >= 0x391 && unit <= 0x3A9 && unit != 0x3A2) return static_cast<char16_t>(unit + 32);
    if (unit >= 0x410 && unit <= 0x42F) return static_cast<char16_t>(unit + 32);
    if (unit >= 0x400 && unit <= 0x40F) return static_cast<char16_t>(unit + 80);
    return unit;
}

char16_t ToUpper(char16_t unit) {
    if (unit >= u'a' && unit <= u'z') return static_cast<char16_t>(unit - 32);
    if (unit < 0x80) return unit;
    if (unit >= 0xE0 && unit <= 0xFE && unit != 0xF7) return static_cast<char16_t>(unit - 32);
    const bool even_upper =
        (unit >= 0x100 && unit <= 0x137 && unit != 0x131) || (unit >= 0x14A && unit <= 0x177);
    if (even_upper) return static_cast<char16_t>(unit & ~1U);
    const bool odd_upper = (unit >= 0x139 && unit <= 0x148) || (unit >= 0x179 && unit <= 0x17E);
    if (odd_upper) return unit % 2 ? unit : static_cast<char16_t>(unit - 1);
    if (unit == 0xFF) return 0x178;
    if (unit >= 0x3B1 && unit <= 0x3C9 && unit != 0x3C2) return static_cast<char16_t>(unit - 32);
    if (unit >= 0x430 && unit <= 0x44F) return static_cast<char16_t>(unit - 32);
    if (unit >= 0x450 && unit <= 0x45F) return static_cast<char16_t>(unit - 80);
    return unit;
}

bool IsSpace(char16_t unit) {
    if (unit <= 0x20) return unit == 0x20 || (unit >= 0x09 && unit <= 0x0D);
    return unit == 0xA0 || unit == 0x3000 || unit == 0xFEFF || (unit >= 0x2000 && unit <= 0x200A);
}

}  // namespace Tellurion::Unicode

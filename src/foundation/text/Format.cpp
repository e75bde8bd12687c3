#include <Tellurion/BString.h>
#include <Tellurion/Numbers.h>

#include "text/Unicode.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace Tellurion {

FormatArgument::FormatArgument(const char* text)
    : kind_(Kind::Narrow), narrow_(text ? std::string_view(text) : std::string_view("(null)")) {}
FormatArgument::FormatArgument(const wchar_t* text)
    : kind_(Kind::Wide), wide_(text ? std::wstring_view(text) : std::wstring_view(L"(null)")) {}
FormatArgument::FormatArgument(const BString& text) : kind_(Kind::Utf16), utf16_(text.GetUnits()) {}

namespace {

constexpr int kLongestField = 4096;

/// One conversion of a format text: %[flags][width][.precision][length]type.
struct Conversion {
    bool left = false;
    bool plus = false;
    bool blank = false;
    bool zero = false;
    bool alternate = false;
    int width = 0;
    int precision = -1;
    char type = 0;
    std::size_t length = 0;  ///< of its text, 0 when it is none
};

int TakeNumber(const char*& at) {
    int number = 0;
    for (; *at >= '0' && *at <= '9'; ++at)
        number = std::min(number * 10 + (*at - '0'), kLongestField);
    return number;
}

bool TakeFlag(char c, Conversion& conversion) {
    switch (c) {
        case '-':
            return conversion.left = true;
        case '+':
            return conversion.plus = true;
        case ' ':
            return conversion.blank = true;
        case '0':
            return conversion.zero = true;
        case '#':
            return conversion.alternate = true;
        default:
            return false;
    }
}

Conversion ParseConversion(const char* percent) {
    Conversion conversion;
    const char* at = percent + 1;
    while (TakeFlag(*at, conversion))
        ++at;
    conversion.width = TakeNumber(at);
    if (*at == '.') {
        ++at;
        conversion.precision = TakeNumber(at);
    }
    while (*at && std::strchr("hljztLq", *at))
        ++at;
    if (!*at || !std::strchr("diuxXocfFeEgGs", *at)) return conversion;
    conversion.type = *at;
    conversion.length = static_cast<std::size_t>(at + 1 - percent);
    return conversion;
}

std::string RealText(double value, const Conversion& conversion) {
    const double magnitude = std::fabs(value);
    const char type = static_cast<char>(conversion.type | 0x20);
    if (!std::isfinite(value)) return std::isnan(value) ? "nan" : "inf";
    const int precision = conversion.precision < 0 ? 6 : conversion.precision;
    if (type != 'e' && type != 'g') return PrintFixed(magnitude, precision);
    std::string text(static_cast<std::size_t>(kLongestField) + 32, '\0');
    const auto format = type == 'e' ? std::chars_format::scientific : std::chars_format::general;
    const auto result = std::to_chars(text.data(), text.data() + text.size(), magnitude, format, precision);
    text.resize(static_cast<std::size_t>(result.ptr - text.data()));
    return text;
}

std::string WholeText(std::uint64_t magnitude, const Conversion& conversion) {
    const int base = conversion.type == 'o' ? 8 : (conversion.type | 0x20) == 'x' ? 16 : 10;
    char digits[72];
    const auto result = std::to_chars(digits, digits + sizeof digits, magnitude, base);
    std::string text(digits, result.ptr);
    const int missing = conversion.precision - static_cast<int>(text.size());
    if (missing > 0) text.insert(0, static_cast<std::size_t>(missing), '0');
    if (conversion.alternate && base == 16 && magnitude != 0) text.insert(0, "0x");
    return text;
}

void Pad(std::u16string& out, const std::u16string& body, const Conversion& conversion) {
    const auto width = static_cast<std::size_t>(conversion.width);
    const std::size_t fill = width > body.size() ? width - body.size() : 0;
    if (!conversion.left) out.append(fill, u' ');
    out += body;
    if (conversion.left) out.append(fill, u' ');
}

void AppendNumber(std::u16string& out, std::string digits, bool negative, const Conversion& conversion) {
    if (conversion.type >= 'A' && conversion.type <= 'Z')
        std::transform(digits.begin(), digits.end(), digits.begin(),
                       [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    const std::string sign = negative ? "-" : conversion.plus ? "+" : conversion.blank ? " " : "";
    const auto width = static_cast<std::size_t>(conversion.width);
    const bool is_number = !digits.empty() && digits[0] >= '0' && digits[0] <= '9';
    if (conversion.zero && !conversion.left && is_number && sign.size() + digits.size() < width)
        digits.insert(0, width - sign.size() - digits.size(), '0');
    const std::string text = sign + digits;
    Pad(out, std::u16string(text.begin(), text.end()), conversion);
}

void AppendText(std::u16string& out, std::u16string text, const Conversion& conversion) {
    if (conversion.precision >= 0)
        text.resize(std::min(text.size(), static_cast<std::size_t>(conversion.precision)));
    Pad(out, text, conversion);
}

bool WantsReal(char type) {
    return std::strchr("fFeEgG", type) != nullptr;
}

/// A whole number by its own sign, whatever conversion asks for it.
void AppendWhole(std::u16string& out, bool negative, std::uint64_t magnitude, const Conversion& conversion) {
    if (conversion.type == 'c' && !negative && magnitude <= 0xFFFF) {
        AppendText(out, std::u16string(1, static_cast<char16_t>(magnitude)), conversion);
    } else if (WantsReal(conversion.type)) {
        AppendNumber(out, RealText(static_cast<double>(magnitude), conversion), negative, conversion);
    } else {
        AppendNumber(out, WholeText(magnitude, conversion), negative, conversion);
    }
}

void AppendReal(std::u16string& out, double value, Conversion conversion) {
    if (!WantsReal(conversion.type)) conversion.type = 'f';
    AppendNumber(out, RealText(value, conversion), std::signbit(value), conversion);
}

void AppendArgument(std::u16string& out, const FormatArgument& argument, const Conversion& conversion) {
    switch (argument.GetKind()) {
        case FormatArgument::Kind::Signed: {
            const std::int64_t value = argument.Signed();
            const auto bits = static_cast<std::uint64_t>(value);
            return AppendWhole(out, value < 0, value < 0 ? ~bits + 1 : bits, conversion);
        }
        case FormatArgument::Kind::Unsigned:
            return AppendWhole(out, false, argument.Unsigned(), conversion);
        case FormatArgument::Kind::Real:
            return AppendReal(out, argument.Real(), conversion);
        case FormatArgument::Kind::Narrow:
            return AppendText(out, Unicode::FromUtf8(argument.Narrow()), conversion);
        case FormatArgument::Kind::Wide:
            return AppendText(out, Unicode::FromWide(argument.Wide()), conversion);
        case FormatArgument::Kind::Utf16:
            return AppendText(out, std::u16string(argument.Utf16()), conversion);
    }
}

}  // namespace

BString BString::FormatList(const char* format, const FormatArgument* arguments, std::size_t count) {
    std::u16string out;
    std::size_t used = 0;
    while (format && *format) {
        const std::size_t plain = std::strcspn(format, "%");
        out += Unicode::FromUtf8({format, plain});
        format += plain;
        if (!*format) break;
        const Conversion conversion = ParseConversion(format);
        if (conversion.length != 0 && used < count) {
            AppendArgument(out, arguments[used++], conversion);
            format += conversion.length;
        } else {
            out.push_back(u'%');
            format += format[1] == '%' ? 2 : 1;
        }
    }
    return out;
}

}  // namespace Tellurion

#include <Tellurion/Numbers.h>

#include "text/Ascii.h"

#include <locale.h>
#include <algorithm>
#include <array>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <system_error>

namespace Tellurion {
namespace {

std::string_view SkipBlanks(std::string_view text) {
    const auto first = std::find_if_not(text.begin(), text.end(), IsBlank);
    return text.substr(static_cast<std::size_t>(first - text.begin()));
}

/// Takes a sign off the front; true for minus.
bool TakeSign(std::string_view& text) {
    const bool minus = !text.empty() && text.front() == '-';
    if (minus || (!text.empty() && text.front() == '+')) text.remove_prefix(1);
    return minus;
}

bool BeginsHexadecimal(std::string_view text) {
    const auto is_hex = [](char c) {
        return (c >= '0' && c <= '9') || ((c | 0x20) >= 'a' && (c | 0x20) <= 'f');
    };
    if (text.size() < 3 || text[0] != '0' || (text[1] | 0x20) != 'x') return false;
    return is_hex(text[2]) || (text.size() > 3 && text[2] == '.' && is_hex(text[3]));
}

/// The number at the front by strtod in the C locale, which wants a terminated copy.
double ByStrtod(std::string_view number, bool hexadecimal, std::size_t& length) {
    static const locale_t c_locale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    const std::string copy = std::string(hexadecimal ? "0x" : "") + std::string(number);
    char* end = nullptr;
    const double value = strtod_l(copy.c_str(), &end, c_locale);
    length = static_cast<std::size_t>(end - copy.c_str());
    length -= std::min(length, copy.size() - number.size());
    return value;
}

/// How many characters the number at the front of `text`, which has no sign, takes; 0 without one.
std::size_t TakeNumber(std::string_view text, bool hexadecimal, double& number) {
    std::size_t length = 0;
#ifdef __cpp_lib_to_chars
    const auto format = hexadecimal ? std::chars_format::hex : std::chars_format::general;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, format);
    if (error == std::errc::invalid_argument) return 0;
    length = static_cast<std::size_t>(end - text.data());
    // What is meant beyond the range of double from_chars leaves open, and strtod knows.
    if (error == std::errc::result_out_of_range)
        number = ByStrtod(text.substr(0, length), hexadecimal, length);
#else  // libc++ before version 20
    const std::string_view kMarks = "0123456789.+-abcdefinptyxABCDEFINPTYX()";
    text = text.substr(0, text.find_first_not_of(kMarks));
    if (!text.empty() && text.front() != '+') number = ByStrtod(text, hexadecimal, length);
#endif
    return length;
}

}  // namespace

bool ScanDouble(std::string_view& text, double& value) {
    std::string_view rest = SkipBlanks(text);
    const bool minus = TakeSign(rest);
    if (rest.empty() || rest.front() == '-') return false;
    const bool hexadecimal = BeginsHexadecimal(rest);
    if (hexadecimal) rest.remove_prefix(2);
    double number = 0.0;
    const std::size_t length = TakeNumber(rest, hexadecimal, number);
    if (length == 0) return false;
    value = minus ? -number : number;
    rest.remove_prefix(length);
    text = rest;
    return true;
}

double ParseDouble(std::string_view text) {
    double value = 0.0;
    ScanDouble(text, value);
    return value;
}

bool ScanLong(std::string_view& text, long& value) {
    std::string_view rest = SkipBlanks(text);
    const bool minus = !rest.empty() && rest.front() == '-';
    // from_chars takes a minus, but no plus; of the two only one may stand there.
    if (!rest.empty() && rest.front() == '+') rest.remove_prefix(1);
    if (rest.empty() || (rest.front() == '-' && !minus)) return false;
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), value);
    if (error == std::errc::invalid_argument) return false;
    if (error == std::errc::result_out_of_range)
        value = minus ? std::numeric_limits<long>::min() : std::numeric_limits<long>::max();
    rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
    text = rest;
    return true;
}

long ParseLong(std::string_view text) {
    long value = 0;
    ScanLong(text, value);
    return value;
}

std::string PrintFixed(double value, int decimals) {
    constexpr int kMostDecimals = 1100;  // no double has more that differ from 0
    decimals = std::clamp(decimals, 0, kMostDecimals);
    // 309 digits before the point are the most a double has.
    std::array<char, 320 + kMostDecimals> buffer;
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                            std::chars_format::fixed, decimals);
    return std::string(buffer.data(), end);
}

std::string PrintShortest(double value) {
    const double size = std::abs(value);
    const bool plain = size == 0.0 || (size >= 1e-5 && size < 1e16);
    std::array<char, 40> buffer;
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                            plain ? std::chars_format::fixed : std::chars_format::general);
    return std::string(buffer.data(), end);
}

}  // namespace Tellurion

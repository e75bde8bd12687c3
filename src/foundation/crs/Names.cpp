#include "crs/Names.h"

#include <algorithm>
#include <iterator>

namespace Tellurion {
namespace {

char UpperOf(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

char LowerOf(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool IsLetterOrDigit(char c) {
    const char upper = UpperOf(c);
    return (upper >= 'A' && upper <= 'Z') || (c >= '0' && c <= '9');
}

}  // namespace

std::string UpperAscii(std::string_view text) {
    std::string upper(text);
    std::ranges::transform(upper, upper.begin(), UpperOf);
    return upper;
}

std::string LowerAscii(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), LowerOf);
    return lower;
}

std::string LettersAndDigits(std::string_view text) {
    std::string kept;
    std::ranges::copy_if(text, std::back_inserter(kept), IsLetterOrDigit);
    return kept;
}

bool ListHas(std::string_view list, std::string_view name) {
    if (name.empty()) return false;
    for (;;) {
        const std::size_t bar = list.find('|');
        if (list.substr(0, bar) == name) return true;
        if (bar == std::string_view::npos) return false;
        list.remove_prefix(bar + 1);
    }
}

std::string FirstOf(std::string_view list) {
    return std::string(list.substr(0, list.find('|')));
}

}  // namespace Tellurion

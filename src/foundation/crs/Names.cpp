#include "crs/Names.h"

#include <algorithm>
#include <iterator>

namespace Tellurion {
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

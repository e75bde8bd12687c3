#include "import/LGINumbers.h"

#include <locale>
#include <sstream>

namespace VellumLib {
namespace {

template <class Number>
Number Extract(const std::string& text) {
    if (text.empty()) return 0;
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    Number value = 0;
    return stream >> value ? value : 0;
}

}  // namespace

double LGIReal(const std::string& text) {
    return Extract<double>(text);
}

int LGIInteger(const std::string& text) {
    return Extract<int>(text);
}

}  // namespace VellumLib

#include "terminal/Wrap.h"

#include <sstream>

namespace Tool {

std::string Wrapped(const std::string& text, std::size_t indent) {
    std::istringstream words(text);
    std::string out;
    std::size_t column = indent;
    for (std::string word; words >> word; column += word.size()) {
        if (!out.empty() && column + 1 + word.size() > kLineWidth) {
            out += "\n" + std::string(indent, ' ');
            column = indent;
        } else if (!out.empty()) {
            out += ' ';
            ++column;
        }
        out += word;
    }
    return out;
}

std::string Entry(const std::string& left, const std::string& text, std::size_t indent) {
    const bool fits = left.size() + 2 <= indent;
    const std::string gap = fits ? std::string(indent - left.size(), ' ') : "\n" + std::string(indent, ' ');
    return left + (text.empty() ? "" : gap + Wrapped(text, indent)) + "\n";
}

}  // namespace Tool

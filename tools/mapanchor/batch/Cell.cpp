#include "batch/Cell.h"

#include <Tellurion/Printable.h>

#include <algorithm>
#include <iterator>

namespace Tool {

namespace {

/// A formula begins with one of these, the wide ones of East Asian keyboards included.
constexpr const char* kFormulaMarks[] = {
    "=", "+", "-", "@", "\t", "\r", "\xEF\xBC\x9D", "\xEF\xBC\x8B", "\xEF\xBC\x8D", "\xEF\xBC\xA0"};

}  // namespace

std::string CellText(const std::string& text) {
    const bool is_formula = std::any_of(std::begin(kFormulaMarks), std::end(kFormulaMarks),
                                        [&text](const char* mark) { return text.starts_with(mark); });
    return (is_formula ? "'" : "") + Tellurion::Printable(text);
}

std::string CsvField(const std::string& cell) {
    if (cell.find_first_of(",\"\r\n") == std::string::npos) return cell;
    std::string quoted = "\"";
    for (const char c : cell)
        quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + "\"";
}

}  // namespace Tool

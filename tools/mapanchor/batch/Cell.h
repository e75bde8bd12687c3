#pragma once

#include <string>

namespace Tool {

/// A text as the content of a table's cell: Printable(), and with an apostrophe before what a
/// spreadsheet would compute.
std::string CellText(const std::string& text);

/// A cell as CSV has it: in quotes when it holds a mark of the format.
std::string CsvField(const std::string& cell);

}  // namespace Tool

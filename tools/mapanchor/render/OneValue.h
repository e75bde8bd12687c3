#pragma once

#include "read/ReadFile.h"

#include <string>
#include <vector>

namespace Tool {

/// The words of info --print, in the order in which the help lists them.
const std::vector<std::string>& PrintableValues();

/// The values of one input as a line for scripts, tabs between them; what is missing is empty
/// and `complete` becomes false.
std::string ValuesLine(const ReadResult& result, const std::vector<std::string>& values, bool& complete);

}  // namespace Tool

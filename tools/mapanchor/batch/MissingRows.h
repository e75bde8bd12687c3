#pragma once

#include "terminal/CommonOptions.h"
#include "terminal/ExitStatus.h"

#include <string>
#include <vector>

namespace Tool {

struct MissingSettings {
    std::string list;                ///< a file of names; "-" for stdin
    std::vector<std::string> files;  ///< of rows, one JSON object per line
    bool nul_separated = false;      ///< names in the list, and those that are printed, end in NUL
};

/// Prints the names of the list that have no row, as many times as rows are missing. What else keeps
/// the rows from being exactly those of the list is printed to stderr: names with more rows than the
/// list has them, rows of other names, a last row that was not written to its end. Done when there is
/// none of it, Warnings otherwise. Throws std::runtime_error for a file that cannot be read, or holds
/// anything but rows of this tool.
ExitStatus PrintMissing(const MissingSettings& settings, const Console& console);

}  // namespace Tool

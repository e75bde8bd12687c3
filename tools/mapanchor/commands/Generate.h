#pragma once

#include "commands/CommandTable.h"

namespace Tool {

/// What the package installs beside the program.
std::string ManPage(const CommandTable& table);
std::string BashCompletion(const CommandTable& table);
std::string ZshCompletion(const CommandTable& table);

}  // namespace Tool

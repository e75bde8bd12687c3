#pragma once

#include "commands/CommandTable.h"

/// What the package installs beside the program.
std::string ManPage(const CommandTable& table);
std::string BashCompletion(const CommandTable& table);
std::string ZshCompletion(const CommandTable& table);

#pragma once

#include "terminal/ExitStatus.h"

#include <CLI/CLI.hpp>

namespace Tool {

/// Each makes its subcommand; a run writes what it came to into `status`.
void AddInfoCommand(CLI::App& app, ExitStatus& status);
void AddConvertCommand(CLI::App& app, ExitStatus& status);
void AddFormatsCommand(CLI::App& app, ExitStatus& status);
void AddExtCommand(CLI::App& app, ExitStatus& status);
void AddCrsCommand(CLI::App& app, ExitStatus& status);
void AddDiffCommand(CLI::App& app, ExitStatus& status);
void AddCheckCommand(CLI::App& app, ExitStatus& status);
void AddFootprintCommand(CLI::App& app, ExitStatus& status);
void AddBatchCommand(CLI::App& app, ExitStatus& status);
void AddGeoreferenceCommand(CLI::App& app, ExitStatus& status);
void AddPreviewCommand(CLI::App& app, ExitStatus& status);
void AddSourcesCommand(CLI::App& app, ExitStatus& status);

}  // namespace Tool
